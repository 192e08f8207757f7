// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>

class QCoreApplication;

namespace Vesko::Translations {

//! The language, of those Vesko is translated into, to speak to a user who
//! reads \a uiLanguages in this order (as QLocale::uiLanguages() lists them:
//! "de-DE", "fr"). \a available names the translations ("de", "pt_BR").
//! A full name ("pt_BR") is taken before the language alone ("pt"). Empty
//! when English, the language of the program's own texts, comes first, or
//! when none of the user's languages is available.
QString chooseLanguage(const QStringList &uiLanguages, const QStringList &available);

//! The languages of the "vesko_LANG.qm" files in \a folder.
QStringList availableLanguages(const QString &folder);

//! Installs into \a app the translation of the user's language found first
//! in \a folders, and with it Qt's own for the texts of its dialogs. Does
//! nothing where the user reads English or a language Vesko does not speak.
//! Returns the language installed, or empty.
QString install(QCoreApplication &app, const QStringList &folders);

} // namespace Vesko::Translations
