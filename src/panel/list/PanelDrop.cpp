// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/PanelDrop.h"

#include "panel/window/PanelState.h"
#include "store/Store.h"

#include <QMimeData>
#include <QUrl>

namespace Vesko::PanelDrop {

QList<QUrl> localFiles(const QMimeData &data)
{
    QList<QUrl> files;
    if (!data.hasUrls())
        return files;
    for (const QUrl &url : data.urls()) {
        if (url.isLocalFile())
            files.append(url);
    }
    return files;
}

std::optional<QStringList> textItems(const QMimeData &data)
{
    if (!localFiles(data).isEmpty())
        return std::nullopt;
    if (!data.hasFormat(QStringLiteral("text/plain")))
        return std::nullopt;
    return QStringList {data.text()};
}

Outcome handleDrop(Store &store, PanelState &state, const QStringList &items,
    const std::optional<QUuid> &sectionID, const std::optional<QUuid> &beforeNoteID)
{
    const QList<QUuid> dragging = state.draggingNoteIDs();
    state.setDraggingNoteIDs({});
    if (!sectionID)
        return Outcome::Refused;

    if (dragging.isEmpty()) {
        const QString text = items.join(QStringLiteral("\n\n")).trimmed();
        if (text.isEmpty())
            return Outcome::Refused;
        store.addNote(text, sectionID);
        return Outcome::AddedNote;
    }

    const std::optional<NoteSection> section = store.section(*sectionID);
    const NoteList notes = section ? section->notes : NoteList();
    qsizetype index = notes.size();
    if (beforeNoteID) {
        for (qsizetype i = 0; i < notes.size(); ++i) {
            if (notes[i].id == *beforeNoteID) {
                index = i;
                break;
            }
        }
    }
    store.moveNotesToSection(dragging, *sectionID, index);
    return Outcome::MovedNotes;
}

} // namespace Vesko::PanelDrop
