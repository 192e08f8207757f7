// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/HotKeyCenter.h"

#include "platform/KeyMonitor.h"
#include "platform/Logging.h"
#include "platform/SettingsFile.h"

namespace Vesko {

HotKeyCenter::HotKeyCenter(HotKeyRegistrar &registrar, QObject *parent)
    : QObject(parent)
    , m_registrar(registrar)
{
    for (HotKeyAction action : allHotKeyActions) {
        const QVariant stored = settingValue(settingsKey(action));
        if (!stored.isValid()) {
            m_combos.insert(action, KeyCombo::defaultFor(action));
            continue;
        }
        if (const std::optional<KeyCombo> combo = KeyCombo::fromJson(stored.toByteArray()))
            m_combos.insert(action, *combo);
    }
    // What the desktop says later (the keys it gave, a session it ended)
    // reaches whoever shows the registrations.
    m_registrar.setChangeHandler([this] { Q_EMIT registrationsChanged(); });
}

HotKeyCenter::~HotKeyCenter()
{
    m_registrar.setChangeHandler({});
}

QString HotKeyCenter::desktopTrigger(HotKeyAction action) const
{
    return m_registrar.assignedTrigger(hotKeyID(action));
}

QString HotKeyCenter::settingsKey(HotKeyAction action)
{
    return QStringLiteral("hotkey.") + rawValue(action);
}

std::optional<KeyCombo> HotKeyCenter::combo(HotKeyAction action) const
{
    const auto found = m_combos.constFind(action);
    if (found == m_combos.constEnd())
        return std::nullopt;
    return *found;
}

void HotKeyCenter::setHandler(std::function<void(HotKeyAction)> handler)
{
    m_handler = std::move(handler);
}

void HotKeyCenter::installEventHandler()
{
    if (m_handlerInstalled)
        return;
    m_handlerInstalled = true;
    m_registrar.installHandler([this](int id) {
        const std::optional<HotKeyAction> action = hotKeyActionFromID(id);
        if (action && m_handler)
            m_handler(*action);
    });
}

void HotKeyCenter::registerAll()
{
    if (!m_registrar.isAvailable()) {
        qCInfo(lcCapture, "Global hot keys are not available in this session");
        return;
    }
    for (HotKeyAction action : allHotKeyActions)
        registerCombo(combo(action).value_or(KeyCombo {}), action);
}

void HotKeyCenter::registerCombo(const KeyCombo &combo, HotKeyAction action)
{
    if (!m_registrar.isAvailable())
        return;
    // A desktop that owns the keys is offered every action, the combination
    // only as a wish: the user gives it keys in the desktop's settings.
    const bool usable = combo.modifiers & ModifierFlag::HotKeyModifiers;
    if (!usable && !m_registrar.desktopOwnsCombinations())
        return;
    const int status = usable
        ? m_registrar.registerKey(hotKeyID(action), combo.keyCode, combo.modifiers)
        : m_registrar.registerKey(hotKeyID(action), 0, 0);
    if (status == 0) {
        m_registered.insert(action);
        m_refused.remove(action);
    } else {
        qCCritical(
            lcCapture, "Could not register %s (%d)", qUtf8Printable(rawValue(action)), status);
        m_refused.insert(action);
    }
    Q_EMIT registrationsChanged();
}

void HotKeyCenter::unregister(HotKeyAction action)
{
    m_refused.remove(action);
    if (!m_registered.remove(action))
        return;
    m_registrar.unregisterKey(hotKeyID(action));
    Q_EMIT registrationsChanged();
}

void HotKeyCenter::unregisterAll()
{
    for (HotKeyAction action : allHotKeyActions)
        unregister(action);
    if (m_handlerInstalled) {
        m_registrar.removeHandler();
        m_handlerInstalled = false;
    }
}

namespace {

// The same grab on the desktop: the same key with the same modifiers.
bool sameGrab(const KeyCombo &a, const KeyCombo &b)
{
    return a.keyCode == b.keyCode
        && (a.modifiers & ModifierFlag::HotKeyModifiers)
        == (b.modifiers & ModifierFlag::HotKeyModifiers);
}

} // namespace

std::optional<HotKeyAction> HotKeyCenter::refusingAction(HotKeyAction action) const
{
    const std::optional<KeyCombo> wanted = combo(action);
    if (!isRefused(action) || !wanted)
        return std::nullopt;
    for (HotKeyAction other : allHotKeyActions) {
        const std::optional<KeyCombo> held = combo(other);
        if (other != action && isRegistered(other) && held && sameGrab(*held, *wanted))
            return other;
    }
    return std::nullopt;
}

void HotKeyCenter::offerFreedCombo(const std::optional<KeyCombo> &freed, HotKeyAction action)
{
    if (!freed)
        return;
    for (HotKeyAction other : allHotKeyActions) {
        const std::optional<KeyCombo> wanted = combo(other);
        if (other != action && isRefused(other) && wanted && sameGrab(*wanted, *freed))
            registerCombo(*wanted, other);
    }
}

std::optional<HotKeyAction> HotKeyCenter::conflictingAction(
    const KeyCombo &combo, HotKeyAction action) const
{
    for (HotKeyAction other : allHotKeyActions) {
        if (other != action && this->combo(other) == combo)
            return other;
    }
    return std::nullopt;
}

void HotKeyCenter::persist(const std::optional<KeyCombo> &combo, HotKeyAction action)
{
    SettingsWriter::shared().setValue(
        settingsKey(action), combo ? combo->toJson() : QByteArray());
}

void HotKeyCenter::setCombo(const KeyCombo &combo, HotKeyAction action)
{
    const std::optional<KeyCombo> held
        = isRegistered(action) ? this->combo(action) : std::optional<KeyCombo>();
    unregister(action);
    m_combos.insert(action, combo);
    persist(combo, action);
    registerCombo(combo, action);
    if (held && !sameGrab(*held, combo))
        offerFreedCombo(held, action);
    Q_EMIT combosChanged();
}

void HotKeyCenter::clearCombo(HotKeyAction action)
{
    const std::optional<KeyCombo> held
        = isRegistered(action) ? combo(action) : std::optional<KeyCombo>();
    unregister(action);
    m_combos.remove(action);
    persist(std::nullopt, action);
    offerFreedCombo(held, action);
    Q_EMIT combosChanged();
}

} // namespace Vesko
