// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the panel's modal layers (the prompts, the switchers, the shortcut
// sheet) have in common: a dim over the whole panel, an opaque card with its
// shadow on it, and a click on the dim that dismisses the layer. Each
// layer fills the card, says where it stands and what dismissing means.

#pragma once

#include <QRect>
#include <QRectF>
#include <QWidget>

#include <functional>

class QLineEdit;
class QPainter;

namespace Vesko {

class PanelLayerView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int cardRadius = 16;
    //! A layer's field takes the keyboard this long after the layer appears.
    static constexpr int focusDelayMilliseconds = 40;

    QWidget *card() const { return m_card; }

    //! Paints the dim of a layer over the panel's rounded surface in \a rect.
    static void paintDim(QPainter &painter, const QRect &rect);
    //! Paints the soft shadow that a card of \a card's outline casts below it.
    static void paintShadow(QPainter &painter, const QRectF &card);

protected:
    explicit PanelLayerView(QWidget *parent = nullptr);

    //! Where the card stands in the layer at its present size.
    virtual QRect cardGeometry() const = 0;
    //! A click on the dim, outside the card.
    virtual void dismiss() = 0;
    //! Moves the card to cardGeometry(); the layer does so on every resize.
    void placeCard();
    //! Gives \a field the keyboard once the layer has appeared, then runs
    //! \a then on it.
    void focusWhenShown(QLineEdit *field, const std::function<void(QLineEdit *)> &then = {});
    //! For a field's event filter: Return or Enter calls \a accept, Escape
    //! \a reject. True when the event was one of these keys.
    static bool handleAnswerKey(
        QEvent *event, const std::function<void()> &accept, const std::function<void()> &reject);

    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    QWidget *m_card;
};

} // namespace Vesko
