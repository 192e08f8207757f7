// SPDX-License-Identifier: GPL-3.0-or-later

#include "capture/CaptureEngine.h"

#include "capture/AccessibilityPermission.h"
#include "capture/DoubleShiftMonitor.h"
#include "capture/HotKeyCenter.h"
#include "capture/SelectionReader.h"
#include "platform/Logging.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QPointer>
#include <QTimer>

namespace Vesko {

CaptureEngine::CaptureEngine(const Services &services, QObject *parent)
    : QObject(parent)
    , m_services(services)
{
    connect(&m_services.permission, &AccessibilityPermission::refreshNeeded, this,
        &CaptureEngine::refreshDoubleShift);
    connect(&m_services.preferences, &Preferences::doubleShiftEnabledChanged, this,
        &CaptureEngine::refreshDoubleShift);
}

void CaptureEngine::start()
{
    if (m_isStarted)
        return;
    m_isStarted = true;
    Q_EMIT isStartedChanged();

    QPointer<CaptureEngine> engine(this);
    m_services.hotKeys.setHandler([engine](HotKeyAction action) {
        if (engine)
            engine->handleHotKey(action);
    });
    m_services.hotKeys.installEventHandler();
    m_services.hotKeys.registerAll();
    m_services.doubleShift.onTrigger = [engine] {
        // Out of the key monitor's delivery at once; the capture runs on its own.
        QTimer::singleShot(0, engine, [engine] {
            if (engine)
                engine->captureSelection();
        });
    };
    refreshDoubleShift();
    qCInfo(lcCapture, "Capture started");
}

void CaptureEngine::refreshDoubleShift()
{
    m_services.doubleShift.stop();
    if (m_isStarted && m_services.preferences.doubleShiftEnabled())
        m_services.doubleShift.start();
    const bool listening = m_services.doubleShift.isListening();
    if (listening != m_isListeningForDoubleShift) {
        m_isListeningForDoubleShift = listening;
        Q_EMIT isListeningForDoubleShiftChanged();
    }
}

void CaptureEngine::handleHotKey(HotKeyAction action)
{
    switch (action) {
    case HotKeyAction::TogglePanel:
        m_services.feedback.togglePanel();
        break;
    case HotKeyAction::CaptureSelection:
        QTimer::singleShot(0, this, &CaptureEngine::captureSelection);
        break;
    case HotKeyAction::QuickAdd:
        m_services.feedback.showPanel(true, true);
        break;
    case HotKeyAction::CopySelectionAsList: {
        QList<QUuid> ids;
        const QSet<QUuid> selection = m_services.store.selection();
        for (const Note &note : m_services.store.visibleNotes()) {
            if (selection.isEmpty() || selection.contains(note.id))
                ids.append(note.id);
        }
        m_services.store.copyAsList(ids, m_services.clipboard);
        m_services.feedback.toast(tr("Copied as List"), QStringLiteral("list.number"));
        break;
    }
    }
}

void CaptureEngine::setCapturing(bool capturing)
{
    if (m_isCapturing == capturing)
        return;
    m_isCapturing = capturing;
    Q_EMIT isCapturingChanged();
    if (!capturing)
        Q_EMIT captureFinished();
}

void CaptureEngine::setLastCaptureFailed(bool failed)
{
    if (m_lastCaptureFailed == failed)
        return;
    m_lastCaptureFailed = failed;
    Q_EMIT lastCaptureFailedChanged();
}

void CaptureEngine::captureSelection()
{
    if (m_isCapturing)
        return;
    setCapturing(true);
    if (!m_services.permission.isTrusted()) {
        m_services.feedback.toast(tr("Accessibility Access Needed"), QStringLiteral("lock"));
        m_services.feedback.showPanel(true, false);
        setCapturing(false);
        return;
    }
    QPointer<CaptureEngine> engine(this);
    m_services.reader.readSelection([engine](std::optional<CapturedSelection> selection) {
        if (!engine)
            return;
        if (!selection) {
            qCInfo(lcCapture, "Nothing selected: no note made");
            engine->setLastCaptureFailed(true);
            engine->m_services.feedback.toast(
                tr("Nothing Selected"), QStringLiteral("text.cursor"));
            engine->setCapturing(false);
            return;
        }
        engine->storeSelection(*selection);
        engine->setCapturing(false);
    });
}

void CaptureEngine::storeSelection(const CapturedSelection &selection)
{
    setLastCaptureFailed(false);
    const bool bySource = m_services.preferences.groupCapturesBySource();
    const QString sectionTitle = bySource
        ? sourceSectionTitle(selection.source.appName, selection.source.windowTitle)
        : QStringLiteral("Inbox");
    const std::optional<Note> note = m_services.store.addNote(
        selection.text, std::nullopt, sectionTitle, bySource, selection.source, {}, true);
    if (!note) {
        setLastCaptureFailed(true);
        qCCritical(lcCapture, "Selection was read but could not be inserted");
        m_services.feedback.toast(tr("Capture Failed"), QStringLiteral("exclamationmark.triangle"));
        return;
    }
    qCInfo(lcCapture, "Stored and revealed note %s",
        qUtf8Printable(note->id.toString(QUuid::WithoutBraces).toUpper()));
    m_services.feedback.toast(tr("Captured"), QStringLiteral("checkmark"));
    if (m_services.preferences.showPanelOnCapture())
        m_services.feedback.showPanel(true, false);
}

} // namespace Vesko
