// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/RowAccessibles.h"

#include "panel/list/NoteRowView.h"
#include "panel/list/RowAccessibility.h"
#include "panel/list/SectionHeaderView.h"

#include <QAccessibleWidget>

namespace Vesko {

namespace {

class NoteRowAccessible : public QAccessibleWidget
{
public:
    explicit NoteRowAccessible(NoteRowView *row)
        : QAccessibleWidget(row, QAccessible::ListItem)
    { }

    QString text(QAccessible::Text t) const override
    {
        const Note &note = row()->note();
        switch (t) {
        case QAccessible::Name:
            return RowAccessibility::noteLabel(note);
        case QAccessible::Value:
        // AT-SPI carries no text value for an item that is not a text or a
        // number, so the description says it too.
        case QAccessible::Description:
            return RowAccessibility::noteValue(note);
        default:
            return QAccessibleWidget::text(t);
        }
    }

    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.selectable = true;
        s.selected = row()->isSelected();
        s.expandable = true;
        s.expanded = row()->isExpanded();
        s.collapsed = !row()->isExpanded();
        return s;
    }

private:
    NoteRowView *row() const { return static_cast<NoteRowView *>(widget()); }
};

class SectionHeaderAccessible : public QAccessibleWidget
{
public:
    explicit SectionHeaderAccessible(SectionHeaderView *header)
        : QAccessibleWidget(header, QAccessible::Button)
    { }

    QString text(QAccessible::Text t) const override
    {
        if (t == QAccessible::Name)
            return RowAccessibility::sectionLabel(header()->section());
        return QAccessibleWidget::text(t);
    }

    QAccessible::State state() const override
    {
        QAccessible::State s = QAccessibleWidget::state();
        s.expandable = true;
        s.expanded = !header()->section().isCollapsed;
        s.collapsed = header()->section().isCollapsed;
        return s;
    }

private:
    SectionHeaderView *header() const { return static_cast<SectionHeaderView *>(widget()); }
};

QAccessibleInterface *rowAccessibleFactory(const QString &className, QObject *object)
{
    if (!object || !object->isWidgetType())
        return nullptr;
    if (className == QLatin1String(NoteRowView::staticMetaObject.className()))
        return new NoteRowAccessible(static_cast<NoteRowView *>(object));
    if (className == QLatin1String(SectionHeaderView::staticMetaObject.className()))
        return new SectionHeaderAccessible(static_cast<SectionHeaderView *>(object));
    return nullptr;
}

} // namespace

void installRowAccessibility()
{
    static const bool installed = [] {
        QAccessible::installFactory(rowAccessibleFactory);
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace Vesko
