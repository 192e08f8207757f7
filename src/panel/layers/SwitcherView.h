// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the two modal pickers over the panel have in common (the section
// switcher and the project switcher): a filter field over a short list,
// driven by the arrows, Tab and Return, with the pointer as a second way in;
// what is listed and selected is a SwitcherList, and every change goes
// through the Store.

#pragma once

#include "panel/layers/PanelLayerView.h"
#include "panel/layers/SwitcherList.h"

#include <QPoint>

#include <optional>

class QLabel;
class QLineEdit;
class QListWidget;
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
    //! A caption in the tertiary colour, as under the fields.
    static QLabel *hintLabel(const QString &text, QWidget *parent);
    //! A rounded field in the note's font, named by its \a placeholder.
    static QLineEdit *roundedField(const QString &placeholder, QWidget *parent);
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

} // namespace Vesko
