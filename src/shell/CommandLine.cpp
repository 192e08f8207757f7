// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace Vesko {

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("CommandLine", text);
}

QString commandsText()
{
    return tr("Commands:\n"
              "  (none)        start Vesko, or show the panel of the one that runs\n"
              "  toggle        show or hide the panel\n"
              "  show          show the panel with the composer focused\n"
              "  hide          hide the panel\n"
              "  capture       add the selected text of the front window as a note\n"
              "  quick-add     show the panel to type a note\n"
              "  copy-list     copy the selected notes, else every visible one, as a list\n"
              "  quit          quit Vesko\n"
              "  add TEXT...   add a note (\"-\" reads it from standard input)\n"
              "  list          print the notes of the active project\n"
              "  search QUERY  print the notes that contain QUERY\n"
              "  mcp           serve the notes to AI agents (Model Context Protocol)\n"
              "\n"
              "Run \"vesko COMMAND --help\" for the options of a command.");
}

// The help of \a parser, its usage line naming the program as the user types it.
QString helpText(const QCommandLineParser &parser, const QString &usageName)
{
    QString text = parser.helpText();
    const QString program = QCoreApplication::arguments().value(0);
    const QString usage = QStringLiteral("Usage: ") + program;
    if (!program.isEmpty() && text.startsWith(usage))
        text.replace(0, usage.size(), QStringLiteral("Usage: ") + usageName);
    return text;
}

CommandLineRequest invalid(const QString &message)
{
    CommandLineRequest request;
    request.kind = CommandLineRequest::Kind::Invalid;
    request.message = message;
    return request;
}

CommandLineRequest printing(CommandLineRequest::Kind kind, const QString &text)
{
    CommandLineRequest request;
    request.kind = kind;
    request.message = text;
    return request;
}

// Parses a command's own options; \a words starts with the program's name
// followed by the command. Invalid, or Help, or nothing when it is understood.
std::optional<CommandLineRequest> parseCommand(
    QCommandLineParser &parser, const QStringList &words, const QString &command)
{
    const QCommandLineOption help(
        {QStringLiteral("h"), QStringLiteral("help")}, tr("Shows this help."));
    parser.addOption(help);
    if (!parser.parse(words))
        return invalid(parser.errorText());
    if (parser.isSet(help))
        return printing(
            CommandLineRequest::Kind::Help, helpText(parser, QStringLiteral("vesko ") + command));
    return std::nullopt;
}

// The program's name and the words after the command.
QStringList withoutCommand(const QStringList &arguments)
{
    return QStringList {arguments.at(0)} + arguments.mid(2);
}

// The options that QGuiApplication takes for itself, such as the session
// manager's "-session ID" when it restores the session, before any command:
// left out here, and left to the application object.
QStringList withoutToolkitOptions(const QStringList &words)
{
    static const QStringList withValue {QStringLiteral("platform"),
        QStringLiteral("platformpluginpath"), QStringLiteral("platformtheme"),
        QStringLiteral("plugin"), QStringLiteral("qwindowgeometry"), QStringLiteral("qwindowicon"),
        QStringLiteral("qwindowtitle"), QStringLiteral("session"), QStringLiteral("style"),
        QStringLiteral("stylesheet"), QStringLiteral("display"), QStringLiteral("name"),
        QStringLiteral("title"), QStringLiteral("geometry"), QStringLiteral("visual")};
    static const QStringList alone {QStringLiteral("reverse"), QStringLiteral("widgetcount"),
        QStringLiteral("nograb"), QStringLiteral("dograb"), QStringLiteral("sync")};
    QStringList kept {words.constFirst()};
    for (qsizetype i = 1; i < words.size(); ++i) {
        const QString &word = words.at(i);
        if (!word.startsWith(u'-') || word == u"-" || word == u"--") {
            kept += words.mid(i);
            break;
        }
        QString name = word.mid(word.startsWith(QStringLiteral("--")) ? 2 : 1);
        const bool hasValue = name.contains(u'=');
        name = name.section(u'=', 0, 0);
        if (alone.contains(name))
            continue;
        if (withValue.contains(name)) {
            if (!hasValue)
                ++i; // the value
            continue;
        }
        kept.append(word);
    }
    return kept;
}

} // namespace

QStringList CommandLine::actionNames()
{
    return {QStringLiteral("toggle"), QStringLiteral("show"), QStringLiteral("hide"),
        QStringLiteral("capture"), QStringLiteral("quick-add"), QStringLiteral("copy-list"),
        QStringLiteral("quit")};
}

CommandLineRequest CommandLine::parse(const QStringList &arguments)
{
    const QStringList words = withoutToolkitOptions(
        arguments.isEmpty() ? QStringList {QStringLiteral("vesko")} : arguments);

    QCommandLineParser top;
    top.setApplicationDescription(
        tr("Vesko, a keyboard-driven notes panel.") + QStringLiteral("\n\n") + commandsText());
    top.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help(
        {QStringLiteral("h"), QStringLiteral("help")}, tr("Shows this help."));
    const QCommandLineOption version(
        {QStringLiteral("v"), QStringLiteral("version")}, tr("Shows the version."));
    QCommandLineOption background(QStringLiteral("background"),
        tr("Starts without showing the panel and waits for commands."));
    top.addOption(help);
    top.addOption(version);
    top.addOption(background);
    top.addPositionalArgument(
        QStringLiteral("command"), tr("What to do (see Commands)."), QStringLiteral("[command]"));
    if (!top.parse(words))
        return invalid(top.errorText());
    if (top.isSet(help))
        return printing(CommandLineRequest::Kind::Help, helpText(top, QStringLiteral("vesko")));
    if (top.isSet(version)) {
        return printing(CommandLineRequest::Kind::Version,
            QStringLiteral("vesko %1\n").arg(QCoreApplication::applicationVersion()));
    }

    const QStringList positional = top.positionalArguments();
    if (positional.isEmpty()) {
        CommandLineRequest request;
        request.background = top.isSet(background);
        return request;
    }
    if (top.isSet(background))
        return invalid(tr("--background starts Vesko: it takes no command."));

    // The command is the first word that is not an option.
    const QString command = positional.first();
    const qsizetype commandIndex = words.indexOf(command, 1);
    const QStringList commandWords
        = withoutCommand(QStringList {words.first()} + words.mid(commandIndex));

    CommandLineRequest request;
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsOptions);
    const QCommandLineOption sectionOption(
        QStringLiteral("section"), tr("The section, by its title."), tr("NAME"));
    const QCommandLineOption projectOption(
        QStringLiteral("project"), tr("The project, by its name."), tr("NAME"));
    const QCommandLineOption allOption(QStringLiteral("all"), tr("Lists the done notes too."));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"), tr("Prints a JSON array with one object per note."));

    if (actionNames().contains(command)) {
        parser.setApplicationDescription(
            tr("Runs the action \"%1\" in the running Vesko.").arg(command));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        if (!parser.positionalArguments().isEmpty())
            return invalid(tr("\"%1\" takes no arguments.").arg(command));
        request.kind = CommandLineRequest::Kind::Action;
        request.action = command;
        return request;
    }
    if (command == u"add") {
        parser.setApplicationDescription(
            tr("Adds a note to the active project, or to the project and section given."));
        parser.addOption(sectionOption);
        parser.addOption(projectOption);
        parser.addPositionalArgument(QStringLiteral("text"),
            tr("The note's text; \"-\" reads it from standard input."), tr("TEXT..."));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        const QStringList text = parser.positionalArguments();
        if (text.isEmpty())
            return invalid(
                tr("\"add\" needs the note's text, or \"-\" to read it from standard input."));
        if (text.contains(QStringLiteral("-"))) {
            if (text.size() > 1)
                return invalid(
                    tr("\"-\" reads the whole note from standard input: give no other text."));
            request.readsStandardInput = true;
        } else {
            request.text = text.join(u' ');
            if (request.text.trimmed().isEmpty())
                return invalid(tr("The note is blank."));
        }
        request.kind = CommandLineRequest::Kind::Add;
        request.section = parser.value(sectionOption);
        request.project = parser.value(projectOption);
        return request;
    }
    if (command == u"list") {
        parser.setApplicationDescription(
            tr("Prints the open notes of the active project, or of the project given."));
        parser.addOption(projectOption);
        parser.addOption(sectionOption);
        parser.addOption(allOption);
        parser.addOption(jsonOption);
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        if (!parser.positionalArguments().isEmpty())
            return invalid(tr("\"list\" takes no arguments beside its options."));
        request.kind = CommandLineRequest::Kind::List;
        request.project = parser.value(projectOption);
        request.section = parser.value(sectionOption);
        request.includeDone = parser.isSet(allOption);
        request.json = parser.isSet(jsonOption);
        return request;
    }
    if (command == u"search") {
        parser.setApplicationDescription(
            tr("Prints the notes of the active project that contain the query."));
        parser.addOption(jsonOption);
        parser.addPositionalArgument(
            QStringLiteral("query"), tr("What to look for."), tr("QUERY..."));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        request.query = parser.positionalArguments().join(u' ');
        if (request.query.trimmed().isEmpty())
            return invalid(tr("\"search\" needs a query."));
        request.kind = CommandLineRequest::Kind::Search;
        request.json = parser.isSet(jsonOption);
        return request;
    }
    if (command == u"mcp") {
        parser.setApplicationDescription(tr("Serves the notes to AI agents over the Model Context "
                                            "Protocol on standard input and output."));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        if (!parser.positionalArguments().isEmpty())
            return invalid(tr("\"mcp\" takes no arguments."));
        request.kind = CommandLineRequest::Kind::Mcp;
        return request;
    }
    return invalid(tr("Unknown command \"%1\".").arg(command));
}

std::optional<QJsonObject> CommandLine::instanceRequest(
    const CommandLineRequest &request, const QString &text)
{
    using Kind = CommandLineRequest::Kind;
    QJsonObject made;
    switch (request.kind) {
    case Kind::Add:
        made = {{QStringLiteral("command"), QStringLiteral("add")}, {QStringLiteral("text"), text}};
        break;
    case Kind::List:
        made = {{QStringLiteral("command"), QStringLiteral("list")},
            {QStringLiteral("includeDone"), request.includeDone}};
        break;
    case Kind::Search:
        return QJsonObject {{QStringLiteral("command"), QStringLiteral("search")},
            {QStringLiteral("query"), request.query}};
    default:
        return std::nullopt;
    }
    if (!request.section.isEmpty())
        made.insert(QStringLiteral("section"), request.section);
    if (!request.project.isEmpty())
        made.insert(QStringLiteral("project"), request.project);
    return made;
}

} // namespace Vesko
