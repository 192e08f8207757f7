// SPDX-License-Identifier: GPL-3.0-or-later
//
// The view-side state of the floating panel: what it wants focused, whether
// it counts as shown, which modal layers are up, and the slots by which one
// view hands a request to another. Nothing of it is saved. Setters compare
// first, so assigning the value already held notifies nobody.

#pragma once

#include <QList>
#include <QObject>
#include <QUuid>

#include <optional>

namespace Vesko {

enum class PanelFocusTarget { None, Composer, Search, List };

//! The modal layers of the panel. At most one is on screen: the first that is
//! up in the order of frontLayer(); Escape closes them in its own order.
enum class PanelLayer {
    None,
    SectionSwitcher,
    ProjectSwitcher,
    Shortcuts,
    NewSection,
    NewProject,
    RenameProject,
};

class PanelState : public QObject
{
    Q_OBJECT
    Q_PROPERTY(qint64 focusRequest READ focusRequest NOTIFY focusRequestChanged)
    Q_PROPERTY(Vesko::PanelFocusTarget focusTarget READ focusTarget NOTIFY focusTargetChanged)
    Q_PROPERTY(bool isVisible READ isVisible WRITE setVisible NOTIFY isVisibleChanged)

public:
    explicit PanelState(QObject *parent = nullptr);

    //! The one instance of the process, made on first use and never destroyed.
    static PanelState &shared();

    //! Asks the panel to focus \a target. Every request is delivered, also a
    //! second one for the same target: the counter changes each time.
    void requestFocus(PanelFocusTarget target);
    qint64 focusRequest() const { return m_focusRequest; }
    PanelFocusTarget focusTarget() const { return m_focusTarget; }

    //! The panel counts as shown; set by the panel controller.
    bool isVisible() const { return m_isVisible; }
    void setVisible(bool visible);

    std::optional<QUuid> renamingSectionID() const { return m_renamingSectionID; }
    void setRenamingSectionID(std::optional<QUuid> id);

    bool isShowing(PanelLayer layer) const;
    void setShowing(PanelLayer layer, bool showing);
    //! The layer on screen: the first one up in the order section switcher,
    //! project switcher, shortcuts, new section, new project, rename project.
    PanelLayer frontLayer() const;
    //! Closes the layer that Escape closes first (shortcuts, then section
    //! switcher, project switcher, new section, new project, rename project);
    //! closing the new-section prompt also drops the notes it was to receive.
    //! Returns the layer closed, or None when none was up.
    PanelLayer dismissLayerOnEscape();

    //! A section the list must scroll to; the list empties the slot before acting.
    std::optional<QUuid> sectionJumpRequest() const { return m_sectionJumpRequest; }
    void setSectionJumpRequest(std::optional<QUuid> id);

    //! Notes to move into the section that the open new-section prompt makes.
    QList<QUuid> pendingMoveIDs() const { return m_pendingMoveIDs; }
    void setPendingMoveIDs(const QList<QUuid> &ids);

    //! Notes being dragged out of this panel at this moment.
    QList<QUuid> draggingNoteIDs() const { return m_draggingNoteIDs; }
    void setDraggingNoteIDs(const QList<QUuid> &ids);

Q_SIGNALS:
    void focusRequestChanged();
    void focusTargetChanged();
    void isVisibleChanged();
    void renamingSectionIDChanged();
    //! One of the modal flags changed.
    void layersChanged();
    void sectionJumpRequestChanged();
    void pendingMoveIDsChanged();
    void draggingNoteIDsChanged();

private:
    static constexpr int layerCount = 6;

    qint64 m_focusRequest = 0;
    PanelFocusTarget m_focusTarget = PanelFocusTarget::None;
    bool m_isVisible = false;
    std::optional<QUuid> m_renamingSectionID;
    bool m_showing[layerCount + 1] = {};
    std::optional<QUuid> m_sectionJumpRequest;
    QList<QUuid> m_pendingMoveIDs;
    QList<QUuid> m_draggingNoteIDs;
};

} // namespace Vesko
