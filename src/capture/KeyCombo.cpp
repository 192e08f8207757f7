// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/KeyCombo.h"

#include "platform/KeyMonitor.h"

#include <QCoreApplication>
#include <QJsonDocument>
#include <QJsonObject>

namespace Vesko {

namespace {

struct SpecialKey
{
    quint16 code;
    const char16_t *symbol;
    const char *name;
};

// X key codes of the keys that have no text of their own.
constexpr SpecialKey specialKeys[] = {
    {65, u"Space", QT_TRANSLATE_NOOP("KeyCombo", "Space")},
    {36, u"\u21A9", QT_TRANSLATE_NOOP("KeyCombo", "Return")},
    {23, u"\u21E5", QT_TRANSLATE_NOOP("KeyCombo", "Tab")},
    {22, u"\u232B", QT_TRANSLATE_NOOP("KeyCombo", "Backspace")},
    {119, u"\u2326", QT_TRANSLATE_NOOP("KeyCombo", "Del")},
    {9, u"\u238B", QT_TRANSLATE_NOOP("KeyCombo", "Esc")},
    {110, u"\u2196", QT_TRANSLATE_NOOP("KeyCombo", "Home")},
    {115, u"\u2198", QT_TRANSLATE_NOOP("KeyCombo", "End")},
    {112, u"\u21DE", QT_TRANSLATE_NOOP("KeyCombo", "PgUp")},
    {117, u"\u21DF", QT_TRANSLATE_NOOP("KeyCombo", "PgDown")},
    {111, u"\u2191", QT_TRANSLATE_NOOP("KeyCombo", "Up")},
    {116, u"\u2193", QT_TRANSLATE_NOOP("KeyCombo", "Down")},
    {113, u"\u2190", QT_TRANSLATE_NOOP("KeyCombo", "Left")},
    {114, u"\u2192", QT_TRANSLATE_NOOP("KeyCombo", "Right")},
    {104, u"\u2324", QT_TRANSLATE_NOOP("KeyCombo", "Enter")},
    {67, u"F1", "F1"},
    {68, u"F2", "F2"},
    {69, u"F3", "F3"},
    {70, u"F4", "F4"},
    {71, u"F5", "F5"},
    {72, u"F6", "F6"},
    {73, u"F7", "F7"},
    {74, u"F8", "F8"},
    {75, u"F9", "F9"},
    {76, u"F10", "F10"},
    {95, u"F11", "F11"},
    {96, u"F12", "F12"},
};

const SpecialKey *specialKey(quint16 code)
{
    for (const SpecialKey &key : specialKeys) {
        if (key.code == code)
            return &key;
    }
    return nullptr;
}

QString layoutTextOrCode(quint16 code, const KeyLayout *layout)
{
    if (layout) {
        if (const std::optional<QString> text = layout->keyText(code); text && !text->isEmpty())
            return text->toUpper();
    }
    return QCoreApplication::translate("KeyCombo", "Key %1").arg(code);
}

} // namespace

QString rawValue(HotKeyAction action)
{
    switch (action) {
    case HotKeyAction::TogglePanel:
        return QStringLiteral("togglePanel");
    case HotKeyAction::CaptureSelection:
        return QStringLiteral("captureSelection");
    case HotKeyAction::QuickAdd:
        return QStringLiteral("quickAdd");
    case HotKeyAction::CopySelectionAsList:
        return QStringLiteral("copySelectionAsList");
    }
    return {};
}

QString title(HotKeyAction action)
{
    switch (action) {
    case HotKeyAction::TogglePanel:
        return QCoreApplication::translate("HotKeyAction", "Show or Hide Vesko");
    case HotKeyAction::CaptureSelection:
        return QCoreApplication::translate("HotKeyAction", "Capture Selection");
    case HotKeyAction::QuickAdd:
        return QCoreApplication::translate("HotKeyAction", "Add a Note");
    case HotKeyAction::CopySelectionAsList:
        return QCoreApplication::translate("HotKeyAction", "Copy Notes as List");
    }
    return {};
}

int hotKeyID(HotKeyAction action)
{
    return int(action) + 1;
}

std::optional<HotKeyAction> hotKeyActionFromID(int id)
{
    if (id < 1 || id > int(allHotKeyActions.size()))
        return std::nullopt;
    return allHotKeyActions[id - 1];
}

KeyCombo KeyCombo::defaultFor(HotKeyAction action)
{
    using namespace ModifierFlag;
    switch (action) {
    case HotKeyAction::TogglePanel:
        // Alt+Space alone is the window menu of most desktops.
        return {65, Control | Option};
    case HotKeyAction::CaptureSelection:
        return {54, Control | Option};
    case HotKeyAction::QuickAdd:
        return {57, Control | Option};
    case HotKeyAction::CopySelectionAsList:
        return {46, Control | Option};
    }
    return {};
}

QByteArray KeyCombo::toJson() const
{
    QJsonObject object;
    object.insert(QStringLiteral("keyCode"), int(keyCode));
    object.insert(QStringLiteral("modifiers"), qint64(modifiers));
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

std::optional<KeyCombo> KeyCombo::fromJson(const QByteArray &data)
{
    if (data.isEmpty())
        return std::nullopt;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(data, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return std::nullopt;
    const QJsonObject object = document.object();
    const QJsonValue code = object.value(QStringLiteral("keyCode"));
    const QJsonValue modifiers = object.value(QStringLiteral("modifiers"));
    if (!code.isDouble() || !modifiers.isDouble())
        return std::nullopt;
    const double codeValue = code.toDouble();
    const double modifierValue = modifiers.toDouble();
    if (codeValue < 0 || codeValue > 0xFFFF || codeValue != double(qint64(codeValue))
        || modifierValue < 0 || modifierValue != double(qint64(modifierValue)))
        return std::nullopt;
    return KeyCombo {quint16(codeValue), quint64(modifierValue)};
}

QString keyName(quint16 keyCode, const KeyLayout *layout)
{
    if (const SpecialKey *key = specialKey(keyCode))
        return QCoreApplication::translate("KeyCombo", key->name);
    return layoutTextOrCode(keyCode, layout);
}

QString displayString(const KeyCombo &combo, const KeyLayout *layout)
{
    using namespace ModifierFlag;
    QString text;
    if (combo.modifiers & Control)
        text += QCoreApplication::translate("KeyCombo", "Super") + u'+';
    if (combo.modifiers & Command)
        text += QCoreApplication::translate("KeyCombo", "Ctrl") + u'+';
    if (combo.modifiers & Option)
        text += QCoreApplication::translate("KeyCombo", "Alt") + u'+';
    if (combo.modifiers & Shift)
        text += QCoreApplication::translate("KeyCombo", "Shift") + u'+';
    return text + keyName(combo.keyCode, layout);
}

QString keySymbol(quint16 keyCode, const KeyLayout *layout)
{
    if (const SpecialKey *key = specialKey(keyCode))
        return QString::fromUtf16(key->symbol);
    return layoutTextOrCode(keyCode, layout);
}

QString symbolDisplayString(const KeyCombo &combo, const KeyLayout *layout)
{
    using namespace ModifierFlag;
    QString text;
    if (combo.modifiers & Control)
        text += u'\u2303';
    if (combo.modifiers & Option)
        text += u'\u2325';
    if (combo.modifiers & Shift)
        text += u'\u21E7';
    if (combo.modifiers & Command)
        text += u'\u2318';
    return text + keySymbol(combo.keyCode, layout);
}

} // namespace Vesko
