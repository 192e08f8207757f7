// SPDX-License-Identifier: GPL-3.0-or-later
//
// The four system-wide shortcuts: one key combination per action, kept in
// the settings file under "hotkey." keys, registered with the desktop through
// a HotKeyRegistrar, and each press handed to one handler.

#pragma once

#include "capture/KeyCombo.h"
#include "platform/HotKeyRegistrar.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QSettings>

#include <functional>
#include <memory>

namespace Vesko {

class HotKeyCenter : public QObject
{
    Q_OBJECT

public:
    //! Reads the stored combinations: a missing key is the default, empty or
    //! undecodable data is no combination. Registers nothing.
    explicit HotKeyCenter(HotKeyRegistrar &registrar, QObject *parent = nullptr);
    ~HotKeyCenter() override;

    std::optional<KeyCombo> combo(HotKeyAction action) const;
    //! Whom each press goes to.
    void setHandler(std::function<void(HotKeyAction)> handler);

    void installEventHandler();
    void registerAll();
    void registerCombo(const KeyCombo &combo, HotKeyAction action);
    void unregister(HotKeyAction action);
    //! Releases every registration and the handler; at quit.
    void unregisterAll();
    bool isRegistered(HotKeyAction action) const { return m_registered.contains(action); }
    //! The desktop refused the action's combination at its last registration:
    //! another program holds it, or another action does.
    bool isRefused(HotKeyAction action) const { return m_refused.contains(action); }

    //! The desktop owns the combinations (the global-shortcuts portal): the
    //! stored ones are only offered to it, and it says which keys it gave.
    bool desktopOwnsCombinations() const { return m_registrar.desktopOwnsCombinations(); }
    //! The keys the desktop gave the action, in its words; empty when unknown.
    QString desktopTrigger(HotKeyAction action) const;

    //! When the action's combination was refused because another of these
    //! actions holds it, that action; nothing when another program holds it.
    std::optional<HotKeyAction> refusingAction(HotKeyAction action) const;

    //! The other action that holds exactly this combination, if any.
    std::optional<HotKeyAction> conflictingAction(const KeyCombo &combo, HotKeyAction action) const;
    //! Writes the action's key: the combination as JSON, or empty data for none.
    void persist(const std::optional<KeyCombo> &combo, HotKeyAction action);

    //! Set and clear, as the shortcut recorder does. A combination the
    //! action lets go of is given to an action that was refused it.
    void setCombo(const KeyCombo &combo, HotKeyAction action);
    void clearCombo(HotKeyAction action);

    //! The settings key of an action: "hotkey." and its raw value.
    static QString settingsKey(HotKeyAction action);

Q_SIGNALS:
    void combosChanged();
    void registrationsChanged();

private:
    //! Registers again the refused actions that wanted \a freed, which
    //! \a action has just let go of.
    void offerFreedCombo(const std::optional<KeyCombo> &freed, HotKeyAction action);

    HotKeyRegistrar &m_registrar;
    QHash<HotKeyAction, KeyCombo> m_combos;
    QSet<HotKeyAction> m_registered;
    QSet<HotKeyAction> m_refused;
    std::function<void(HotKeyAction)> m_handler;
    bool m_handlerInstalled = false;
};

} // namespace Vesko
