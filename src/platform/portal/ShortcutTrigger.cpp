// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/portal/ShortcutTrigger.h"

#include "platform/KeyMonitor.h"

#include <QStringList>

#include <xkbcommon/xkbcommon.h>

#include <memory>

namespace Vesko {

namespace {

// The default layout's keymap (XKB_DEFAULT_* or "us"), compiled on first
// use and kept: a preferred trigger names the key where it lies on that layout.
xkb_keymap *defaultKeymap()
{
    static const std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)> keymap = [] {
        xkb_context *context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
        xkb_keymap *map = context
            ? xkb_keymap_new_from_names(context, nullptr, XKB_KEYMAP_COMPILE_NO_FLAGS)
            : nullptr;
        if (context)
            xkb_context_unref(context);
        return std::unique_ptr<xkb_keymap, decltype(&xkb_keymap_unref)>(map, &xkb_keymap_unref);
    }();
    return keymap.get();
}

struct ModifierWord
{
    quint64 flag;
    const char *xdg;
    const char *sway;
};

// Super is the program's Control, Ctrl its Command, Alt its Option.
constexpr ModifierWord modifierWords[] = {
    {ModifierFlag::Control, "LOGO", "Mod4"},
    {ModifierFlag::Command, "CTRL", "Ctrl"},
    {ModifierFlag::Option, "ALT", "Mod1"},
    {ModifierFlag::Shift, "SHIFT", "Shift"},
};

QString combination(quint16 keyCode, quint64 modifiers, bool sway)
{
    const QString key = keysymName(keyCode);
    if (key.isEmpty())
        return {};
    QStringList parts;
    for (const ModifierWord &word : modifierWords) {
        if (modifiers & word.flag)
            parts.append(QLatin1String(sway ? word.sway : word.xdg));
    }
    parts.append(key);
    return parts.join(u'+');
}

} // namespace

QString keysymName(quint16 keyCode)
{
    xkb_keymap *keymap = defaultKeymap();
    if (!keymap)
        return {};
    const xkb_keysym_t *symbols = nullptr;
    if (xkb_keymap_key_get_syms_by_level(keymap, keyCode, 0, 0, &symbols) < 1)
        return {};
    char name[64];
    if (xkb_keysym_get_name(symbols[0], name, sizeof name) <= 0)
        return {};
    return QString::fromLatin1(name);
}

std::optional<QString> DefaultKeyLayout::keyText(quint16 keyCode) const
{
    xkb_keymap *keymap = defaultKeymap();
    const xkb_keysym_t *symbols = nullptr;
    if (!keymap || xkb_keymap_key_get_syms_by_level(keymap, keyCode, 0, 0, &symbols) < 1)
        return std::nullopt;
    char text[16];
    if (xkb_keysym_to_utf8(symbols[0], text, sizeof text) <= 1)
        return std::nullopt;
    const QString result = QString::fromUtf8(text);
    // Control characters (Return, Tab, Escape…) are no text to show.
    if (result.size() == 1 && !result.at(0).isPrint())
        return std::nullopt;
    return result;
}

QString xdgShortcutTrigger(quint16 keyCode, quint64 modifiers)
{
    return combination(keyCode, modifiers, false);
}

QString swayKeyCombo(quint16 keyCode, quint64 modifiers)
{
    return combination(keyCode, modifiers, true);
}

} // namespace Vesko
