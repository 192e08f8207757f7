// SPDX-License-Identifier: GPL-3.0-or-later
//
// The desktop's spell checking, as the text fields need it: whether a word
// is spelled right, and what it might have been. The dictionary of the
// user's language is loaded off the main thread; until it is there, and on
// a desktop without one, there is no checker and nothing is marked.

#pragma once

#include <QObject>
#include <QStringList>

#include <memory>

namespace Vesko {

class SpellChecker
{
public:
    virtual ~SpellChecker() = default;

    virtual bool isCorrect(const QString &word) = 0;
    //! Up to \a limit spellings to offer instead of \a word.
    virtual QStringList suggestions(const QString &word, int limit) = 0;
    //! The dictionary's language, such as "en_US".
    virtual QString language() const = 0;
};

//! Hands out the checker of the process once its dictionary is loaded.
class SpellChecking : public QObject
{
    Q_OBJECT

public:
    //! The process's spell checking; the first call starts loading the
    //! dictionary of the user's language in the background.
    static SpellChecking &shared();

    //! The checker, or null while loading and when the desktop offers none.
    SpellChecker *checker() const { return m_checker.get(); }
    //! Loads the dictionary of \a language (such as "de_DE") now, on the
    //! calling thread; for tests. Returns whether there is one.
    bool loadNow(const QString &language);

Q_SIGNALS:
    //! The checker became available.
    void ready();

private:
    SpellChecking();
    ~SpellChecking() override;
    void adopt(std::unique_ptr<SpellChecker> checker);

    std::unique_ptr<SpellChecker> m_checker;
};

//! A checker for \a language through the desktop's spell checking service,
//! or null when there is no dictionary for it. Safe on any thread; the
//! checker is used on one thread at a time.
std::unique_ptr<SpellChecker> makeSpellChecker(const QString &language);

} // namespace Vesko
