// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/qt/FocusSelectionReader.h"

#include "platform/Logging.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QWindow>

namespace Vesko {

std::optional<QString> FocusSelectionReader::clipboardSelection()
{
    // Qt reads the offer's pipe itself, giving up after its own second.
    const QMimeData *data = QGuiApplication::clipboard()->mimeData(QClipboard::Selection);
    if (!data || !data->hasText())
        return std::nullopt;
    return data->text();
}

FocusSelectionReader::FocusSelectionReader(Panel panel, Read read, QObject *parent)
    : QObject(parent)
    , m_panel(std::move(panel))
    , m_read(read ? std::move(read) : Read(&clipboardSelection))
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
    connect(
        QGuiApplication::clipboard(), &QClipboard::changed, this, [this](QClipboard::Mode mode) {
            if (mode == QClipboard::Selection)
                offered();
        });
}

bool FocusSelectionReader::isAvailable()
{
    return QGuiApplication::clipboard()->supportsSelection();
}

void FocusSelectionReader::read(std::function<void(std::optional<QString>)> done)
{
    if (m_done) {
        done(std::nullopt);
        return;
    }
    m_done = std::move(done);
    m_wasShown = m_panel.isShown();
    m_hasFocus = false;
    m_offerCame = false;
    m_focusTimeout.start();
    m_panel.bringForward();
    // Vesko may have had the focus already: then the selection was offered to it.
    QTimer::singleShot(0, this, &FocusSelectionReader::focusChanged);
}

void FocusSelectionReader::focusChanged()
{
    if (!m_done || m_hasFocus || !QGuiApplication::focusWindow())
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
    if (!m_done)
        return;
    m_offerCame = true;
    if (m_hasFocus) {
        m_offerTimeout.stop();
        readNow();
    }
}

void FocusSelectionReader::readNow()
{
    if (!m_done)
        return;
    std::optional<QString> text = m_read();
    if (text && text->isEmpty())
        text.reset();
    finish(std::move(text));
}

void FocusSelectionReader::finish(std::optional<QString> text)
{
    m_focusTimeout.stop();
    m_offerTimeout.stop();
    auto done = std::exchange(m_done, nullptr);
    if (!m_wasShown)
        m_panel.sendBack();
    if (done)
        done(std::move(text));
}

} // namespace Vesko
