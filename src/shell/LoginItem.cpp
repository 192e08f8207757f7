// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/LoginItem.h"

#include "platform/FileSystem.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QUuid>

#include <cerrno>
#include <unistd.h>

namespace Vesko {

namespace {

constexpr auto entryName = "com.vesko.Vesko.desktop";
//! The entry of versions before the application id; taken over.
constexpr auto olderEntryName = "vesko.desktop";

// Reads the Hidden key of the [Desktop Entry] group; other groups are not looked at.
bool isHiddenEntry(const QByteArray &text)
{
    bool inMainGroup = false;
    for (const QByteArray &rawLine : text.split('\n')) {
        const QByteArray line = rawLine.trimmed();
        if (line.startsWith('[')) {
            inMainGroup = line == "[Desktop Entry]";
            continue;
        }
        if (!inMainGroup || line.startsWith('#'))
            continue;
        const qsizetype equals = line.indexOf('=');
        if (equals < 0 || line.left(equals).trimmed() != "Hidden")
            continue;
        return line.mid(equals + 1).trimmed() == "true";
    }
    return false;
}

} // namespace

LoginItem::LoginItem(const QString &autostartFolder, const QString &program)
    : m_folder(autostartFolder)
    , m_program(program)
{ }

LoginItem LoginItem::forCurrentProgram()
{
    return LoginItem(defaultAutostartFolder(), QCoreApplication::applicationFilePath());
}

QString LoginItem::defaultAutostartFolder()
{
    QString config = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (config.isEmpty() || !QDir::isAbsolutePath(config))
        config = QDir::homePath() + QStringLiteral("/.config");
    return config + QStringLiteral("/autostart");
}

QString LoginItem::entryPath() const
{
    return m_folder + u'/' + QLatin1String(entryName);
}

QString LoginItem::olderEntryPath() const
{
    return m_folder + u'/' + QLatin1String(olderEntryName);
}

bool LoginItem::isEnabled() const
{
    QFile file(entryPath());
    if (!file.open(QIODevice::ReadOnly)) {
        file.setFileName(olderEntryPath());
        if (!file.open(QIODevice::ReadOnly))
            return false;
    }
    return !isHiddenEntry(file.readAll());
}

std::optional<QString> LoginItem::setEnabled(bool enabled)
{
    const bool hasOlderEntry = QFile::exists(olderEntryPath());
    if (enabled == isEnabled() && !hasOlderEntry)
        return std::nullopt;
    const QString path = entryPath();
    if (!enabled) {
        for (const QString &entry : {path, olderEntryPath()}) {
            if (::unlink(QFile::encodeName(entry).constData()) != 0 && errno != ENOENT)
                return QCoreApplication::translate("LoginItem", "Could not remove “%1”: %2.")
                    .arg(entry, FileSystem::lastErrorText());
        }
        FileSystem::syncDirectory(m_folder);
        return std::nullopt;
    }
    if (auto failure = FileSystem::makePath(m_folder))
        return failure;
    const QString temporary = m_folder + QStringLiteral("/.") + QLatin1String(entryName) + u'.'
        + QUuid::createUuid().toString(QUuid::WithoutBraces);
    if (auto failure = FileSystem::writeNewFile(
            temporary, entryText(m_program), FileSystem::Durability::Flushed, 0644))
        return failure;
    if (auto failure = FileSystem::replaceFile(temporary, path)) {
        QFile::remove(temporary);
        return failure;
    }
    // The entry of an older version gives way: one entry starts Vesko once.
    if (hasOlderEntry) {
        ::unlink(QFile::encodeName(olderEntryPath()).constData());
        FileSystem::syncDirectory(m_folder);
    }
    return std::nullopt;
}

QString LoginItem::quotedExecArgument(const QString &argument)
{
    // Reserved characters of the Exec key need the argument in double quotes,
    // with ", `, $ and \ escaped by a backslash inside them.
    static const QString reserved = QStringLiteral(" \t\n\"'\\><~|&;$*?#()`");
    bool needsQuotes = argument.isEmpty();
    for (QChar c : argument)
        needsQuotes = needsQuotes || reserved.contains(c);
    QString escaped;
    for (QChar c : argument) {
        if (c == u'%')
            escaped += QStringLiteral("%%");
        else if (needsQuotes && (c == u'"' || c == u'`' || c == u'$' || c == u'\\'))
            escaped += u'\\' + QString(c);
        else
            escaped += c;
    }
    return needsQuotes ? u'"' + escaped + u'"' : escaped;
}

QByteArray LoginItem::entryText(const QString &program)
{
    // The key file format escapes a backslash in a value as "\\".
    QString exec = quotedExecArgument(program);
    exec.replace(u'\\', QStringLiteral("\\\\"));
    QString text;
    text += QStringLiteral("[Desktop Entry]\n");
    text += QStringLiteral("Type=Application\n");
    text += QStringLiteral("Name=Vesko\n");
    text += QStringLiteral("Comment=A to-do list, a clipboard, and a scratchpad in one panel\n");
    // The desktop shows the comment in the user's language, whichever it is
    // when it reads the file.
    text += QStringLiteral(
        "Comment[de]=Aufgabenliste, Zwischenablage und Notizblock in einem Panel\n");
    text += QStringLiteral("Comment[fr]=Une liste de tâches, un presse-papiers et un bloc-notes "
                           "dans un seul panneau\n");
    text += QStringLiteral("Exec=") + exec + u'\n';
    text += QStringLiteral("Icon=com.vesko.Vesko\n");
    text += QStringLiteral("Terminal=false\n");
    text += QStringLiteral("X-GNOME-Autostart-enabled=true\n");
    return text.toUtf8();
}

} // namespace Vesko
