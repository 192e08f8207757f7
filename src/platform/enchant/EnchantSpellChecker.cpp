// SPDX-License-Identifier: GPL-3.0-or-later
//
// Spell checking through Enchant, the broker that GNOME, Xfce and most GTK
// programs use: it picks the user's Hunspell, Aspell or other dictionaries.

#include "platform/SpellChecker.h"

#include <enchant.h>

namespace Vesko {

namespace {

class EnchantSpellChecker : public SpellChecker
{
public:
    EnchantSpellChecker(EnchantBroker *broker, EnchantDict *dictionary, const QString &language)
        : m_broker(broker)
        , m_dictionary(dictionary)
        , m_language(language)
    { }

    ~EnchantSpellChecker() override
    {
        enchant_broker_free_dict(m_broker, m_dictionary);
        enchant_broker_free(m_broker);
    }

    bool isCorrect(const QString &word) override
    {
        const QByteArray utf8 = word.toUtf8();
        return enchant_dict_check(m_dictionary, utf8.constData(), utf8.size()) == 0;
    }

    QStringList suggestions(const QString &word, int limit) override
    {
        const QByteArray utf8 = word.toUtf8();
        size_t count = 0;
        char **found = enchant_dict_suggest(m_dictionary, utf8.constData(), utf8.size(), &count);
        QStringList result;
        for (size_t i = 0; i < count && result.size() < limit; ++i)
            result.append(QString::fromUtf8(found[i]));
        if (found)
            enchant_dict_free_string_list(m_dictionary, found);
        return result;
    }

    QString language() const override { return m_language; }

private:
    EnchantBroker *m_broker;
    EnchantDict *m_dictionary;
    QString m_language;
};

} // namespace

std::unique_ptr<SpellChecker> makeSpellChecker(const QString &language)
{
    EnchantBroker *broker = enchant_broker_init();
    if (!broker)
        return nullptr;
    const QByteArray tag = language.toUtf8();
    EnchantDict *dictionary = enchant_broker_request_dict(broker, tag.constData());
    if (!dictionary) {
        enchant_broker_free(broker);
        return nullptr;
    }
    return std::make_unique<EnchantSpellChecker>(broker, dictionary, language);
}

} // namespace Vesko
