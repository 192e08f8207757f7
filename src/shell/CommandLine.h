// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the words after "vesko" ask for: run the program, print the help or
// the version, or hand one command to the running instance. Parsing needs a
// QCoreApplication at most, never a display, a bus or a running instance.

#pragma once

#include <QJsonObject>
#include <QString>
#include <QStringList>

#include <optional>

namespace Vesko {

struct CommandLineRequest
{
    enum class Kind {
        Launch, //!< run the program, or show the one that runs
        Help, //!< print text (the help) and end
        Version, //!< print text (the version) and end
        Action, //!< run the action named action in the instance
        Add, //!< add text (or standard input when readsStandardInput) as a note
        List, //!< print the notes
        Search, //!< print the notes that hold query
        Mcp, //!< serve the library over the Model Context Protocol
        Invalid, //!< print error and the usage line, end with usageExitCode
    };

    Kind kind = Kind::Launch;
    //! Launch: start without showing the panel, and wait for commands.
    bool background = false;
    QString action;
    QString text;
    bool readsStandardInput = false;
    QString section;
    QString project;
    QString query;
    bool includeDone = false;
    bool json = false;
    //! Help and Version: what to print; Invalid: the message.
    QString message;
};

class CommandLine
{
public:
    //! The exit status of a command line that cannot be understood.
    static constexpr int usageExitCode = 2;

    //! The actions that the desktop entry and the bus also offer, in order.
    static QStringList actionNames();

    //! Reads \a arguments, the program's name first.
    static CommandLineRequest parse(const QStringList &arguments);

    //! What an Add, List or Search hands to the running instance (see
    //! NoteRequests), with \a text as the note of an Add; nothing for other kinds.
    static std::optional<QJsonObject> instanceRequest(
        const CommandLineRequest &request, const QString &text = {});
};

} // namespace Vesko
