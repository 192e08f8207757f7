// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shows one short message at a time as a desktop notification, through the
// notification service on the session bus (org.freedesktop.Notifications):
// transient, of low urgency, and replacing the one shown before. Nothing
// here waits for the service.

#pragma once

#include <QObject>

namespace Vesko {

class DesktopNotifier : public QObject
{
    Q_OBJECT

public:
    static constexpr int callTimeoutMilliseconds = 5000;

    //! Notifications under \a applicationName, the program's name as the desktop shows it.
    explicit DesktopNotifier(const QString &applicationName, QObject *parent = nullptr);

    //! Asks the service to show \a summary with the icon named \a iconName
    //! (a freedesktop icon name, or empty) for \a expiryMilliseconds, in place
    //! of the notification shown before. failed() tells when it cannot.
    void notify(const QString &summary, const QString &iconName, int expiryMilliseconds);
    //! Withdraws the notification shown last; nothing when there is none.
    void close();

Q_SIGNALS:
    //! The latest notification could not be shown: no service on the bus, or it refused.
    void failed(const QString &summary, const QString &reason);

private:
    void closeNotification(uint id);

    QString m_applicationName;
    //! The service's id of the notification shown last, or 0.
    uint m_shownId = 0;
    //! Counts the calls, so that an answer to one overtaken by another is known.
    quint64 m_calls = 0;
};

} // namespace Vesko
