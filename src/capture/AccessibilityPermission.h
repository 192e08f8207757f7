// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether capture is available to Vesko ("trust"). On X11 nothing needs
// granting: the answer is whether the session's X server offers what capture
// uses. Asking for access only reads the answer again and keeps polling for a
// while, once a second, as a change may come later.

#pragma once

#include <QObject>
#include <QTimer>

#include <functional>

namespace Vesko {

class AccessibilityPermission : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isTrusted READ isTrusted NOTIFY isTrustedChanged)

public:
    static constexpr int pollPasses = 120;
    static constexpr int pollIntervalMilliseconds = 1000;

    //! \a query answers whether capture is available now; read once here.
    explicit AccessibilityPermission(std::function<bool()> query, QObject *parent = nullptr);

    bool isTrusted() const { return m_isTrusted; }

    //! Reads the answer again; a change is announced.
    void refresh();
    //! Reads the answer, and polls for a change.
    void requestAccess();
    //! The place to grant access, where the desktop has one; here it reads
    //! the answer again, and polls for a change.
    void openSystemSettings();
    //! Replaces a running poll by one of a fresh 120 passes.
    void startPolling();

Q_SIGNALS:
    void isTrustedChanged();
    //! Wherever the capture engine must look at the gesture again.
    void refreshNeeded();

private:
    void pollOnce();

    std::function<bool()> m_query;
    bool m_isTrusted;
    QTimer m_poll;
    int m_passes = 0;
};

} // namespace Vesko
