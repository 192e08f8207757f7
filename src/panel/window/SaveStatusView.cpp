// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/SaveStatusView.h"

#include "shell/Theme.h"
#include "store/Store.h"

#include <QEvent>

namespace Vesko {

SaveStatusView::SaveStatusView(Store &store, QWidget *parent)
    : QLabel(parent)
    , m_store(store)
{
    setObjectName(QStringLiteral("VeskoSaveStatus"));
    setFont(Theme::captionFont());
    setTextFormat(Qt::PlainText);
    setContentsMargins(6, 0, 6, 0);
    // The line never asks the panel for more width than it has.
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    applyColors();
    connect(&m_store, &Store::saveFailureChanged, this, &SaveStatusView::refresh);
    refresh();
}

void SaveStatusView::refresh()
{
    const QString failure = m_store.saveFailure();
    m_statusText = failure.isEmpty() ? QString() : tr("Not saved: %1").arg(failure);
    setToolTip(m_statusText);
    setAccessibleName(m_statusText);
    showElided();
    setVisible(!m_statusText.isEmpty());
}

void SaveStatusView::showElided()
{
    const int width = contentsRect().width();
    // Cut in the middle: the start says what this is, the end why (a long
    // file path sits between them).
    setText(
        width > 0 ? fontMetrics().elidedText(m_statusText, Qt::ElideMiddle, width) : m_statusText);
}

void SaveStatusView::applyColors()
{
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, Theme::currentColors().tertiaryText);
    setPalette(colors);
}

void SaveStatusView::resizeEvent(QResizeEvent *event)
{
    QLabel::resizeEvent(event);
    showElided();
}

void SaveStatusView::changeEvent(QEvent *event)
{
    QLabel::changeEvent(event);
    if (event->type() == QEvent::ApplicationPaletteChange)
        applyColors();
}

} // namespace Vesko
