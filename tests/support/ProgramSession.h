// SPDX-License-Identifier: GPL-3.0-or-later
//
// Runs the vesko program (and helpers beside it) from the outside in the
// current X session: private XDG folders per session, xdotool for the
// keyboard and the pointer, the library file read back with the decoder.

#pragma once

#include "library/Library.h"

#include <QProcess>
#include <QTemporaryDir>

namespace Vesko::Test {

class ProgramSession
{
public:
    ProgramSession();
    ~ProgramSession();

    QString libraryFolder() const;
    QString libraryPath() const;
    QString configPath() const;
    //! $XDG_STATE_HOME of the session.
    QString stateFolder() const;
    //! The session's private folder, for files of a test's own.
    QString rootFolder() const { return m_root.path(); }

    //! The notes of the session's library file, as the program last wrote it.
    QList<Note> notes() const;
    //! The last note's text, and the name, window title and id of its
    //! source, joined by " | "; "(none)" without a note that has a source.
    QString lastNote() const;

    //! Sets a variable of the environment the next programs start with.
    void setEnvironmentVariable(const QString &name, const QString &value);

    QProcessEnvironment sessionEnvironment() const { return m_environment; }
    //! Removes a variable from the environment the next programs start with.
    void unsetEnvironmentVariable(const QString &name);

    //! Starts \a program with the session's environment and waits until it
    //! runs (or failed to start); it ends with the session. Its errors go
    //! to the test's own unless \a mode says otherwise.
    QProcess *start(const QString &program, const QStringList &arguments = {},
        QProcess::ProcessChannelMode mode = QProcess::ForwardedErrorChannel);

    //! How a program that ran to its end ended.
    struct Outcome
    {
        bool finished = false; //!< false: killed at the time limit
        int exitCode = -1;
        QByteArray output;
        QByteArray errors;
    };
    //! Runs \a program with the session's environment to its end, \a input
    //! on its standard input; killed after \a timeoutMilliseconds.
    Outcome run(const QString &program, const QStringList &arguments, const QByteArray &input = {},
        int timeoutMilliseconds = 90000) const;

private:
    QTemporaryDir m_root;
    QProcessEnvironment m_environment;
    QList<QProcess *> m_processes;
};

//! The words of \a line, split at its spaces: a command's arguments written as one string.
QStringList words(const QString &line);
//! Runs xdotool and returns its output, trimmed.
QString xdotool(const QStringList &arguments);
//! Sets the X server's keyboard layout with setxkbmap, such as {"-layout",
//! "ru,us"}; true when it did.
bool setxkbmap(const QStringList &arguments);
//! The id of the first visible window whose name matches \a pattern, or empty.
QString visibleWindow(const QString &pattern);
//! Waits for a visible window named exactly \a title and activates it; its id, or empty.
QString activateWindow(const QString &title);
//! Runs xclip with \a arguments (split at spaces), \a input on its standard
//! input unless null, and returns its output.
QString xclip(const QString &arguments, const QByteArray &input = {});
//! The library in \a path; an empty one when it cannot be read.
Library readLibraryFile(const QString &path);
QList<Note> allNotes(const Library &library);

} // namespace Vesko::Test
