// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/Toast.h"

#include "panel/window/PanelPlacement.h"
#include "platform/Logging.h"
#include "platform/qt/DesktopNotifier.h"
#include "platform/qt/DesktopScreens.h"
#include "platform/wayland/WaylandGlobals.h"
#include "platform/x11/X11Window.h"
#include "shell/SymbolIcon.h"
#include "shell/Theme.h"

#include <QCursor>
#include <QGuiApplication>
#include <QPainter>
#include <QPainterPath>
#include <QPropertyAnimation>
#include <QWidget>
#include <QWindow>

namespace Vesko {

namespace {

constexpr int outerMargin = 6;
constexpr int horizontalPadding = 12;
constexpr int verticalPadding = 8;
constexpr int spacing = 6;
constexpr int symbolSize = 10;

QFont messageFont()
{
    QFont font = Theme::captionFont();
    font.setPixelSize(12);
    font.setWeight(QFont::DemiBold);
    return font;
}

} // namespace

//! The card: a capsule with the symbol and the message, in a transparent window.
class ToastWindow : public QWidget
{
public:
    ToastWindow()
        : QWidget(nullptr,
            Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint
                | Qt::WindowDoesNotAcceptFocus | Qt::WindowTransparentForInput)
    {
        setAttribute(Qt::WA_ShowWithoutActivating);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setAttribute(Qt::WA_TranslucentBackground);
        setAttribute(Qt::WA_X11NetWmWindowTypeNotification);
        setWindowTitle(QStringLiteral("Vesko Toast"));
        m_symbol = QStringLiteral("checkmark");
    }

    void setContent(const QString &message, const QString &symbol)
    {
        m_message = message;
        m_symbol = symbol;
        resize(sizeHint());
        // Without a compositor a transparent window shows black: the window
        // is shaped to the capsule.
        if (!X11Window::hasCompositingManager()) {
            QPainterPath path;
            path.addRoundedRect(
                capsuleRect(), capsuleRect().height() / 2, capsuleRect().height() / 2);
            setMask(QRegion(path.toFillPolygon().toPolygon()));
        } else {
            clearMask();
        }
        update();
    }

    QRectF capsuleRect() const
    {
        return QRectF(rect()).adjusted(outerMargin, outerMargin, -outerMargin, -outerMargin);
    }

    QString message() const { return m_message; }
    QString symbol() const { return m_symbol; }

    QSize sizeHint() const override
    {
        const QFontMetrics metrics(messageFont());
        const int width = outerMargin * 2 + horizontalPadding * 2 + symbolSize + spacing
            + metrics.horizontalAdvance(m_message);
        const int height
            = outerMargin * 2 + verticalPadding * 2 + std::max(metrics.height(), symbolSize);
        if (width <= 0 || height <= 0)
            return QSize(140, 34);
        return QSize(width, height);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF capsule
            = QRectF(rect()).adjusted(outerMargin, outerMargin, -outerMargin, -outerMargin);
        QPainterPath path;
        path.addRoundedRect(capsule, capsule.height() / 2, capsule.height() / 2);
        // Opaque: nothing blurs what lies behind the toast, and another
        // window's text read through it would muddle the message.
        QColor fill = colors.panelSurface;
        fill.setAlpha(255);
        painter.fillPath(path, fill);
        painter.setPen(QPen(colors.surfaceStroke, 1));
        painter.drawPath(path);

        const QIcon icon = symbolIcon(m_symbol, colors.text, symbolSize);
        const int symbolY = int(capsule.center().y()) - symbolSize / 2;
        icon.paint(&painter,
            QRect(int(capsule.left()) + horizontalPadding, symbolY, symbolSize, symbolSize));
        painter.setFont(messageFont());
        painter.setPen(colors.text);
        const QRectF textRect(capsule.left() + horizontalPadding + symbolSize + spacing,
            capsule.top(), capsule.width(), capsule.height());
        painter.drawText(textRect, Qt::AlignVCenter | Qt::AlignLeft, m_message);
    }

private:
    QString m_message;
    QString m_symbol;
};

ToastPresenter::ToastPresenter(QObject *parent)
    : QObject(parent)
{
    m_dismissal.setSingleShot(true);
    m_dismissal.setTimerType(Qt::PreciseTimer);
    connect(&m_dismissal, &QTimer::timeout, this, &ToastPresenter::dismiss);
}

ToastPresenter::~ToastPresenter()
{
    delete m_window;
}

ToastPresenter &ToastPresenter::shared()
{
    static ToastPresenter *const presenter = new ToastPresenter;
    return *presenter;
}

bool ToastPresenter::showsAsNotification()
{
    // Qt makes a tool tip a popup of the window that had the input last;
    // without one it is a toplevel, which the compositor may focus.
    return WaylandGlobals::isWaylandPlatform() && !QGuiApplication::focusWindow();
}

void ToastPresenter::present(const QString &message, const QString &symbol, int duration)
{
    if (showsAsNotification()) {
        notify(message, symbol, duration);
        return;
    }
    if (!m_notified.isEmpty()) {
        m_notified.clear();
        m_notifier->close();
    }
    if (!m_window) {
        m_window = new ToastWindow;
        m_fade = new QPropertyAnimation(m_window, "windowOpacity", this);
        connect(m_fade, &QPropertyAnimation::finished, this, [this] {
            if (m_fade->endValue().toDouble() == 0.0)
                m_window->hide();
        });
    }
    m_window->setContent(message, symbol);
    const QSize size = m_window->size();
    const QPointF origin = toastOrigin(QCursor::pos(), size, currentScreenAreas());
    m_window->move(origin.toPoint());
    if (!m_window->isVisible()) {
        if (WaylandGlobals::isWaylandPlatform()) {
            // A popup of the active window, which keeps the focus. When that
            // window goes (the panel hides), the rest of the toast's time is
            // a notification.
            QWindow *active = QGuiApplication::focusWindow();
            m_window->winId();
            m_window->windowHandle()->setTransientParent(active);
            disconnect(m_parentHidden);
            m_parentHidden = connect(active, &QWindow::visibleChanged, this, [this](bool shown) {
                if (shown || !m_window->isVisible())
                    return;
                disconnect(m_parentHidden);
                const int remaining = m_dismissal.remainingTime();
                if (remaining > 0)
                    notify(m_window->message(), m_window->symbol(), remaining);
                else
                    hideWindow();
            });
        }
        m_window->setWindowOpacity(0);
        m_window->show();
        m_window->raise();
    }
    m_fade->stop();
    m_fade->setDuration(fadeInMilliseconds);
    m_fade->setStartValue(m_window->windowOpacity());
    m_fade->setEndValue(1.0);
    m_fade->start();

    m_dismissal.start(duration);
}

void ToastPresenter::notify(const QString &message, const QString &symbol, int duration)
{
    if (!m_notifier) {
        m_notifier = new DesktopNotifier(QStringLiteral("Vesko"), this);
        connect(m_notifier, &DesktopNotifier::failed, this,
            [this](const QString &summary, const QString &reason) {
                qCInfo(lcToast, "%s (no notification shown: %s)", qPrintable(summary),
                    qPrintable(reason));
                if (summary == m_notified) {
                    m_notified.clear();
                    m_dismissal.stop();
                }
            });
    }
    hideWindow();
    m_notified = message;
    m_dismissal.start(duration);
    m_notifier->notify(message, SymbolIcons::themeName(symbol), duration);
}

void ToastPresenter::hideWindow()
{
    if (m_window && m_window->isVisible()) {
        m_fade->stop();
        m_window->hide();
    }
}

void ToastPresenter::dismiss()
{
    if (!m_notified.isEmpty()) {
        // Closed too by those notification services that keep it longer.
        m_notified.clear();
        m_notifier->close();
    }
    if (!m_window || !m_window->isVisible())
        return;
    m_fade->stop();
    m_fade->setDuration(fadeOutMilliseconds);
    m_fade->setStartValue(m_window->windowOpacity());
    m_fade->setEndValue(0.0);
    m_fade->start();
}

QString ToastPresenter::currentMessage() const
{
    if (!m_notified.isEmpty())
        return m_notified;
    return m_window && m_window->isVisible() ? m_window->message() : QString();
}

bool ToastPresenter::isShowing() const
{
    return !m_notified.isEmpty() || (m_window && m_window->isVisible());
}

} // namespace Vesko
