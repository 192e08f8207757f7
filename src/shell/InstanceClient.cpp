// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/InstanceClient.h"

#include "shell/ApplicationBus.h"
#include "shell/CommandLine.h"
#include "shell/McpServer.h"
#include "shell/NoteRequests.h"
#include "shell/SingleInstance.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDeadlineTimer>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QProcess>
#include <QThread>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <limits>

namespace Vesko {

namespace {

constexpr int pollMilliseconds = 50;

// The texts of this file, in the translation context "InstanceClient".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(InstanceClient)
};

QJsonObject failure(const QString &message)
{
    return NoteRequests::failure(message);
}

// The time left before \a deadline, at least a millisecond, for a call's timeout.
int timeLeft(const QDeadlineTimer &deadline)
{
    return int(
        qBound(qint64(1), deadline.remainingTime(), qint64(std::numeric_limits<int>::max())));
}

bool isRegistered(QDBusConnection &bus, const QDeadlineTimer &deadline)
{
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("NameHasOwner"));
    call << QLatin1String(ApplicationBus::serviceName);
    const QDBusReply<bool> reply = bus.call(call, QDBus::Block, timeLeft(deadline));
    return reply.isValid() && reply.value();
}

// What the desktop gave this command to pass on, so that the panel may take the focus.
QVariantMap platformData()
{
    QVariantMap data;
    const QString token = qEnvironmentVariable("XDG_ACTIVATION_TOKEN");
    if (!token.isEmpty())
        data.insert(QStringLiteral("activation-token"), token);
    const QString startupID = qEnvironmentVariable("DESKTOP_STARTUP_ID");
    if (!startupID.isEmpty())
        data.insert(QStringLiteral("desktop-startup-id"), startupID);
    return data;
}

void print(FILE *stream, const QString &text)
{
    const QByteArray bytes = text.toUtf8();
    std::fwrite(bytes.constData(), 1, size_t(bytes.size()), stream);
}

int fail(const QString &message)
{
    print(stderr, QStringLiteral("vesko: %1\n").arg(message));
    return 1;
}

// One line per note, tab-separated: id, section, [ ] or [x], text with its
// line breaks and tabs written as \n and \t.
QString notesText(const QJsonArray &notes)
{
    QString text;
    for (const QJsonValue &value : notes) {
        const QJsonObject note = value.toObject();
        QString body = note.value(QStringLiteral("text")).toString();
        body.replace(u'\\', QStringLiteral("\\\\"))
            .replace(u'\n', QStringLiteral("\\n"))
            .replace(u'\t', QStringLiteral("\\t"));
        text += note.value(QStringLiteral("id")).toString() + u'\t'
            + note.value(QStringLiteral("section")).toString() + u'\t'
            + (note.value(QStringLiteral("done")).toBool() ? QStringLiteral("[x]")
                                                           : QStringLiteral("[ ]"))
            + u'\t' + body + u'\n';
    }
    return text;
}

// Standard input as one note, up to the longest note there may be.
std::optional<QString> readStandardInput(QString *error)
{
    QFile input;
    if (!input.open(stdin, QIODevice::ReadOnly)) {
        *error = Texts::tr("Could not read standard input.");
        return std::nullopt;
    }
    const qint64 bound = NoteRequests::maximumTextLength;
    QByteArray bytes;
    while (bytes.size() <= bound) {
        const QByteArray chunk = input.read(bound + 1 - bytes.size());
        if (chunk.isEmpty())
            break;
        bytes += chunk;
    }
    if (bytes.size() > bound) {
        *error = Texts::tr("Standard input holds more than %n bytes; a note is at most that long.",
            nullptr, int(bound));
        return std::nullopt;
    }
    return QString::fromUtf8(bytes);
}

} // namespace

InstanceClient::InstanceClient(const QString &libraryPath, const QString &program)
    : m_libraryPath(libraryPath)
    , m_program(program)
{ }

bool InstanceClient::busServes(const QString &libraryPath)
{
    return answerOnBus(libraryPath, QDeadlineTimer(requestMilliseconds)) == BusAnswer::Serves;
}

InstanceClient::BusAnswer InstanceClient::answerOnBus(
    const QString &libraryPath, const QDeadlineTimer &deadline)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || !isRegistered(bus, deadline))
        return BusAnswer::NoOne;
    const QDBusMessage call = QDBusMessage::createMethodCall(
        QLatin1String(ApplicationBus::serviceName), QLatin1String(ApplicationBus::objectPath),
        QLatin1String(ApplicationBus::notesInterface), QStringLiteral("Instance"));
    const QDBusReply<QString> reply = bus.call(call, QDBus::Block, timeLeft(deadline));
    if (!reply.isValid()) {
        const QDBusError::ErrorType error = reply.error().type();
        return error == QDBusError::NoReply || error == QDBusError::Timeout
                || error == QDBusError::TimedOut
            ? BusAnswer::Silent
            : BusAnswer::Other;
    }
    return reply.value() == SingleInstance::instanceName(libraryPath) ? BusAnswer::Serves
                                                                      : BusAnswer::Other;
}

InstanceClient::Road InstanceClient::road(const QDeadlineTimer &deadline)
{
    m_silent = false;
    switch (answerOnBus(m_libraryPath, deadline)) {
    case BusAnswer::Serves:
        return Road::Bus;
    case BusAnswer::Silent:
        m_silent = true;
        break;
    case BusAnswer::NoOne:
    case BusAnswer::Other:
        break;
    }
    // Without a bus, or when the name is another library's process.
    QLocalSocket socket;
    socket.connectToServer(SingleInstance(m_libraryPath).socketPath());
    if (socket.waitForConnected(qMin(1000, timeLeft(deadline))))
        return Road::Socket;
    if (socket.error() == QLocalSocket::SocketTimeoutError)
        m_silent = true;
    return Road::None;
}

bool InstanceClient::activateOnBus(const QDeadlineTimer &deadline)
{
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected() || isRegistered(bus, deadline))
        return false;
    QDBusMessage call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("/org/freedesktop/DBus"), QStringLiteral("org.freedesktop.DBus"),
        QStringLiteral("StartServiceByName"));
    call << QLatin1String(ApplicationBus::serviceName) << 0u;
    const QDBusReply<uint> started = bus.call(call, QDBus::Block, timeLeft(deadline));
    return started.isValid();
}

bool InstanceClient::commandHasEnded()
{
    bool ok = false;
    const qint64 pid = qEnvironmentVariable(startedForVariable).toLongLong(&ok);
    return ok && pid > 0 && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH;
}

bool InstanceClient::launch()
{
    QProcess process;
    process.setProgram(m_program);
    // A launch that comes up after the request was served elsewhere ends at once.
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(
        QLatin1String(startedForVariable), QString::number(QCoreApplication::applicationPid()));
    process.setProcessEnvironment(environment);
    process.setArguments({QStringLiteral("--background")});
    // The instance outlives this command: it must not hold its pipes open.
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    if (!process.startDetached()) {
        m_failure
            = Texts::tr("Could not start Vesko (%1): %2.").arg(m_program, process.errorString());
        return false;
    }
    return true;
}

InstanceClient::Road InstanceClient::reach()
{
    // One deadline for all of it: every call below waits at most the time left.
    const QDeadlineTimer deadline(startMilliseconds);
    Road found = road(deadline);
    if (found != Road::None)
        return found;
    // D-Bus activation where the service file is installed, else a launch of
    // our own; also when what the bus started serves another library.
    bool launched = false;
    if (!activateOnBus(deadline) && !deadline.hasExpired()) {
        if (!launch())
            return Road::None;
        launched = true;
    }
    // Two commands may start one each at once: the instance lock lets one
    // run, and both reach it.
    while (!deadline.hasExpired()) {
        QThread::msleep(uint(qMin(pollMilliseconds, timeLeft(deadline))));
        found = road(deadline);
        if (found != Road::None)
            return found;
        if (!launched && !deadline.hasExpired()) {
            QDBusConnection bus = QDBusConnection::sessionBus();
            if (isRegistered(bus, deadline)) {
                if (!launch())
                    return Road::None;
                launched = true;
            }
        }
    }
    m_failure = m_silent
        ? Texts::tr(
            "Vesko runs but did not answer within %n seconds.", nullptr, startMilliseconds / 1000)
        : Texts::tr("Vesko did not start within %n seconds.", nullptr, startMilliseconds / 1000);
    return Road::None;
}

QJsonObject InstanceClient::sendOnSocket(const QJsonObject &request)
{
    const SingleInstance instance(m_libraryPath);
    const std::optional<QByteArray> answer = instance.sendRequest(
        QJsonDocument(request).toJson(QJsonDocument::Compact), requestMilliseconds);
    if (!answer)
        return failure(Texts::tr(
            "Vesko did not answer within %n seconds.", nullptr, requestMilliseconds / 1000));
    const QJsonDocument document = QJsonDocument::fromJson(*answer);
    if (!document.isObject())
        return failure(Texts::tr("Vesko gave an answer that cannot be read."));
    return document.object();
}

QJsonObject InstanceClient::send(const QJsonObject &request)
{
    const Road found = reach();
    if (found == Road::None)
        return failure(m_failure);
    if (found == Road::Socket)
        return sendOnSocket(request);
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(ApplicationBus::serviceName),
        QLatin1String(ApplicationBus::objectPath), QLatin1String(ApplicationBus::notesInterface),
        QStringLiteral("Request"));
    call << QString::fromUtf8(QJsonDocument(request).toJson(QJsonDocument::Compact));
    const QDBusReply<QString> reply
        = QDBusConnection::sessionBus().call(call, QDBus::Block, requestMilliseconds);
    if (!reply.isValid())
        return failure(Texts::tr("Vesko did not answer: %1").arg(reply.error().message()));
    const QJsonDocument document = QJsonDocument::fromJson(reply.value().toUtf8());
    if (!document.isObject())
        return failure(Texts::tr("Vesko gave an answer that cannot be read."));
    return document.object();
}

QJsonObject InstanceClient::activateAction(const QString &name, Start start)
{
    const Road found = start == Start::Never ? road(QDeadlineTimer(requestMilliseconds)) : reach();
    if (found == Road::None && start == Start::Never)
        return {{QStringLiteral("ok"), true}, {QStringLiteral("ran"), false}};
    if (found == Road::None)
        return failure(m_failure);
    if (found == Road::Socket) {
        return sendOnSocket({{QStringLiteral("command"), QStringLiteral("action")},
            {QStringLiteral("name"), name}});
    }
    QDBusMessage call = QDBusMessage::createMethodCall(QLatin1String(ApplicationBus::serviceName),
        QLatin1String(ApplicationBus::objectPath),
        QLatin1String(ApplicationBus::applicationInterface), QStringLiteral("ActivateAction"));
    call << name << QVariantList {} << platformData();
    const QDBusMessage reply
        = QDBusConnection::sessionBus().call(call, QDBus::Block, requestMilliseconds);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return failure(Texts::tr("Vesko did not run “%1”: %2").arg(name, reply.errorMessage()));
    return QJsonObject {{QStringLiteral("ok"), true}};
}

int runClientCommand(const CommandLineRequest &request, const QString &libraryPath)
{
    InstanceClient client(libraryPath, QCoreApplication::applicationFilePath());
    using Kind = CommandLineRequest::Kind;
    QJsonObject answer;
    switch (request.kind) {
    case Kind::Action: {
        // Starting Vesko only to quit or hide it would be absurd: with none
        // running there is nothing to do. A Shift tap is no request to start
        // either: the user who quit Vesko taps Shift for other reasons.
        static const QStringList startNothing {QStringLiteral("quit"), QStringLiteral("hide"),
            QStringLiteral("shift"), QStringLiteral("shift-press")};
        const bool stops = startNothing.contains(request.action);
        answer = client.activateAction(request.action,
            stops ? InstanceClient::Start::Never : InstanceClient::Start::IfNoneRuns);
        break;
    }
    case Kind::Add: {
        QString text = request.text;
        if (request.readsStandardInput) {
            QString error;
            const std::optional<QString> input = readStandardInput(&error);
            if (!input)
                return fail(error);
            text = *input;
        }
        if (text.trimmed().isEmpty())
            return fail(Texts::tr("The note is blank: nothing was added."));
        answer = client.send(*CommandLine::instanceRequest(request, text));
        break;
    }
    case Kind::List:
    case Kind::Search:
        answer = client.send(*CommandLine::instanceRequest(request));
        break;
    case Kind::Mcp: {
        McpServer server([&client](const QJsonObject &request) { return client.send(request); });
        return server.serve();
    }
    default:
        return fail(Texts::tr("This is not a command for the running Vesko."));
    }

    if (!answer.value(QStringLiteral("ok")).toBool())
        return fail(answer.value(QStringLiteral("error")).toString());
    if (request.kind == Kind::Add) {
        print(stdout,
            answer.value(QStringLiteral("note")).toObject().value(QStringLiteral("id")).toString()
                + u'\n');
    } else if (request.kind == Kind::List || request.kind == Kind::Search) {
        const QJsonArray notes = answer.value(QStringLiteral("notes")).toArray();
        print(stdout,
            request.json
                ? QString::fromUtf8(QJsonDocument(notes).toJson(QJsonDocument::Compact)) + u'\n'
                : notesText(notes));
    }
    return 0;
}

} // namespace Vesko
