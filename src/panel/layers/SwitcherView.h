// SPDX-License-Identifier: GPL-3.0-or-later
//
// The two modal pickers over the panel: SectionSwitcherView picks, creates
// or renames a section of the active project, ProjectSwitcherView picks a
// project. Both are a filter field over a short list, driven by the arrows,
// Tab and Return, with the pointer as a second way in; what is listed and
// selected is a SwitcherList, and every change goes through the Store.

#pragma once

#include "panel/layers/PanelLayerView.h"
#include "panel/layers/SwitcherList.h"

#include <QPoint>

#include <optional>

class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;
class QStackedWidget;

namespace Vesko {

class PanelState;
class Store;
enum class PanelLayer;

class SwitcherView : public PanelLayerView
{
    Q_OBJECT

public:
    QLineEdit *filterField() const { return m_filter; }
    QListWidget *listView() const { return m_list; }
    const SwitcherList &rows() const { return m_rows; }
    //! The rows' texts as listed.
    QStringList rowTexts() const;

    //! Moves the selection by one row, as the arrow keys do.
    void moveSelection(int delta);
    //! What Return does.
    void commit();
    //! Takes the switcher down.
    void close();

protected:
    SwitcherView(
        Store &store, PanelState &state, PanelLayer layer, bool offersCreate, QWidget *parent);
    //! Builds the card; called by the subclasses' constructors.
    void build(const QString &placeholder, const QString &hint, int maximumListHeight,
        const std::optional<QUuid> &current);

    virtual QList<SwitcherItem> currentItems() const = 0;
    virtual std::optional<QUuid> activeItem() const = 0;
    virtual void choose(const QUuid &id) = 0;
    virtual void create() { }
    //! F2 on the filter field.
    virtual void beginRename() { }
    //! The rename form's page, if the switcher has one.
    void setRenamePage(QWidget *page);
    void showRenamePage(bool shown);
    void refreshRows();

    QRect cardGeometry() const override;
    void dismiss() override { close(); }
    bool eventFilter(QObject *watched, QEvent *event) override;

    Store &m_store;
    PanelState &m_state;
    SwitcherList m_rows;

private:
    void showSelection();
    void pointerMoved(const QPoint &viewportPosition);

    PanelLayer m_layer;
    QStackedWidget *m_pages = nullptr;
    QLineEdit *m_filter = nullptr;
    QListWidget *m_list = nullptr;
    int m_maximumListHeight = 240;
    std::optional<QPoint> m_lastPointerLocation;
    bool m_refreshing = false;
};

class SectionSwitcherView : public SwitcherView
{
    Q_OBJECT

public:
    SectionSwitcherView(Store &store, PanelState &state, QWidget *parent = nullptr);

    std::optional<QUuid> renamingSectionID() const { return m_renamingSectionID; }
    QLineEdit *renameField() const { return m_renameField; }
    QPushButton *renameButton() const { return m_renameButton; }
    void beginRename() override;
    void commitRename();
    void cancelRename();

protected:
    QList<SwitcherItem> currentItems() const override;
    std::optional<QUuid> activeItem() const override;
    void choose(const QUuid &id) override;
    void create() override;
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void updateRenameButton();

    std::optional<QUuid> m_renamingSectionID;
    QLineEdit *m_renameField = nullptr;
    QPushButton *m_renameButton = nullptr;
};

class ProjectSwitcherView : public SwitcherView
{
    Q_OBJECT

public:
    ProjectSwitcherView(Store &store, PanelState &state, QWidget *parent = nullptr);

protected:
    QList<SwitcherItem> currentItems() const override;
    std::optional<QUuid> activeItem() const override;
    void choose(const QUuid &id) override;
};

} // namespace Vesko
