// SPDX-License-Identifier: GPL-3.0-or-later
//
// The floating panel's window: frameless, rounded, translucent where a
// compositor runs and shaped otherwise. Thin strips along its edges move it
// (and, at their outer rim, resize it), since it has no title bar. Escape that
// no view took goes to the controller's cancel chain.

#pragma once

#include <QWidget>

namespace Vesko {

class PanelWindow : public QWidget
{
    Q_OBJECT

public:
    static constexpr int cornerRadius = 22;
    static constexpr int dragStripWidth = 10;

    explicit PanelWindow(Qt::WindowFlags flags);

    //! Puts \a content inside the rounded surface, replacing the one before.
    void setContent(QWidget *content);
    QWidget *content() const { return m_content; }

    //! Paints solid and applies a shape mask when no compositor runs.
    void setTranslucent(bool translucent);
    //! Asks for a frame and reports it with framePainted().
    void requestFrame();

Q_SIGNALS:
    void cancelOperationRequested();
    void moved();
    void resized();
    void becameActive();
    //! The frame that requestFrame() asked for has been painted.
    void framePainted();

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void placeStrips();
    void updateMask();

    QWidget *m_content = nullptr;
    QList<QWidget *> m_strips;
    bool m_translucent = true;
    bool m_frameRequested = false;
};

} // namespace Vesko
