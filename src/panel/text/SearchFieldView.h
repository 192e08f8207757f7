// SPDX-License-Identifier: GPL-3.0-or-later
//
// The search box of the panel's header: a magnifying glass, a field on the
// Store's search text with the hint "Search", and a button that clears it
// while there is text. Escape clears the text first and hands the keyboard
// to the list the second time.

#pragma once

#include "panel/window/PanelState.h"

#include <QWidget>

class QLabel;
class QLineEdit;
class QToolButton;
class QGraphicsOpacityEffect;
class QPropertyAnimation;

namespace Vesko {

class EaseOutValue;
class Store;

class SearchFieldView : public QWidget
{
    Q_OBJECT

public:
    static constexpr int height = 28;
    static constexpr int clearFadeMilliseconds = 140;

    SearchFieldView(Store &store, QWidget *parent = nullptr);

    //! The text field, for the focus.
    QLineEdit *field() const { return m_field; }
    QToolButton *clearButton() const { return m_clear; }
    //! The clear button is showing (it fades in and out with the text).
    bool showsClearButton() const;

    //! Gives the field the keyboard.
    void focusField();

    QSize sizeHint() const override;

Q_SIGNALS:
    //! The search wants the panel's keyboard focus to go to \a target.
    void focusRequested(Vesko::PanelFocusTarget target);

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void applyTheme();
    void showStoreText();
    void textEdited(const QString &text);
    void clear();
    void updateClearButton();

    Store &m_store;
    QLabel *m_icon;
    QLineEdit *m_field;
    QToolButton *m_clear;
    QGraphicsOpacityEffect *m_clearOpacity;
    QPropertyAnimation *m_clearFade;
    EaseOutValue *m_hover;
};

} // namespace Vesko
