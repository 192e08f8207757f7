// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/text/SpellCheckHighlighter.h"

#include "platform/SpellChecker.h"

#include <QTextBlock>
#include <QTextBoundaryFinder>
#include <QTextEdit>

namespace Vesko {

namespace {

constexpr qsizetype knownWordsLimit = 20000;

//! A run of letters (with inner apostrophes) is a word to check; anything
//! with digits, underscores or other marks is a name, a number or code.
bool isCheckable(QStringView word)
{
    if (word.size() < 2)
        return false;
    for (QChar c : word) {
        if (!c.isLetter() && c != u'\'' && c != u'\u2019')
            return false;
    }
    return true;
}

template<typename Visit> void forEachWord(const QString &text, Visit visit)
{
    QTextBoundaryFinder words(QTextBoundaryFinder::Word, text);
    qsizetype start = -1;
    while (true) {
        const QTextBoundaryFinder::BoundaryReasons reasons = words.boundaryReasons();
        const qsizetype position = words.position();
        if (start >= 0 && (reasons & QTextBoundaryFinder::EndOfItem)) {
            visit(start, position);
            start = -1;
        }
        if (reasons & QTextBoundaryFinder::StartOfItem)
            start = position;
        if (words.toNextBoundary() < 0)
            break;
    }
}

} // namespace

SpellCheckHighlighter::SpellCheckHighlighter(QTextEdit *editor)
    : QSyntaxHighlighter(editor->document())
    , m_editor(editor)
{
    SpellChecking &checking = SpellChecking::shared();
    m_checker = checking.checker();
    connect(&checking, &SpellChecking::ready, this, [this] {
        if (!m_usesSharedChecker)
            return;
        m_checker = SpellChecking::shared().checker();
        rehighlight();
    });
    connect(editor, &QTextEdit::cursorPositionChanged, this, &SpellCheckHighlighter::caretMoved);
}

void SpellCheckHighlighter::setChecker(SpellChecker *checker)
{
    m_usesSharedChecker = false;
    m_checker = checker;
    m_known.clear();
    rehighlight();
}

SpellChecker *SpellCheckHighlighter::checker() const
{
    return m_checker;
}

bool SpellCheckHighlighter::isCorrect(const QString &word)
{
    const auto known = m_known.constFind(word);
    if (known != m_known.constEnd())
        return *known;
    if (m_known.size() >= knownWordsLimit)
        m_known.clear();
    const bool correct = m_checker->isCorrect(word);
    m_known.insert(word, correct);
    return correct;
}

void SpellCheckHighlighter::caretMoved()
{
    if (m_skippedBlock < 0)
        return;
    const int caretBlock = m_editor->textCursor().blockNumber();
    const int skipped = m_skippedBlock;
    const QTextBlock block = document()->findBlockByNumber(skipped);
    // Leaving the word: it is checked now.
    const int caret = m_editor->textCursor().position() - block.position();
    if (caretBlock != skipped || caret <= 0 || caret > block.length()
        || !block.text().at(caret - 1).isLetter()) {
        m_skippedBlock = -1;
        rehighlightBlock(block);
    }
}

void SpellCheckHighlighter::highlightBlock(const QString &text)
{
    if (!m_checker || text.isEmpty())
        return;
    const QTextCursor caret = m_editor->textCursor();
    const bool caretHere = m_editor->hasFocus() && caret.block() == currentBlock();
    const int caretInBlock = caret.position() - currentBlock().position();
    QTextCharFormat misspelled;
    misspelled.setUnderlineStyle(QTextCharFormat::SpellCheckUnderline);
    misspelled.setUnderlineColor(QColor(220, 50, 47));
    forEachWord(text, [&](qsizetype start, qsizetype end) {
        const QStringView word = QStringView(text).mid(start, end - start);
        if (!isCheckable(word))
            return;
        if (caretHere && caretInBlock == end) {
            // Still being typed.
            m_skippedBlock = currentBlock().blockNumber();
            return;
        }
        if (!isCorrect(word.toString()))
            setFormat(int(start), int(end - start), misspelled);
    });
}

std::optional<std::pair<int, QString>> SpellCheckHighlighter::misspelledWordAt(int position)
{
    if (!m_checker)
        return std::nullopt;
    const QTextBlock block = document()->findBlock(position);
    if (!block.isValid())
        return std::nullopt;
    const QString text = block.text();
    const int offset = position - block.position();
    std::optional<std::pair<int, QString>> found;
    forEachWord(text, [&](qsizetype start, qsizetype end) {
        if (found || offset < start || offset > end)
            return;
        const QString word = text.mid(start, end - start);
        if (isCheckable(word) && !isCorrect(word))
            found = std::pair {block.position() + int(start), word};
    });
    return found;
}

} // namespace Vesko
