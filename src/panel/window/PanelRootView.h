// SPDX-License-Identifier: GPL-3.0-or-later
//
// The content of the floating panel: the list of the active project's rows,
// with a header of the search field and the "More options" button over its
// top and the composer over its foot (floating over the rows on a glass
// panel, above and below them on an opaque one), the empty state between them
// when there are no rows, and on top at most one modal layer (a switcher,
// the shortcut sheet or a prompt). It keeps the panel's focus target and
// applies the PanelState's focus requests to its parts.

#pragma once

#include "panel/window/PanelKeyHandler.h"
#include "panel/window/PanelState.h"

#include <QPointer>
#include <QWidget>

#include <functional>

class QLabel;
class QToolButton;

namespace Vesko {

class ComposerView;
class PanelListView;
class Preferences;
class SearchFieldView;
class Store;

class PanelRootView : public QWidget
{
    Q_OBJECT

public:
    //! The composer's editor carries this object name; the panel looks for it
    //! to place the focus after a show.
    static inline const QString composerEditorName = QStringLiteral("VeskoComposerEditor");
    static constexpr int padding = 10;
    static constexpr int headerSpacing = 8;
    static constexpr int overflowButtonSize = 28;
    static constexpr int layerFadeMilliseconds = 160;
    //! Between the bars and the rows that stop at them.
    static constexpr int barGap = 6;

    //! Makes the view of the shortcut sheet with the program's hot keys, or
    //! nothing to take the sheet without them.
    using LayerFactory = std::function<QWidget *(PanelLayer layer, QWidget *parent)>;
    //! The factory for all panels of the process.
    static void setLayerFactory(LayerFactory factory);

    PanelRootView(
        Store &store, PanelState &state, Preferences &preferences, QWidget *parent = nullptr);
    ~PanelRootView() override;

    PanelFocusTarget focusTarget() const { return m_focus; }
    //! Moves the panel's focus to the composer, the search field or the list.
    void setFocusTarget(PanelFocusTarget target);

    //! On a glass panel the rows run under the header and the composer; on an
    //! opaque one, where nothing would blur them, they stop at both bars (the
    //! default).
    void setRowsRunUnderBars(bool under);
    bool rowsRunUnderBars() const { return m_rowsUnderBars; }

    //! Places \a view at the foot of the panel, under the composer (the lines
    //! about an unreadable library file and failed saves); nothing removes it
    //! but another call.
    void setFootView(QWidget *view);

    ComposerView *composer() const { return m_composer; }
    SearchFieldView *searchField() const { return m_search; }
    QToolButton *overflowButton() const { return m_overflow; }
    PanelListView *list() const { return m_list; }
    //! The layer on screen and its view; None and null without one.
    PanelLayer shownLayer() const { return m_shownLayer; }
    QWidget *layerView() const { return m_layer; }
    //! The empty state is up, with these two lines.
    bool showsEmptyState() const;
    QString emptyTitle() const;
    QString emptyHint() const;

    //! Opens the "More options" menu under its button.
    void showOverflowMenu();

    //! What decides every key press made inside this view.
    PanelKeyHandler &keyHandler() { return m_keys; }

Q_SIGNALS:
    void focusTargetChanged(Vesko::PanelFocusTarget target);
    //! A shortcut or Escape asked to hide the panel.
    void hideRequested();

protected:
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void layOut();
    void applyFocusRequest();
    void refreshEmptyState();
    void refreshLayer();
    void applyComposerFocus();
    QWidget *focusWidgetFor(PanelFocusTarget target) const;
    //! Takes the view of the layer that went down off the screen.
    void retireLayer();
    QWidget *makeLayerView(PanelLayer layer);

    Store &m_store;
    PanelState &m_state;
    Preferences &m_preferences;
    PanelFocusTarget m_focus = PanelFocusTarget::Composer;
    bool m_rowsUnderBars = false;
    PanelListView *m_list = nullptr;
    QWidget *m_header = nullptr;
    SearchFieldView *m_search = nullptr;
    QToolButton *m_overflow = nullptr;
    ComposerView *m_composer = nullptr;
    QPointer<QWidget> m_foot;
    QWidget *m_emptyState = nullptr;
    QLabel *m_emptyTitle = nullptr;
    QLabel *m_emptyHint = nullptr;
    PanelLayer m_shownLayer = PanelLayer::None;
    QPointer<QWidget> m_layer;
    PanelKeyHandler m_keys;
};

} // namespace Vesko
