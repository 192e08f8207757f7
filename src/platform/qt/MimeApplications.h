// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the desktop has an application for a kind of file, as the
// freedesktop.org lists tell it: the associations of mimeapps.list, the
// mimeinfo.cache of each applications folder and, in a folder without that
// cache, the MimeType lines of its desktop entries. These are files: ask
// from a worker thread, never from the main thread.

#pragma once

#include <QStringList>

namespace Vesko::MimeApplications {

//! The MIME type of \a path and all its parent types, most specific first;
//! read from the name and, where that is not enough, from the contents.
QStringList typesOf(const QString &path);
//! Some installed application takes one of \a types, and no list of the
//! user's removes it again.
bool hasApplicationFor(const QStringList &types);

} // namespace Vesko::MimeApplications
