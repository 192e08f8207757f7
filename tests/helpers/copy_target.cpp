// SPDX-License-Identifier: GPL-3.0-or-later
//
// copy_target TEXT [DELAY_MS]: a window titled "Copy Target" that shows TEXT
// as if it were selected and answers Copy (Ctrl+C or Ctrl+Insert, as Qt has
// it) by putting TEXT on the clipboard after DELAY_MS. It never owns the
// primary selection, as many applications do not, so a capture of it has to
// go through the synthetic copy. Each combination it receives (modifiers
// alone aside) is printed on a line of its own: "key Ctrl+Ins".

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QPainter>
#include <QTimer>
#include <QWidget>

#include <cstdio>

namespace {

class CopyTarget : public QWidget
{
public:
    CopyTarget(QString text, int delay)
        : m_text(std::move(text))
        , m_delay(delay)
    {
        setWindowTitle(QStringLiteral("Copy Target"));
        resize(420, 120);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::white);
        painter.fillRect(QRect(10, 40, 400, 24), palette().highlight());
        painter.setPen(palette().highlightedText().color());
        painter.drawText(QRect(14, 40, 396, 24), Qt::AlignVCenter, m_text);
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        if (!isModifier(event->key())) {
            const QString combination = QKeySequence(event->keyCombination()).toString();
            std::printf("key %s\n", qPrintable(combination));
            std::fflush(stdout);
        }
        if (event->matches(QKeySequence::Copy)) {
            QTimer::singleShot(m_delay, this,
                [this] { QGuiApplication::clipboard()->setText(m_text, QClipboard::Clipboard); });
            return;
        }
        QWidget::keyPressEvent(event);
    }

private:
    static bool isModifier(int key)
    {
        return key == Qt::Key_Shift || key == Qt::Key_Control || key == Qt::Key_Alt
            || key == Qt::Key_Meta || key == Qt::Key_Super_L || key == Qt::Key_Super_R
            || key == Qt::Key_AltGr;
    }

    QString m_text;
    int m_delay;
};

} // namespace

int main(int argc, char *argv[])
{
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2)
        return 2;
    CopyTarget window(arguments.at(1), arguments.size() > 2 ? arguments.at(2).toInt() : 0);
    window.show();
    return app.exec();
}
