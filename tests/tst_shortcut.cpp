// SPDX-License-Identifier: GPL-3.0-or-later
//
// The shortcut table against a copy written out by hand: every case in its
// order with its title, symbol, key, modifiers and both renderings of its
// keys; and the lookup from a key press to a shortcut.

#include "WidgetTestMain.h"

#include "panel/window/Shortcut.h"

#include <QTest>

using namespace Vesko;

namespace {

constexpr int ctrl = int(Qt::ControlModifier);
constexpr int shift = int(Qt::ShiftModifier);
constexpr int alt = int(Qt::AltModifier);

struct Row
{
    const char *identity;
    const char *title;
    const char *symbol;
    int key;
    int modifiers;
    const char *display;
    const char *symbols;
};

// Written from the product's table; Command is Ctrl, Option is Alt.
const Row expected[] = {
    {"newNote", "New Note", "plus.square.on.square", Qt::Key_N, ctrl, "Ctrl+N", "⌘N"},
    {"newSection", "New Section…", "rectangle.stack.badge.plus", Qt::Key_N, ctrl | shift,
        "Ctrl+Shift+N", "⇧⌘N"},
    {"newProject", "New Project…", "folder.badge.plus", Qt::Key_N, ctrl | alt, "Ctrl+Alt+N", "⌥⌘N"},
    {"switchSection", "Switch Section…", "rectangle.on.rectangle", Qt::Key_K, ctrl, "Ctrl+K", "⌘K"},
    {"switchProject", "Switch Project…", "folder", Qt::Key_K, ctrl | shift, "Ctrl+Shift+K", "⇧⌘K"},
    {"previousSection", "Previous Section", "arrow.up", Qt::Key_Up, ctrl | alt, "Ctrl+Alt+Up",
        "⌥⌘↑"},
    {"nextSection", "Next Section", "arrow.down", Qt::Key_Down, ctrl | alt, "Ctrl+Alt+Down", "⌥⌘↓"},
    {"moveSectionUp", "Move Section Up", "arrow.up.to.line", Qt::Key_Up, alt, "Alt+Up", "⌥↑"},
    {"moveSectionDown", "Move Section Down", "arrow.down.to.line", Qt::Key_Down, alt, "Alt+Down",
        "⌥↓"},
    {"toggleSectionCollapsed", "Collapse or Expand Active Section", "chevron.up.chevron.down",
        Qt::Key_E, ctrl | shift, "Ctrl+Shift+E", "⇧⌘E"},
    {"jumpToSection1", "Jump to Section 1", "", Qt::Key_1, ctrl, "Ctrl+1", "⌘1"},
    {"jumpToSection2", "Jump to Section 2", "", Qt::Key_2, ctrl, "Ctrl+2", "⌘2"},
    {"jumpToSection3", "Jump to Section 3", "", Qt::Key_3, ctrl, "Ctrl+3", "⌘3"},
    {"jumpToSection4", "Jump to Section 4", "", Qt::Key_4, ctrl, "Ctrl+4", "⌘4"},
    {"jumpToSection5", "Jump to Section 5", "", Qt::Key_5, ctrl, "Ctrl+5", "⌘5"},
    {"jumpToSection6", "Jump to Section 6", "", Qt::Key_6, ctrl, "Ctrl+6", "⌘6"},
    {"jumpToSection7", "Jump to Section 7", "", Qt::Key_7, ctrl, "Ctrl+7", "⌘7"},
    {"jumpToSection8", "Jump to Section 8", "", Qt::Key_8, ctrl, "Ctrl+8", "⌘8"},
    {"jumpToSection9", "Jump to Section 9", "", Qt::Key_9, ctrl, "Ctrl+9", "⌘9"},
    {"focusSearch", "Find", "magnifyingglass", Qt::Key_F, ctrl, "Ctrl+F", "⌘F"},
    {"selectAll", "Select All", "", Qt::Key_A, ctrl, "Ctrl+A", "⌘A"},
    {"copy", "Copy", "doc.on.doc", Qt::Key_C, ctrl, "Ctrl+C", "⌘C"},
    {"copyAsList", "Copy as List", "list.number", Qt::Key_C, ctrl | shift, "Ctrl+Shift+C", "⇧⌘C"},
    {"mergeNotes", "Merge Notes", "arrow.triangle.merge", Qt::Key_M, ctrl | shift, "Ctrl+Shift+M",
        "⇧⌘M"},
    {"toggleExpanded", "Expand or Collapse Note", "chevron.down.circle", Qt::Key_E, ctrl, "Ctrl+E",
        "⌘E"},
    {"undo", "Undo", "arrow.uturn.backward", Qt::Key_Z, ctrl, "Ctrl+Z", "⌘Z"},
    {"redo", "Redo", "arrow.uturn.forward", Qt::Key_Z, ctrl | shift, "Ctrl+Shift+Z", "⇧⌘Z"},
    {"openInNewWindow", "Edit in New Window", "uiwindow.split.2x1", Qt::Key_Return, ctrl,
        "Ctrl+Return", "⌘↩"},
    {"deleteNotes", "Delete", "trash", Qt::Key_Backspace, ctrl, "Ctrl+Backspace", "⌘⌫"},
    {"showShortcuts", "Keyboard Shortcuts", "keyboard", Qt::Key_Slash, ctrl, "Ctrl+/", "⌘/"},
    {"settings", "Settings", "gearshape", Qt::Key_Comma, ctrl, "Ctrl+,", "⌘,"},
    {"hidePanel", "Hide Vesko", "eye.slash", Qt::Key_W, ctrl, "Ctrl+W", "⌘W"},
    {"moveSelectionUp", "Select Previous Note", "", Qt::Key_Up, 0, "Up", "↑"},
    {"moveSelectionDown", "Select Next Note", "", Qt::Key_Down, 0, "Down", "↓"},
    {"extendSelectionUp", "Extend Selection Up", "", Qt::Key_Up, shift, "Shift+Up", "⇧↑"},
    {"extendSelectionDown", "Extend Selection Down", "", Qt::Key_Down, shift, "Shift+Down", "⇧↓"},
    {"firstNote", "First Note", "", Qt::Key_Up, ctrl, "Ctrl+Up / Home", "⌘↑ / ↖"},
    {"lastNote", "Last Note", "", Qt::Key_Down, ctrl, "Ctrl+Down / End", "⌘↓ / ↘"},
    {"toggleDone", "Mark or Unmark Done", "checkmark.circle", Qt::Key_Space, 0, "Space", "Space"},
    {"editNote", "Edit Note", "pencil", Qt::Key_Return, 0, "Return", "↩"},
    {"focusComposer", "Focus Composer", "", Qt::Key_Tab, 0, "Tab", "⇥"},
    {"close", "Close", "", Qt::Key_Escape, 0, "Esc", "⎋"},
    {"commitNote", "Add Note", "return", Qt::Key_Return, 0, "Return", "↩"},
    {"newLine", "New Line", "arrow.turn.down.left", Qt::Key_Return, shift, "Shift+Return", "⇧↵"},
    {"hashtagSection", "Create or Use Section", "number", Qt::Key_NumberSign, 0, "# Name",
        "# Name"},
};

} // namespace

class ShortcutTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void table_data();
    void table();
    void lookup_data();
    void lookup();
};

void ShortcutTest::table_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < int(std::size(expected)); ++i)
        QTest::newRow(expected[i].identity) << i;
}

void ShortcutTest::table()
{
    QFETCH(int, index);
    const Row &row = expected[index];
    // No more cases than the table's, each of whose rows checks its own.
    QCOMPARE(Shortcuts::allCases().size(), qsizetype(std::size(expected)));
    const Shortcut shortcut = Shortcuts::allCases().at(index);
    QCOMPARE(Shortcuts::identity(shortcut), QString::fromLatin1(row.identity));
    QCOMPARE(Shortcuts::title(shortcut), QString::fromUtf8(row.title));
    QCOMPARE(Shortcuts::symbolName(shortcut), QString::fromLatin1(row.symbol));
    QCOMPARE(int(Shortcuts::keyEquivalent(shortcut)), row.key);
    QCOMPARE(int(Shortcuts::modifiers(shortcut)), row.modifiers);
    QCOMPARE(Shortcuts::displayText(shortcut), QString::fromUtf8(row.display));
    QCOMPARE(Shortcuts::symbolDisplayText(shortcut), QString::fromUtf8(row.symbols));
}

void ShortcutTest::lookup_data()
{
    QTest::addColumn<int>("key");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<QString>("shortcut"); // empty: none

    QTest::newRow("Return edits, the composer's Return comes later")
        << int(Qt::Key_Return) << 0 << "editNote";
    QTest::newRow("Enter is Return") << int(Qt::Key_Enter) << 0 << "editNote";
    QTest::newRow("Ctrl+Enter on the keypad")
        << int(Qt::Key_Enter) << int(ctrl | Qt::KeypadModifier) << "openInNewWindow";
    QTest::newRow("Ctrl+1 on the keypad")
        << int(Qt::Key_1) << int(ctrl | Qt::KeypadModifier) << "jumpToSection1";
    QTest::newRow("Ctrl+Shift+Z") << int(Qt::Key_Z) << (ctrl | shift) << "redo";
    QTest::newRow("Home") << int(Qt::Key_Home) << 0 << "firstNote";
    QTest::newRow("End") << int(Qt::Key_End) << 0 << "lastNote";
    QTest::newRow("Ctrl+Home is nothing") << int(Qt::Key_Home) << ctrl << "";
    QTest::newRow("Shift+End is nothing") << int(Qt::Key_End) << shift << "";
    QTest::newRow("Ctrl+Up") << int(Qt::Key_Up) << ctrl << "firstNote";
    QTest::newRow("Ctrl+Alt+Up") << int(Qt::Key_Up) << (ctrl | alt) << "previousSection";
    QTest::newRow("Ctrl+Shift+Up is nothing") << int(Qt::Key_Up) << (ctrl | shift) << "";
    QTest::newRow("Super+N is nothing") << int(Qt::Key_N) << int(Qt::MetaModifier) << "";
    QTest::newRow("Ctrl+Alt+Shift+N is nothing") << int(Qt::Key_N) << (ctrl | alt | shift) << "";
    QTest::newRow("Shift+Return") << int(Qt::Key_Return) << shift << "newLine";
    QTest::newRow("Ctrl+Delete is not Ctrl+Backspace") << int(Qt::Key_Delete) << ctrl << "";
    QTest::newRow("plain N is nothing") << int(Qt::Key_N) << 0 << "";
    QTest::newRow("Escape") << int(Qt::Key_Escape) << 0 << "close";
}

void ShortcutTest::lookup()
{
    QFETCH(int, key);
    QFETCH(int, modifiers);
    QFETCH(QString, shortcut);
    const std::optional<Shortcut> found
        = Shortcuts::lookup(key, Qt::KeyboardModifiers::fromInt(modifiers));
    QCOMPARE(found ? Shortcuts::identity(*found) : QString(), shortcut);
}

VESKO_WIDGET_TEST_MAIN(ShortcutTest)
#include "tst_shortcut.moc"
