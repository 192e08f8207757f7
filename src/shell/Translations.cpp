// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>
#include <QLocale>
#include <QTranslator>

namespace Vesko::Translations {

namespace {

const QLatin1String prefix("vesko_");
const QLatin1String suffix(".qm");

// "de-DE" as the files spell it: "de_DE".
QString fileLanguage(const QString &uiLanguage)
{
    QString language = uiLanguage;
    return language.replace(u'-', u'_');
}

bool isSourceLanguage(const QString &language)
{
    return language == QLatin1String("en") || language.startsWith(QLatin1String("en_"))
        || language == QLatin1String("C") || language == QLatin1String("POSIX");
}

} // namespace

QString chooseLanguage(const QStringList &uiLanguages, const QStringList &available)
{
    for (const QString &uiLanguage : uiLanguages) {
        const QString full = fileLanguage(uiLanguage);
        if (isSourceLanguage(full))
            return {};
        // "zh_Hant_TW" tries "zh_Hant_TW", "zh_Hant" and "zh".
        for (QString candidate = full; !candidate.isEmpty();
             candidate.truncate(qMax(0, candidate.lastIndexOf(u'_')))) {
            if (available.contains(candidate))
                return candidate;
        }
    }
    return {};
}

QStringList availableLanguages(const QString &folder)
{
    QStringList languages;
    const QStringList files
        = QDir(folder).entryList({prefix + u'*' + suffix}, QDir::Files | QDir::Readable);
    for (const QString &file : files)
        languages.append(file.mid(prefix.size(), file.size() - prefix.size() - suffix.size()));
    return languages;
}

QString install(QCoreApplication &app, const QStringList &folders)
{
    const QStringList uiLanguages = QLocale::system().uiLanguages();
    for (const QString &folder : folders) {
        const QStringList available = availableLanguages(folder);
        if (available.isEmpty())
            continue;
        const QString language = chooseLanguage(uiLanguages, available);
        if (language.isEmpty())
            return {};
        auto *own = new QTranslator(&app);
        if (!own->load(prefix + language + suffix, folder)) {
            delete own;
            return {};
        }
        QCoreApplication::installTranslator(own);
        // Qt's dialogs and key names in the same language; where Qt has no
        // translation of it they stay in English.
        auto *qt = new QTranslator(&app);
        if (qt->load(QStringLiteral("qtbase_") + language,
                QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
            QCoreApplication::installTranslator(qt);
        else
            delete qt;
        return language;
    }
    return {};
}

} // namespace Vesko::Translations
