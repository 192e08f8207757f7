// SPDX-License-Identifier: GPL-3.0-or-later
//
// The texts the Store gives out: copies of the visible notes and the export.

#include "store/NoteText.h"
#include "store/Store.h"

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

QString Store::markdownExportText() const
{
    return Vesko::markdownExportText(m_library);
}

} // namespace Vesko
