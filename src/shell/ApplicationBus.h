// SPDX-License-Identifier: GPL-3.0-or-later
//
// The running Vesko on the session bus: owns the name com.vesko.Vesko and
// exports, at /com/vesko/Vesko, the desktop's org.freedesktop.Application
// (Activate shows the panel, ActivateAction runs an action) and Vesko's own
// com.vesko.Vesko.Notes, which carries NoteRequests' JSON requests and the
// Shift taps a compositor reports (ShiftTapped). This is how desktop
// launchers, key bindings and a second "vesko" reach the first. It also owns
// com.vesko.Vesko.ShiftTaps, which no service file names: a compositor that
// sends Shift taps there reaches a running Vesko but never starts one.

#pragma once

#include <QDBusContext>
#include <QObject>
#include <QVariantMap>

#include <functional>
#include <optional>

class QDBusConnection;

namespace Vesko {

class NoteRequests;

//! The calls' context (message(), sendErrorReply()) is this object's: D-Bus
//! sets it on the object that its adaptors serve.
class ApplicationBus : public QObject, public QDBusContext
{
    Q_OBJECT

public:
    static constexpr auto serviceName = "com.vesko.Vesko";
    //! The name for the compositor's Shift taps: the bus cannot start Vesko by it.
    static constexpr auto shiftTapsName = "com.vesko.Vesko.ShiftTaps";
    static constexpr auto objectPath = "/com/vesko/Vesko";
    static constexpr auto applicationInterface = "org.freedesktop.Application";
    static constexpr auto notesInterface = "com.vesko.Vesko.Notes";

    explicit ApplicationBus(NoteRequests &requests, QObject *parent = nullptr);

    //! Exports the object and takes the names on \a bus. The failure text, or
    //! nothing; without the Shift taps' name Vesko still serves the main one.
    std::optional<QString> registerOn(QDBusConnection bus);

    NoteRequests &requests() { return m_requests; }

    //! Which library this process serves (SingleInstance::instanceName()),
    //! so that a client with another library does not take this process
    //! for its own.
    void setInstanceName(std::function<QString()> name) { m_instanceName = std::move(name); }
    QString instanceName() const { return m_instanceName ? m_instanceName() : QString(); }

    //! Hands the activation token of \a platformData (the desktop's
    //! "activation-token", else "desktop-startup-id") to the window that next
    //! asks for the focus, so that a Wayland desktop lets the panel take it.
    static void takeActivationToken(const QVariantMap &platformData);

private:
    NoteRequests &m_requests;
    std::function<QString()> m_instanceName;
};

} // namespace Vesko
