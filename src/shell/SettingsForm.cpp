// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SettingsForm.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QVBoxLayout>

namespace Vesko {

SettingsGroup::SettingsGroup(const QString &title, QWidget *parent)
    : QGroupBox(title, parent)
    , m_form(new QFormLayout(this))
{
    m_form->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
    m_form->setRowWrapPolicy(QFormLayout::DontWrapRows);
    m_form->setLabelAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    setAccessibleName(title);
}

void SettingsGroup::addRow(const QString &label, QWidget *field)
{
    auto *name = new QLabel(label, this);
    name->setBuddy(field);
    // A value shown as text keeps its text as its name; the label names it
    // through the buddy relation.
    if (field->accessibleName().isEmpty() && !qobject_cast<QLabel *>(field))
        field->setAccessibleName(label);
    m_form->addRow(name, field);
}

void SettingsGroup::addRow(QWidget *field)
{
    m_form->addRow(field);
}

void SettingsGroup::addButtons(const QList<QWidget *> &buttons)
{
    auto *row = new QWidget(this);
    auto *layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *button : buttons)
        layout->addWidget(button);
    layout->addStretch(1);
    m_form->addRow(row);
}

QLabel *makeFootnote(const QString &text, QWidget *parent)
{
    auto *label = new QLabel(text, parent);
    label->setWordWrap(true);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * 0.85);
    label->setFont(font);
    label->setForegroundRole(QPalette::PlaceholderText);
    return label;
}

QLabel *makeErrorLine(QWidget *parent)
{
    auto *label = makeFootnote(QString(), parent);
    QPalette palette = label->palette();
    palette.setColor(QPalette::WindowText, QColor(0xd7, 0x3a, 0x2f));
    label->setPalette(palette);
    label->setForegroundRole(QPalette::WindowText);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->hide();
    return label;
}

QScrollArea *makeSettingsPage(QWidget *content)
{
    auto *layout = qobject_cast<QVBoxLayout *>(content->layout());
    if (layout)
        layout->addStretch(1);
    auto *page = new QScrollArea;
    page->setWidget(content);
    page->setWidgetResizable(true);
    page->setFrameShape(QFrame::NoFrame);
    page->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    return page;
}

} // namespace Vesko
