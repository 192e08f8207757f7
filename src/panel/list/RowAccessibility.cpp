// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/list/RowAccessibility.h"

#include "store/MarkdownText.h"
#include "store/PanelRow.h"

#include <QCoreApplication>
#include <QStringList>
#include <QTextBoundaryFinder>

namespace Vesko::RowAccessibility {

namespace {

// The texts of this file, in the translation context "RowAccessibility".
struct Texts
{
    Q_DECLARE_TR_FUNCTIONS(RowAccessibility)
};

//! The length in UTF-16 units of the first \a count characters (grapheme
//! clusters) of \a text, or -1 when it has no more than \a count.
qsizetype prefixOfCharacters(const QString &text, qsizetype count)
{
    if (text.size() <= count)
        return -1; // a character takes at least one unit
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, text);
    qsizetype characters = 0;
    qsizetype end = 0;
    while ((end = finder.toNextBoundary()) >= 0) {
        if (++characters == count)
            return end < text.size() ? end : -1;
    }
    return -1;
}

} // namespace

QString spokenText(const QString &markdown)
{
    const MarkdownText rendered = markdownAttributedString(markdown);
    QString spoken;
    spoken.reserve(rendered.text.size());
    bool afterCut = false;
    auto append = [&](qsizetype from, qsizetype to) {
        QStringView part = QStringView(rendered.text).mid(from, to - from);
        // Words around a cut are kept apart by one blank, not two.
        if (afterCut && (spoken.isEmpty() || spoken.back().isSpace())) {
            while (!part.isEmpty() && part.front().isSpace())
                part = part.mid(1);
        }
        spoken += part;
        afterCut = afterCut && part.isEmpty();
    };
    qsizetype position = 0;
    for (const MarkdownRun &run : rendered.runs) {
        if (!(run.attributes & MarkdownRun::Strikethrough))
            continue;
        append(position, run.start);
        afterCut = true;
        position = run.start + run.length;
    }
    append(position, rendered.text.size());
    // A note struck through from end to end still has something to say.
    if (spoken.trimmed().isEmpty())
        return rendered.text;
    return spoken;
}

QString noteLabel(const Note &note)
{
    QString text = spokenText(note.text).trimmed();
    if (const qsizetype cut = prefixOfCharacters(text, labelTextLimit); cut >= 0)
        text = text.left(cut) + QChar(0x2026);
    QStringList names;
    names.reserve(note.attachments.size());
    for (const NoteAttachment &attachment : note.attachments)
        names.append(attachment.fileName);
    const QString attachments = names.join(QStringLiteral(", "));
    if (text.isEmpty())
        return attachments;
    if (attachments.isEmpty())
        return text;
    return Texts::tr("%1. Attachments: %2").arg(text, attachments);
}

QString noteValue(const Note &note)
{
    return note.isDone ? Texts::tr("Done") : Texts::tr("Not done");
}

QString doneControlLabel(bool isDone)
{
    return isDone ? Texts::tr("Mark as not done") : Texts::tr("Mark as done");
}

QString sectionLabel(const PanelSectionRow &section)
{
    return Texts::tr("%1 section, %2 remaining")
        .arg(section.title, QString::number(section.remainingCount));
}

} // namespace Vesko::RowAccessibility
