// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's one short message: a small card beside the pointer that
// never takes focus, lets clicks through, and goes away by itself. A new
// toast replaces the one on screen at once; the last toast wins. On Wayland,
// where a window of its own would be a toplevel that the compositor focuses
// and places where it likes, it is a desktop notification unless a Vesko
// window is active.

#pragma once

#include <QObject>
#include <QPointer>
#include <QTimer>

class QPropertyAnimation;

namespace Vesko {

class DesktopNotifier;
class ToastWindow;

class ToastPresenter : public QObject
{
    Q_OBJECT

public:
    static constexpr int fadeInMilliseconds = 120;
    static constexpr int fadeOutMilliseconds = 180;
    //! What every caller passes as the duration.
    static constexpr int standardDurationMilliseconds = 1100;

    explicit ToastPresenter(QObject *parent = nullptr);
    ~ToastPresenter() override;

    static ToastPresenter &shared();

    //! Shows \a message with \a symbol beside the pointer for \a duration.
    void present(const QString &message, const QString &symbol,
        int durationMilliseconds = standardDurationMilliseconds);
    //! Fades the toast out; nothing when none is on screen.
    void dismiss();

    //! The message on screen, or empty; for tests and the accessibility tree.
    QString currentMessage() const;
    bool isShowing() const;

private:
    //! Whether the toast is to be a desktop notification rather than a window.
    static bool showsAsNotification();
    void notify(const QString &message, const QString &symbol, int durationMilliseconds);
    void hideWindow();

    ToastWindow *m_window = nullptr;
    DesktopNotifier *m_notifier = nullptr;
    //! The message of the notification on screen, or empty.
    QString m_notified;
    //! On Wayland, the window's toast goes with the window it is a popup of.
    QMetaObject::Connection m_parentHidden;
    QPropertyAnimation *m_fade = nullptr;
    QTimer m_dismissal;
};

} // namespace Vesko
