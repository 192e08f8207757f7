// SPDX-License-Identifier: GPL-3.0-or-later
//
// The floating panel's window: frameless and rounded. Its surface lets the
// desktop through only where the compositor blurs it (glass); elsewhere it is
// opaque, and shaped to its rounded outline when no compositor runs. Thin strips along its edges move it
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

    //! Asks the desktop again for a blur behind the window and chooses the
    //! surface by the answer: glass over the blur, opaque without it, and
    //! shaped as well when no compositor runs.
    void refreshMaterial();
    //! The desktop blurs what lies behind the window, so its surface is
    //! translucent and the rows may run under the bars.
    bool isGlass() const { return m_glass; }
    //! Asks for a frame and reports it with framePainted().
    void requestFrame();

Q_SIGNALS:
    void cancelOperationRequested();
    void moved();
    void resized();
    void becameActive();
    //! The window manager took the keyboard away from the panel.
    void becameInactive();
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
    QRegion roundedRegion() const;

    QWidget *m_content = nullptr;
    QList<QWidget *> m_strips;
    bool m_glass = false;
    bool m_composited = true;
    bool m_frameRequested = false;
};

} // namespace Vesko
