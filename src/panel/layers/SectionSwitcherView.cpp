// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/layers/SectionSwitcherView.h"

#include "panel/window/PanelState.h"
#include "shell/Theme.h"
#include "shell/Toast.h"
#include "store/Store.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace Vesko {

SectionSwitcherView::SectionSwitcherView(Store &store, PanelState &state, QWidget *parent)
    : SwitcherView(store, state, PanelLayer::SectionSwitcher, true, parent)
{
    setObjectName(QStringLiteral("VeskoSectionSwitcher"));
    setAccessibleName(tr("Switch section"));
    build(tr("Switch section"), tr("↵ switch · F2 rename · esc close"), 240, activeItem());

    auto *page = new QWidget(this);
    auto *layout = new QVBoxLayout(page);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    auto *title = new QLabel(tr("Rename Section"), page);
    QFont titleFont = Theme::noteFont();
    titleFont.setWeight(QFont::DemiBold);
    title->setFont(titleFont);
    layout->addWidget(title);
    m_renameField = roundedField(tr("Section name"), page);
    m_renameField->installEventFilter(this);
    layout->addWidget(m_renameField);
    layout->addWidget(hintLabel(tr("↵ to rename · esc to cancel"), page));
    auto *buttons = new QHBoxLayout;
    buttons->addStretch();
    auto *cancel = new QPushButton(tr("Cancel"), page);
    m_renameButton = new QPushButton(tr("Rename"), page);
    for (QPushButton *button : {cancel, m_renameButton}) {
        button->setFont(Theme::captionFont());
        button->setAutoDefault(false);
        buttons->addWidget(button);
    }
    m_renameButton->setDefault(true);
    layout->addLayout(buttons);
    setRenamePage(page);

    connect(cancel, &QPushButton::clicked, this, &SectionSwitcherView::cancelRename);
    connect(m_renameButton, &QPushButton::clicked, this, &SectionSwitcherView::commitRename);
    connect(m_renameField, &QLineEdit::textChanged, this, &SectionSwitcherView::updateRenameButton);
}

QList<SwitcherItem> SectionSwitcherView::currentItems() const
{
    QList<SwitcherItem> items;
    for (const NoteSection &section : m_store.activeProject().sections)
        items.append({section.id, section.title});
    return items;
}

std::optional<QUuid> SectionSwitcherView::activeItem() const
{
    return m_store.activeProject().activeSectionID;
}

void SectionSwitcherView::choose(const QUuid &id)
{
    const std::optional<NoteSection> section = m_store.section(id);
    if (!section)
        return;
    m_store.activateSection(id);
    ToastPresenter::shared().present(
        tr("Using %1").arg(section->title), QStringLiteral("checkmark"));
    close();
}

void SectionSwitcherView::create()
{
    if (const std::optional<NoteSection> section
        = m_store.createOrUseSection(m_rows.trimmedQuery())) {
        ToastPresenter::shared().present(
            tr("Using %1").arg(section->title), QStringLiteral("checkmark"));
        close();
    }
}

void SectionSwitcherView::beginRename()
{
    const std::optional<SwitcherSelection> selection = m_rows.selection();
    if (m_renamingSectionID || !selection || selection->isCreate)
        return;
    QString title;
    bool found = false;
    for (const NoteSection &section : m_store.activeProject().sections) {
        if (section.id == selection->id) {
            title = section.title;
            found = true;
        }
    }
    if (!found)
        return;
    m_renamingSectionID = selection->id;
    m_renameField->setText(title);
    updateRenameButton();
    showRenamePage(true);
    focusWhenShown(m_renameField, &QLineEdit::selectAll);
}

void SectionSwitcherView::commitRename()
{
    if (!m_renamingSectionID)
        return;
    const QUuid id = *m_renamingSectionID;
    const QString title = m_renameField->text().trimmed();
    m_renamingSectionID.reset();
    if (!title.isEmpty()) {
        m_store.renameSection(id, title);
        ToastPresenter::shared().present(tr("Renamed"), QStringLiteral("pencil"));
    }
    m_rows.setItems(currentItems());
    refreshRows();
    showRenamePage(false);
    filterField()->setFocus(Qt::OtherFocusReason);
}

void SectionSwitcherView::cancelRename()
{
    m_renamingSectionID.reset();
    showRenamePage(false);
    filterField()->setFocus(Qt::OtherFocusReason);
}

void SectionSwitcherView::updateRenameButton()
{
    QString text = m_renameField->text();
    text.remove(u' ').remove(u'\t');
    m_renameButton->setEnabled(!text.isEmpty());
}

bool SectionSwitcherView::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_renameField
        && handleAnswerKey(
            event, [this] { commitRename(); }, [this] { cancelRename(); }))
        return true;
    return SwitcherView::eventFilter(watched, event);
}

} // namespace Vesko
