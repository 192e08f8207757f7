// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/SpellChecker.h"

#include "platform/SerialQueue.h"

#include <QLocale>
#include <QPointer>

namespace Vesko {

SpellChecking::SpellChecking() = default;

SpellChecking::~SpellChecking() = default;

SpellChecking &SpellChecking::shared()
{
    static SpellChecking *const checking = [] {
        auto *created = new SpellChecking;
        // A dictionary is a file of megabytes: read on a worker, handed back.
        static SerialQueue queue(QStringLiteral("com.vesko.vesko.spelling"), QThread::LowPriority);
        const QString language = QLocale().name();
        queue.async([created, language] {
            std::unique_ptr<SpellChecker> checker = makeSpellChecker(language);
            if (!checker)
                return;
            SpellChecker *raw = checker.release();
            QMetaObject::invokeMethod(
                created, [created, raw] { created->adopt(std::unique_ptr<SpellChecker>(raw)); });
        });
        return created;
    }();
    return *checking;
}

bool SpellChecking::loadNow(const QString &language)
{
    std::unique_ptr<SpellChecker> checker = makeSpellChecker(language);
    if (!checker)
        return false;
    adopt(std::move(checker));
    return true;
}

void SpellChecking::adopt(std::unique_ptr<SpellChecker> checker)
{
    m_checker = std::move(checker);
    Q_EMIT ready();
}

} // namespace Vesko
