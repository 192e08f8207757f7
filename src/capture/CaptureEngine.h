// SPDX-License-Identifier: GPL-3.0-or-later
//
// Turns a trigger (the double Shift, a hot key, a menu entry) into a note:
// drops it while a capture runs, checks that capture is available, reads the
// selection, adds the note to its source's section, and answers with a
// toast. Also hands hot-key presses to their actions and keeps the gesture
// listening exactly when it should.

#pragma once

#include "capture/KeyCombo.h"

#include <QObject>

namespace Vesko {

class AccessibilityPermission;
class Clipboard;
class DoubleShiftMonitor;
class HotKeyCenter;
class Preferences;
class SelectionReader;
class Store;

//! What a capture shows the user: the panel and the toast.
class CaptureFeedback
{
public:
    virtual ~CaptureFeedback() = default;
    virtual void showPanel(bool activate, bool focusComposer) = 0;
    virtual void togglePanel() = 0;
    virtual void toast(const QString &message, const QString &symbol) = 0;
};

class CaptureEngine : public QObject
{
    Q_OBJECT
    Q_PROPERTY(bool isCapturing READ isCapturing NOTIFY isCapturingChanged)
    Q_PROPERTY(bool isStarted READ isStarted NOTIFY isStartedChanged)
    Q_PROPERTY(bool lastCaptureFailed READ lastCaptureFailed NOTIFY lastCaptureFailedChanged)
    Q_PROPERTY(bool isListeningForDoubleShift READ isListeningForDoubleShift NOTIFY
            isListeningForDoubleShiftChanged)

public:
    struct Services
    {
        Store &store;
        Preferences &preferences;
        HotKeyCenter &hotKeys;
        DoubleShiftMonitor &doubleShift;
        SelectionReader &reader;
        AccessibilityPermission &permission;
        CaptureFeedback &feedback;
        Clipboard &clipboard;
    };

    explicit CaptureEngine(const Services &services, QObject *parent = nullptr);

    bool isCapturing() const { return m_isCapturing; }
    bool isStarted() const { return m_isStarted; }
    bool lastCaptureFailed() const { return m_lastCaptureFailed; }
    bool isListeningForDoubleShift() const { return m_isListeningForDoubleShift; }

    //! Registers the hot keys and starts the gesture; once.
    void start();
    //! Stops the gesture, and starts it again when it is wanted.
    void refreshDoubleShift();
    //! The capture, from trigger to toast. A trigger during a capture is dropped.
    void captureSelection();
    void handleHotKey(HotKeyAction action);

Q_SIGNALS:
    void isCapturingChanged();
    void isStartedChanged();
    void lastCaptureFailedChanged();
    void isListeningForDoubleShiftChanged();
    //! A capture has ended, whatever its outcome.
    void captureFinished();

private:
    void setCapturing(bool capturing);
    void setLastCaptureFailed(bool failed);
    void storeSelection(const struct CapturedSelection &selection);

    Services m_services;
    bool m_isCapturing = false;
    bool m_isStarted = false;
    bool m_lastCaptureFailed = false;
    bool m_isListeningForDoubleShift = false;
};

} // namespace Vesko
