// SPDX-License-Identifier: GPL-3.0-or-later
//
// A real Store for tests of the panel's views, over a library written as
// text: sections separated by "|", a title with "!" for automatic and "+"
// for collapsed, "*" before the active one, then ":" and its notes by
// letter, upper case for done ones. A note's id is derived from its letter,
// so a test names notes by letter too.

#pragma once

#include "attachments/AttachmentStore.h"
#include "library/Library.h"
#include "library/LibraryWriter.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/MarkdownText.h"
#include "store/Store.h"

#include <memory>

namespace Vesko::Test {

//! The id of the note, section or project named \a name in a description.
QUuid idFor(const QString &name);
//! A project of the described sections; its id is idFor("project " + name).
Project describedProject(const QString &description, const QString &name = QStringLiteral("P"));
//! The notes named by letters separated by commas.
QList<QUuid> noteIDs(const QString &letters);
//! A note of \a text with a new id and files of the names given attached.
Note noteWith(const QString &text, const QStringList &attachmentNames = {});
//! \a text as "plain {flags:attributed} plain": E emphasis, S strong,
//! X strikethrough, C code, L(target) link, I(target) image, then the letters
//! of \a more for attributes of the caller's.
QString describeRuns(const MarkdownText &text, const QList<std::pair<int, QChar>> &more = {});
//! The texts of every note of \a library, project by project, section by section.
QStringList noteTexts(const Library &library);

class StoreFixture
{
public:
    //! Fresh preferences (the settings file emptied) and services.
    StoreFixture();
    ~StoreFixture();

    //! A Store showing the first of \a projects (descriptions), made active.
    Store &make(const QStringList &projects);
    //! A Store over \a library as it stands, repaired at load like the program's.
    Store &make(const Library &library);

    Store &store() { return *m_store; }
    Preferences &preferences() { return *m_preferences; }
    AttachmentStore &attachments() { return *m_attachments; }
    SearchIndex &searchIndex() { return *m_searchIndex; }

private:
    std::unique_ptr<Preferences> m_preferences;
    std::unique_ptr<LibraryWriter> m_writer;
    std::unique_ptr<AttachmentStore> m_attachments;
    std::unique_ptr<SearchIndex> m_searchIndex;
    std::unique_ptr<Store> m_store;
};

} // namespace Vesko::Test
