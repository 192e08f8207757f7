// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/FocusSelectionReader.h"

#include "platform/Logging.h"

#include <QGuiApplication>
#include <QWindow>

namespace Vesko {

FocusSelectionReader::FocusSelectionReader(Panel panel, WaylandGlobals &globals, QObject *parent)
    : QObject(parent)
    , m_panel(std::move(panel))
    , m_selection(globals)
{
    m_focusTimeout.setSingleShot(true);
    m_focusTimeout.setInterval(focusTimeoutMilliseconds);
    connect(&m_focusTimeout, &QTimer::timeout, this, [this] {
        qCInfo(lcCapture, "The panel did not get the focus: the selection cannot be read");
        finish(std::nullopt);
    });
    m_offerTimeout.setSingleShot(true);
    m_offerTimeout.setInterval(offerTimeoutMilliseconds);
    connect(&m_offerTimeout, &QTimer::timeout, this, &FocusSelectionReader::readNow);
    connect(
        qGuiApp, &QGuiApplication::focusWindowChanged, this, &FocusSelectionReader::focusChanged);
    connect(&m_selection, &WaylandPrimarySelection::offered, this, &FocusSelectionReader::offered);
}

void FocusSelectionReader::read(std::function<void(std::optional<QString>)> done)
{
    if (m_done) {
        done(std::nullopt);
        return;
    }
    if (!m_selection.isAvailable()) {
        qCInfo(lcCapture, "The compositor offers no primary selection: nothing to read");
        done(std::nullopt);
        return;
    }
    m_done = std::move(done);
    m_wasShown = m_panel.isShown();
    m_hasFocus = false;
    m_offerCame = false;
    m_reading = false;
    m_focusTimeout.start();
    m_panel.bringForward();
    // Vesko may have had the focus already: then the selection was offered to it.
    QTimer::singleShot(0, this, &FocusSelectionReader::focusChanged);
}

void FocusSelectionReader::focusChanged()
{
    if (!m_done || m_reading || m_hasFocus || !QGuiApplication::focusWindow())
        return;
    m_hasFocus = true;
    m_focusTimeout.stop();
    // The compositor offers the selection with the focus, or just after it.
    if (m_offerCame)
        readNow();
    else
        m_offerTimeout.start();
}

void FocusSelectionReader::offered()
{
    if (!m_done || m_reading)
        return;
    m_offerCame = true;
    if (m_hasFocus) {
        m_offerTimeout.stop();
        readNow();
    }
}

void FocusSelectionReader::readNow()
{
    if (!m_done || m_reading)
        return;
    m_reading = true;
    m_offerTimeout.stop();
    // The selection last offered is the one the compositor gave the panel
    // with the focus (or while it had it).
    m_selection.readText([this](std::optional<QString> text) {
        if (text && text->isEmpty())
            text.reset();
        finish(std::move(text));
    });
}

void FocusSelectionReader::finish(std::optional<QString> text)
{
    m_focusTimeout.stop();
    m_offerTimeout.stop();
    m_reading = false;
    auto done = std::exchange(m_done, nullptr);
    if (!m_wasShown)
        m_panel.sendBack();
    if (done)
        done(std::move(text));
}

} // namespace Vesko
