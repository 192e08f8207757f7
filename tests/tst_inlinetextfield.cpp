// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's text field with real key and focus events: which keys commit,
// cancel or break the line, which ways of leaving it count as a blur, and how
// it measures and limits its height.

#include "WidgetTestMain.h"

#include "panel/text/NativeInlineTextField.h"
#include "panel/text/SpellCheckHighlighter.h"
#include "platform/SpellChecker.h"

#include <QClipboard>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTextBlock>
#include <QTextEdit>
#include <QTextLayout>
#include <QTimer>
#include <QVBoxLayout>

using namespace Vesko;

namespace {

//! A window with the field and a second focusable widget beside it.
struct Window
{
    Window()
    {
        auto *layout = new QVBoxLayout(&widget);
        field = new NativeInlineTextField(&widget);
        other = new QLineEdit(&widget);
        layout->addWidget(field);
        layout->addWidget(other);
        layout->addStretch();
        widget.resize(300, 400);
        widget.show();
        QApplication::setActiveWindow(&widget);
    }

    QWidget widget;
    NativeInlineTextField *field;
    QLineEdit *other;
};

//! The words of the first line marked as misspelled.
QStringList markedWords(NativeInlineTextField *field)
{
    const QTextBlock block = field->editor()->document()->firstBlock();
    QStringList words;
    for (const QTextLayout::FormatRange &range : block.layout()->formats()) {
        if (range.format.underlineStyle() == QTextCharFormat::SpellCheckUnderline)
            words.append(block.text().mid(range.start, range.length));
    }
    return words;
}

} // namespace

class InlineTextFieldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void keys_data();
    void keys();
    void blurOnlyWhenLeftOtherwise_data();
    void blurOnlyWhenLeftOtherwise();
    void growsThenScrolls();
    void narrowFieldReportsNothing();
    void focusFollowsWantsFocus();
    void singleLinePasteStaysOneLine();
    void misspelledWordsAreMarked();
};

void InlineTextFieldTest::keys_data()
{
    QTest::addColumn<bool>("multiline");
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("commits");
    QTest::addColumn<int>("cancels");

    QTest::newRow("Return commits") << true << int(Qt::Key_Return) << 0 << "ab" << 1 << 0;
    QTest::newRow("Enter commits")
        << true << int(Qt::Key_Enter) << int(Qt::KeypadModifier) << "ab" << 1 << 0;
    QTest::newRow("Shift+Return breaks the line")
        << true << int(Qt::Key_Return) << int(Qt::ShiftModifier) << "a\nb" << 0 << 0;
    QTest::newRow("Shift+Return in one line commits")
        << false << int(Qt::Key_Return) << int(Qt::ShiftModifier) << "ab" << 1 << 0;
    QTest::newRow("Escape cancels") << true << int(Qt::Key_Escape) << 0 << "ab" << 0 << 1;
    QTest::newRow("Ctrl+Return is not the field's")
        << true << int(Qt::Key_Return) << int(Qt::ControlModifier) << "ab" << 0 << 0;
}

void InlineTextFieldTest::keys()
{
    QFETCH(bool, multiline);
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, text);
    QFETCH(int, commits);
    QFETCH(int, cancels);

    Window window;
    window.field->setMultiline(multiline);
    window.field->setFocus();
    QSignalSpy committed(window.field, &NativeInlineTextField::committed);
    QSignalSpy cancelled(window.field, &NativeInlineTextField::cancelled);
    QSignalSpy blurred(window.field, &NativeInlineTextField::blurred);
    QTest::keyClick(window.field->editor(), Qt::Key_A);
    QTest::keyClick(window.field->editor(), Qt::Key(key), Qt::KeyboardModifiers(modifiers));
    QTest::keyClick(window.field->editor(), Qt::Key_B);
    QCOMPARE(window.field->text(), text);
    QCOMPARE(committed.size(), commits);
    QCOMPARE(cancelled.size(), cancels);
    QCOMPARE(blurred.size(), 0);
}

void InlineTextFieldTest::blurOnlyWhenLeftOtherwise_data()
{
    QTest::addColumn<QString>("how");
    QTest::addColumn<bool>("resignsOnCommit");
    QTest::addColumn<int>("blurs");
    QTest::addColumn<bool>("keepsFocus");

    QTest::newRow("click elsewhere") << "other" << false << 1 << false;
    QTest::newRow("Return, resigning") << "return" << true << 0 << false;
    QTest::newRow("Return, keeping the focus") << "return" << false << 0 << true;
    QTest::newRow("Escape") << "escape" << false << 0 << false;
    QTest::newRow("a menu opening") << "menu" << false << 0 << true;
}

void InlineTextFieldTest::blurOnlyWhenLeftOtherwise()
{
    QFETCH(QString, how);
    QFETCH(bool, resignsOnCommit);
    QFETCH(int, blurs);
    QFETCH(bool, keepsFocus);

    Window window;
    window.field->setResignsOnCommit(resignsOnCommit);
    window.field->setFocus();
    QVERIFY(window.field->editor()->hasFocus());
    QSignalSpy blurred(window.field, &NativeInlineTextField::blurred);
    QSignalSpy focus(window.field, &NativeInlineTextField::focusChanged);

    if (how == QLatin1String("other")) {
        QTest::mouseClick(window.other, Qt::LeftButton);
        window.other->setFocus(Qt::MouseFocusReason);
    } else if (how == QLatin1String("return")) {
        QTest::keyClick(window.field->editor(), Qt::Key_Return);
    } else if (how == QLatin1String("escape")) {
        QTest::keyClick(window.field->editor(), Qt::Key_Escape);
    } else {
        QMenu menu;
        menu.addAction(QStringLiteral("Entry"));
        QTimer::singleShot(50, &menu, &QMenu::close);
        menu.exec(window.widget.mapToGlobal(QPoint(10, 10)));
        QApplication::setActiveWindow(&window.widget);
    }
    QCOMPARE(blurred.size(), blurs);
    QCOMPARE(window.field->editor()->hasFocus(), keepsFocus);
    // Every end of the editing is reported as a focus change, a blur or not.
    if (!keepsFocus)
        QCOMPARE(focus.last().first().toBool(), false);
}

void InlineTextFieldTest::growsThenScrolls()
{
    Window window;
    window.field->setMaximumFieldHeight(112);
    QSignalSpy heights(window.field, &NativeInlineTextField::heightChanged);
    QTRY_COMPARE_WITH_TIMEOUT(heights.size(), 1, Test::patience);
    const qreal oneLine = heights.last().first().toReal();
    QCOMPARE(oneLine, qreal(window.field->lineHeight()));
    QCOMPARE(window.field->height(), window.field->lineHeight());

    window.field->setFocus();
    QTest::keyClick(window.field->editor(), Qt::Key_A);
    QTest::keyClick(window.field->editor(), Qt::Key_Return, Qt::ShiftModifier);
    QTest::keyClick(window.field->editor(), Qt::Key_B);
    QTRY_COMPARE_WITH_TIMEOUT(heights.size(), 2, Test::patience);
    const qreal twoLines = heights.last().first().toReal();
    QVERIFY(twoLines > oneLine);
    QCOMPARE(window.field->height(), int(twoLines));

    // Forty pasted lines: the content is measured in full, the field stops at 112.
    QStringList lines;
    for (int i = 0; i < 40; ++i)
        lines.append(QStringLiteral("line %1").arg(i));
    window.field->editor()->insertPlainText(lines.join(u'\n'));
    QTRY_VERIFY_WITH_TIMEOUT(heights.last().first().toReal() > 112, Test::patience);
    QCOMPARE(window.field->height(), 112);
    QCOMPARE(window.field->text().count(u'\n'), 40);

    // Text set from outside is measured too; the same text again changes nothing.
    QSignalSpy changes(window.field, &NativeInlineTextField::textChanged);
    window.field->setText(QStringLiteral("one\ntwo\nthree"));
    QCOMPARE(window.field->editor()->toPlainText(), QStringLiteral("one\ntwo\nthree"));
    QCOMPARE(changes.size(), 1);
    QTRY_VERIFY_WITH_TIMEOUT(heights.last().first().toReal() < 112, Test::patience);
    window.field->setText(QStringLiteral("one\ntwo\nthree"));
    QCOMPARE(changes.size(), 1);
}

void InlineTextFieldTest::narrowFieldReportsNothing()
{
    QWidget holder;
    auto *field = new NativeInlineTextField(&holder);
    field->setGeometry(0, 0, 30, 20);
    QSignalSpy heights(field, &NativeInlineTextField::heightChanged);
    holder.show();
    field->setText(QStringLiteral("some text that would wrap"));
    QTest::qWait(50);
    QCOMPARE(heights.size(), 0);
    // Laid out wider, it measures.
    field->setGeometry(0, 0, 200, 20);
    QTRY_COMPARE_WITH_TIMEOUT(heights.size(), 1, Test::patience);
}

void InlineTextFieldTest::focusFollowsWantsFocus()
{
    Window window;
    window.other->setFocus();
    window.field->setWantsFocus(true);
    // Never taken during the update itself, but one turn of the event loop later.
    QVERIFY(!window.field->editor()->hasFocus());
    QTRY_VERIFY_WITH_TIMEOUT(window.field->editor()->hasFocus(), Test::patience);

    // Escape while the owner still wants the focus: the field keeps it.
    QSignalSpy cancelled(window.field, &NativeInlineTextField::cancelled);
    QTest::keyClick(window.field->editor(), Qt::Key_Escape);
    QCOMPARE(cancelled.size(), 1);
    QVERIFY(window.field->editor()->hasFocus());
}

void InlineTextFieldTest::singleLinePasteStaysOneLine()
{
    Window window;
    window.field->setMultiline(false);
    window.field->setFocus();
    auto *data = new QMimeData;
    data->setText(QStringLiteral("first\nsecond\r\nthird"));
    QApplication::clipboard()->setMimeData(data);
    window.field->editor()->paste();
    QCOMPARE(window.field->text(), QStringLiteral("first second third"));
}

void InlineTextFieldTest::misspelledWordsAreMarked()
{
    if (!SpellChecking::shared().loadNow(QStringLiteral("en_US")))
        QSKIP("No English dictionary on this desktop (hunspell-en-us)");
    Window window;
    window.field->setFocus();
    QTest::keyClicks(window.field->editor(), QStringLiteral("the quick browm fox jumsp"));
    // The word at the caret is still being typed.
    QCOMPARE(markedWords(window.field), QStringList {QStringLiteral("browm")});
    QTest::keyClicks(window.field->editor(), QStringLiteral(" "));
    QCOMPARE(markedWords(window.field), (QStringList {"browm", "jumsp"}));
    // Names with digits and single letters are not words to check.
    window.field->setText(QStringLiteral("x86 qwzx a"));
    QCOMPARE(markedWords(window.field), QStringList {QStringLiteral("qwzx")});
    const auto found = window.field->spelling()->misspelledWordAt(6);
    QVERIFY(found);
    QCOMPARE(found->first, 4);
    QCOMPARE(found->second, QStringLiteral("qwzx"));
    QVERIFY(!window.field->spelling()->misspelledWordAt(1));
}

VESKO_WIDGET_TEST_MAIN(InlineTextFieldTest)
#include "tst_inlinetextfield.moc"
