// SPDX-License-Identifier: GPL-3.0-or-later

#include "ProgramSession.h"

#include "TestEnvironment.h"

#include "library/LibraryCoding.h"

#include <QDir>
#include <QFile>
#include <QRegularExpression>

namespace Vesko::Test {

ProgramSession::ProgramSession()
{
    m_environment = QProcessEnvironment::systemEnvironment();
    const std::pair<const char *, const char *> folders[]
        = {{"XDG_DATA_HOME", "data"}, {"XDG_CONFIG_HOME", "config"}, {"XDG_CACHE_HOME", "cache"},
            {"XDG_STATE_HOME", "state"}, {"XDG_RUNTIME_DIR", "runtime"}};
    for (const auto &[variable, folder] : folders) {
        QDir(m_root.path()).mkpath(QLatin1String(folder));
        m_environment.insert(QLatin1String(variable), m_root.filePath(QLatin1String(folder)));
    }
    QFile::setPermissions(m_root.filePath(QStringLiteral("runtime")),
        QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    m_environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    // The program speaks English, whatever the language of the machine; a
    // test of another language sets LANG.
    m_environment.insert(QStringLiteral("LANG"), QStringLiteral("C.UTF-8"));
    for (const char *name : {"LANGUAGE", "LC_ALL", "LC_MESSAGES"})
        m_environment.remove(QString::fromLatin1(name));
}

ProgramSession::~ProgramSession()
{
    for (QProcess *process : std::as_const(m_processes)) {
        if (process->state() != QProcess::NotRunning) {
            process->kill();
            process->waitForFinished(5000);
        }
        delete process;
    }
}

QString ProgramSession::libraryFolder() const
{
    return m_root.filePath(QStringLiteral("data/Vesko"));
}

QString ProgramSession::libraryPath() const
{
    return libraryFolder() + QStringLiteral("/Library.json");
}

QString ProgramSession::configPath() const
{
    return m_root.filePath(QStringLiteral("config/Vesko/Vesko.conf"));
}

QList<Note> ProgramSession::notes() const
{
    return allNotes(readLibraryFile(libraryPath()));
}

QString ProgramSession::lastNote() const
{
    const QList<Note> all = notes();
    if (all.isEmpty() || !all.last().source)
        return QStringLiteral("(none)");
    const NoteSource &source = *all.last().source;
    return QStringList {all.last().text, source.appName, source.windowTitle.value_or(QString()),
        source.bundleIdentifier.value_or(QString())}
        .join(QStringLiteral(" | "));
}

void ProgramSession::setEnvironmentVariable(const QString &name, const QString &value)
{
    m_environment.insert(name, value);
}

void ProgramSession::unsetEnvironmentVariable(const QString &name)
{
    m_environment.remove(name);
}

ProgramSession::Outcome ProgramSession::run(const QString &program, const QStringList &arguments,
    const QByteArray &input, int timeoutMilliseconds) const
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(program, arguments);
    Outcome outcome;
    if (!process.waitForStarted(timeoutMilliseconds))
        return outcome;
    process.write(input);
    process.closeWriteChannel();
    outcome.finished = process.waitForFinished(timeoutMilliseconds);
    if (!outcome.finished) {
        process.kill();
        process.waitForFinished(5000);
    }
    outcome.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    outcome.output = process.readAllStandardOutput();
    outcome.errors = process.readAllStandardError();
    return outcome;
}

QString ProgramSession::stateFolder() const
{
    return m_root.filePath(QStringLiteral("state"));
}

QProcess *ProgramSession::start(
    const QString &program, const QStringList &arguments, QProcess::ProcessChannelMode mode)
{
    auto *process = new QProcess;
    m_processes.append(process);
    process->setProcessEnvironment(m_environment);
    process->setProcessChannelMode(mode);
    process->start(program, arguments);
    // Running from here on: QProcess only learns that the program started
    // when the event loop runs, and a test may look at the program (its
    // windows, its state) before that.
    process->waitForStarted(patience);
    return process;
}

QStringList words(const QString &line)
{
    return line.split(u' ', Qt::SkipEmptyParts);
}

QString xdotool(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("xdotool"), arguments);
    process.waitForFinished(patience);
    return QString::fromUtf8(process.readAllStandardOutput()).trimmed();
}

bool setxkbmap(const QStringList &arguments)
{
    QProcess process;
    process.start(QStringLiteral("setxkbmap"), arguments);
    return process.waitForFinished(patience) && process.exitStatus() == QProcess::NormalExit
        && process.exitCode() == 0;
}

QString visibleWindow(const QString &pattern)
{
    return xdotool({QStringLiteral("search"), QStringLiteral("--onlyvisible"),
                       QStringLiteral("--name"), pattern})
        .section(u'\n', 0, 0);
}

QString activateWindow(const QString &title)
{
    QString window;
    if (QTest::qWaitFor(
            [&] {
                return !(window = visibleWindow(u'^' + QRegularExpression::escape(title) + u'$'))
                            .isEmpty();
            },
            patience))
        xdotool({QStringLiteral("windowactivate"), QStringLiteral("--sync"), window});
    return window;
}

QString xclip(const QString &arguments, const QByteArray &input)
{
    QProcess process;
    process.start(QStringLiteral("xclip"), words(arguments));
    if (!input.isNull()) {
        process.write(input);
        process.closeWriteChannel();
    }
    // xclip -i stays in the background to serve the selection; its parent returns.
    process.waitForFinished(patience);
    return QString::fromUtf8(process.readAllStandardOutput());
}

Library readLibraryFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return decodeLibrary(file.readAll()).value_or(Library {});
}

QList<Note> allNotes(const Library &library)
{
    QList<Note> notes;
    for (const Project &project : library.projects) {
        for (const NoteSection &section : project.sections)
            notes.append(section.notes);
    }
    return notes;
}

} // namespace Vesko::Test
