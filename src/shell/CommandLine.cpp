// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/CommandLine.h"

#include <QCommandLineParser>
#include <QCoreApplication>

namespace Vesko {

namespace {

// The texts of this file, in the translation context "CommandLine".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(CommandLine)
};

QString commandsText()
{
    return Texts::tr("Commands:\n"
              "  (none)        start Vesko, or show the panel of the one that runs\n"
              "  toggle        show or hide the panel\n"
              "  show          show the panel with the composer focused\n"
              "  hide          hide the panel\n"
              "  capture       add the selected text of the front window as a note\n"
              "  quick-add     show the panel to type a note\n"
              "  copy-list     copy the selected notes, else every visible one, as a list\n"
              "  shift         one tap of a lone Shift key, for double Shift where the\n"
              "                desktop runs a command on a Shift release (sway: bindsym\n"
              "                --release Shift_L exec vesko shift)\n"
              "  shift-press   a Shift press, where the desktop reports presses too: a\n"
              "                Shift held too long is then no tap\n"
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
    // The line as the parser words it, in the user's language.
    const QString usage = QCoreApplication::translate("QCommandLineParser", "Usage: %1");
    if (!program.isEmpty() && text.startsWith(usage.arg(program)))
        text.replace(0, usage.arg(program).size(), usage.arg(usageName));
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
        {QStringLiteral("h"), QStringLiteral("help")}, Texts::tr("Shows this help."));
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
        QStringLiteral("shift"), QStringLiteral("shift-press"), QStringLiteral("quit")};
}

CommandLineRequest CommandLine::parse(const QStringList &arguments)
{
    const QStringList words = withoutToolkitOptions(
        arguments.isEmpty() ? QStringList {QStringLiteral("vesko")} : arguments);

    QCommandLineParser top;
    top.setApplicationDescription(Texts::tr("Vesko, a keyboard-driven notes panel.")
        + QStringLiteral("\n\n") + commandsText());
    top.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    const QCommandLineOption help(
        {QStringLiteral("h"), QStringLiteral("help")}, Texts::tr("Shows this help."));
    const QCommandLineOption version(
        {QStringLiteral("v"), QStringLiteral("version")}, Texts::tr("Shows the version."));
    QCommandLineOption background(QStringLiteral("background"),
        Texts::tr("Starts without showing the panel and waits for commands."));
    top.addOption(help);
    top.addOption(version);
    top.addOption(background);
    top.addPositionalArgument(
        Texts::tr("command"), Texts::tr("What to do (see Commands)."), Texts::tr("[command]"));
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
        return invalid(Texts::tr("--background starts Vesko: it takes no command."));

    // The command is the first word that is not an option.
    const QString command = positional.first();
    const qsizetype commandIndex = words.indexOf(command, 1);
    const QStringList commandWords
        = withoutCommand(QStringList {words.first()} + words.mid(commandIndex));

    CommandLineRequest request;
    QCommandLineParser parser;
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsOptions);
    const QCommandLineOption sectionOption(
        QStringLiteral("section"), Texts::tr("The section, by its title."), Texts::tr("NAME"));
    const QCommandLineOption projectOption(
        QStringLiteral("project"), Texts::tr("The project, by its name."), Texts::tr("NAME"));
    const QCommandLineOption allOption(
        QStringLiteral("all"), Texts::tr("Lists the done notes too."));
    const QCommandLineOption jsonOption(
        QStringLiteral("json"), Texts::tr("Prints a JSON array with one object per note."));

    if (actionNames().contains(command)) {
        parser.setApplicationDescription(
            Texts::tr("Runs the action \"%1\" in the running Vesko.").arg(command));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        if (!parser.positionalArguments().isEmpty())
            return invalid(Texts::tr("\"%1\" takes no arguments.").arg(command));
        request.kind = CommandLineRequest::Kind::Action;
        request.action = command;
        return request;
    }
    if (command == u"add") {
        parser.setApplicationDescription(
            Texts::tr("Adds a note to the active project, or to the project and section given."));
        parser.addOption(sectionOption);
        parser.addOption(projectOption);
        parser.addPositionalArgument(Texts::tr("text"),
            Texts::tr("The note's text; \"-\" reads it from standard input."),
            Texts::tr("TEXT..."));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        const QStringList text = parser.positionalArguments();
        if (text.isEmpty())
            return invalid(Texts::tr(
                "\"add\" needs the note's text, or \"-\" to read it from standard input."));
        if (text.contains(QStringLiteral("-"))) {
            if (text.size() > 1)
                return invalid(Texts::tr(
                    "\"-\" reads the whole note from standard input: give no other text."));
            request.readsStandardInput = true;
        } else {
            request.text = text.join(u' ');
            if (request.text.trimmed().isEmpty())
                return invalid(Texts::tr("The note is blank."));
        }
        request.kind = CommandLineRequest::Kind::Add;
        request.section = parser.value(sectionOption);
        request.project = parser.value(projectOption);
        return request;
    }
    if (command == u"list") {
        parser.setApplicationDescription(
            Texts::tr("Prints the open notes of the active project, or of the project given."));
        parser.addOption(projectOption);
        parser.addOption(sectionOption);
        parser.addOption(allOption);
        parser.addOption(jsonOption);
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        if (!parser.positionalArguments().isEmpty())
            return invalid(Texts::tr("\"list\" takes no arguments beside its options."));
        request.kind = CommandLineRequest::Kind::List;
        request.project = parser.value(projectOption);
        request.section = parser.value(sectionOption);
        request.includeDone = parser.isSet(allOption);
        request.json = parser.isSet(jsonOption);
        return request;
    }
    if (command == u"search") {
        parser.setApplicationDescription(
            Texts::tr("Prints the notes of the active project that contain the query."));
        parser.addOption(jsonOption);
        parser.addPositionalArgument(
            Texts::tr("query"), Texts::tr("What to look for."), Texts::tr("QUERY..."));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        request.query = parser.positionalArguments().join(u' ');
        if (request.query.trimmed().isEmpty())
            return invalid(Texts::tr("\"search\" needs a query."));
        request.kind = CommandLineRequest::Kind::Search;
        request.json = parser.isSet(jsonOption);
        return request;
    }
    if (command == u"mcp") {
        parser.setApplicationDescription(
            Texts::tr("Serves the notes to AI agents over the Model Context "
                      "Protocol on standard input and output."));
        if (auto done = parseCommand(parser, commandWords, command))
            return *done;
        if (!parser.positionalArguments().isEmpty())
            return invalid(Texts::tr("\"mcp\" takes no arguments."));
        request.kind = CommandLineRequest::Kind::Mcp;
        return request;
    }
    return invalid(Texts::tr("Unknown command \"%1\".").arg(command));
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
