// SPDX-License-Identifier: GPL-3.0-or-later

#include "store/NoteText.h"

#include "platform/FileSystem.h"
#include "store/MarkdownText.h"

#include <QDir>
#include <QFileInfo>
#include <QTextBoundaryFinder>

namespace Vesko {

bool isLongNoteText(const QString &text)
{
    constexpr qsizetype longLineCount = 4;
    constexpr qsizetype longCharacterCount = 120;
    if (text.count(u'\n') + 1 >= longLineCount)
        return true;
    // A character is what the reader sees: one grapheme, however many code units.
    if (text.size() <= longCharacterCount)
        return false;
    QTextBoundaryFinder graphemes(QTextBoundaryFinder::Grapheme, text);
    qsizetype count = 0;
    while (graphemes.toNextBoundary() != -1) {
        if (++count > longCharacterCount)
            return true;
    }
    return false;
}

QString copiedText(const Note &note, bool includesMarkdown)
{
    return includesMarkdown ? note.text : strippedMarkdown(note.text);
}

QString plainCopyText(const QList<Note> &notes, bool includesMarkdown)
{
    QStringList texts;
    texts.reserve(notes.size());
    for (const Note &note : notes)
        texts.append(copiedText(note, includesMarkdown));
    return texts.join(QStringLiteral("\n\n"));
}

QString listItemText(qsizetype index, const Note &note, ListStyle style, bool includesMarkdown)
{
    QStringList lines = copiedText(note, includesMarkdown).split(u'\n');
    for (qsizetype i = 1; i < lines.size(); ++i)
        lines[i].prepend(QStringLiteral("   "));
    QString prefix;
    switch (style) {
    case ListStyle::Numbered:
        prefix = QString::number(index + 1) + QStringLiteral(". ");
        break;
    case ListStyle::Dash:
        prefix = QStringLiteral("- ");
        break;
    case ListStyle::Plain:
        break;
    }
    return prefix + lines.join(u'\n');
}

QString listText(const QList<Note> &notes, ListStyle style, bool includesMarkdown)
{
    QStringList items;
    items.reserve(notes.size());
    for (qsizetype i = 0; i < notes.size(); ++i)
        items.append(listItemText(i, notes.at(i), style, includesMarkdown));
    return items.join(u'\n');
}

QString markdownExportText(const Library &library)
{
    QStringList lines;
    for (const Project &project : library.projects) {
        lines.append(QStringLiteral("# ") + project.name);
        lines.append(QString());
        for (const NoteSection &section : project.sections) {
            lines.append(QStringLiteral("## ") + section.title);
            lines.append(QString());
            for (const Note &note : section.notes) {
                QStringList noteLines = note.text.split(u'\n');
                for (qsizetype i = 1; i < noteLines.size(); ++i)
                    noteLines[i].prepend(QStringLiteral("      "));
                lines.append((note.isDone ? QStringLiteral("- [x] ") : QStringLiteral("- [ ] "))
                    + noteLines.join(u'\n'));
                for (const NoteAttachment &attachment : note.attachments) {
                    lines.append(QStringLiteral("      ")
                        + (attachment.kind == NoteAttachment::Kind::Image ? QStringLiteral("![")
                                                                          : QStringLiteral("["))
                        + attachment.fileName + QStringLiteral("](Attachments/")
                        + attachment.storedFileName + u')');
                }
            }
            lines.append(QString());
        }
    }
    return lines.join(u'\n');
}

std::optional<QString> writeMarkdownExport(const QString &text, const QString &path)
{
    // A fresh private name beside the target, made only if nothing is there,
    // then one rename over the target: no other file is touched, and the
    // export never lies half written under its name.
    const QFileInfo target(path);
    const QString temporary = target.absolutePath() + QStringLiteral("/.") + target.fileName()
        + u'.' + makeID().toString(QUuid::WithoutBraces).toUpper();
    if (auto failure = FileSystem::writeNewFile(temporary, text.toUtf8()))
        return failure;
    if (auto failure = FileSystem::replaceFile(temporary, target.absoluteFilePath())) {
        QFile::remove(temporary);
        return failure;
    }
    return std::nullopt;
}

} // namespace Vesko
