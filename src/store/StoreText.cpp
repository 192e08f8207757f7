// SPDX-License-Identifier: GPL-3.0-or-later
//
// The texts the Store gives out: copies of the visible notes and the export.

#include "store/NoteText.h"
#include "store/Store.h"

#include "platform/Clipboard.h"

namespace Vesko {

QString Store::plainCopyText(const QList<QUuid> &ids) const
{
    return Vesko::plainCopyText(visibleNotesAmong(ids), m_preferences.copyIncludesMarkdown());
}

QString Store::listCopyText(const QList<QUuid> &ids) const
{
    return listText(
        visibleNotesAmong(ids), m_preferences.listStyle(), m_preferences.copyIncludesMarkdown());
}

bool Store::copyNotes(const QList<QUuid> &ids, Clipboard &clipboard) const
{
    const QString text = plainCopyText(ids);
    if (text.isEmpty())
        return false;
    clipboard.setText(text);
    return true;
}

bool Store::copyAsList(const QList<QUuid> &ids, Clipboard &clipboard) const
{
    const QList<Note> notes = visibleNotesAmong(ids);
    if (notes.isEmpty())
        return false;
    clipboard.setText(
        listText(notes, m_preferences.listStyle(), m_preferences.copyIncludesMarkdown()));
    return true;
}

QString Store::markdownExportText() const
{
    return Vesko::markdownExportText(m_library);
}

} // namespace Vesko
