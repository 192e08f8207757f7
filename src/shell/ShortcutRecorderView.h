// SPDX-License-Identifier: GPL-3.0-or-later
//
// The control that records one system-wide shortcut: a button showing the
// combination ("None" without one, "Press keys…" while recording), a clear
// button while the pointer is over it, and the lines under it: why a key was
// not taken, and why the combination is not in effect: "Taken by another
// application" while another program holds it, "Already used by “…”." while
// another of Vesko's actions does. Where the desktop owns the combinations
// (the global-shortcuts portal), it shows the keys the desktop reports and
// leads to the desktop's settings instead of recording.

#pragma once

#include "capture/KeyCombo.h"

#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;
class QToolButton;

namespace Vesko {

class HotKeyCenter;
class KeyLayout;

class ShortcutRecorderView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int buttonWidth = 92;

    ShortcutRecorderView(HotKeyAction action, HotKeyCenter &hotKeys, const KeyLayout *layout,
        QWidget *parent = nullptr);

    HotKeyAction action() const { return m_action; }
    bool isRecording() const { return m_isRecording; }
    //! The line under the control, empty when there is none.
    QString warning() const { return m_warning; }
    QString buttonText() const;
    //! The line shown while the combination is refused, or empty.
    QString refusalText() const;

    //! Where capture cannot work nothing is registered, so no refusal is told.
    void setCaptureAvailable(bool available);

    //! Whether the desktop keeps the combination: the button then shows the
    //! desktop's trigger and, when \a openSettings is set, opens its settings.
    void setDesktopOwned(bool owned, std::function<void()> openSettings = {});
    bool isDesktopOwned() const { return m_desktopOwned; }

    //! Starts or ends recording; either way the warning goes.
    void toggleRecording();
    //! A key pressed while recording, by its platform key code and the
    //! program's modifier flags. Recording ends first.
    void handleKey(quint16 keyCode, quint64 modifiers);

Q_SIGNALS:
    void recordingChanged();
    void warningChanged();

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    void setRecording(bool recording);
    void setWarning(const QString &warning);
    void refresh();

    HotKeyAction m_action;
    HotKeyCenter &m_hotKeys;
    const KeyLayout *m_layout;
    QPushButton *m_button;
    QToolButton *m_clear;
    QLabel *m_warningLine;
    QLabel *m_refusalLine;
    bool m_isRecording = false;
    bool m_isHovering = false;
    bool m_captureAvailable = true;
    bool m_desktopOwned = false;
    std::function<void()> m_openDesktopSettings;
    QString m_warning;
};

} // namespace Vesko
