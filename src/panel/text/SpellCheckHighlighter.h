// SPDX-License-Identifier: GPL-3.0-or-later
//
// Marks misspelled words in a text field with the wavy underline, as the
// user types, through the desktop's spell checking. The word still being
// typed at the caret is left alone until the caret leaves it.

#pragma once

#include <QHash>
#include <QPointer>
#include <QSyntaxHighlighter>

class QTextEdit;

namespace Vesko {

class SpellChecker;

class SpellCheckHighlighter : public QSyntaxHighlighter
{
    Q_OBJECT

public:
    //! Checks the text of \a editor once the process's checker is ready.
    explicit SpellCheckHighlighter(QTextEdit *editor);

    //! Checks with \a checker instead of the process's one; for tests.
    void setChecker(SpellChecker *checker);
    SpellChecker *checker() const;

    //! The misspelled word at \a position of the document, with its start.
    std::optional<std::pair<int, QString>> misspelledWordAt(int position);

protected:
    void highlightBlock(const QString &text) override;

private:
    bool isCorrect(const QString &word);
    void caretMoved();

    QTextEdit *m_editor;
    SpellChecker *m_checker = nullptr;
    bool m_usesSharedChecker = true;
    QHash<QString, bool> m_known;
    //! The block whose word at the caret was left unchecked.
    int m_skippedBlock = -1;
};

} // namespace Vesko
