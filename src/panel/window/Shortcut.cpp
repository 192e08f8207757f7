// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/Shortcut.h"

#include <QCoreApplication>
#include <QKeySequence>

#include <array>

namespace Vesko::Shortcuts {

namespace {

constexpr Qt::KeyboardModifiers none = Qt::NoModifier;
constexpr Qt::KeyboardModifiers command = Qt::ControlModifier;
constexpr Qt::KeyboardModifiers commandShift = Qt::ControlModifier | Qt::ShiftModifier;
constexpr Qt::KeyboardModifiers commandOption = Qt::ControlModifier | Qt::AltModifier;
constexpr Qt::KeyboardModifiers countedModifiers
    = Qt::ControlModifier | Qt::ShiftModifier | Qt::AltModifier | Qt::MetaModifier;

struct Entry
{
    Shortcut shortcut;
    const char *identity;
    const char *title;
    const char *symbol;
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
};

// The titles are translated in the "Shortcut" context.
const std::array<Entry, 45> &table()
{
    static const std::array<Entry, 45> entries = {{
        {Shortcut::newNote, "newNote", QT_TRANSLATE_NOOP("Shortcut", "New Note"),
            "plus.square.on.square", Qt::Key_N, command},
        {Shortcut::newSection, "newSection", QT_TRANSLATE_NOOP("Shortcut", "New Section…"),
            "rectangle.stack.badge.plus", Qt::Key_N, commandShift},
        {Shortcut::newProject, "newProject", QT_TRANSLATE_NOOP("Shortcut", "New Project…"),
            "folder.badge.plus", Qt::Key_N, commandOption},
        {Shortcut::switchSection, "switchSection", QT_TRANSLATE_NOOP("Shortcut", "Switch Section…"),
            "rectangle.on.rectangle", Qt::Key_K, command},
        {Shortcut::switchProject, "switchProject", QT_TRANSLATE_NOOP("Shortcut", "Switch Project…"),
            "folder", Qt::Key_K, commandShift},
        {Shortcut::previousSection, "previousSection",
            QT_TRANSLATE_NOOP("Shortcut", "Previous Section"), "arrow.up", Qt::Key_Up,
            commandOption},
        {Shortcut::nextSection, "nextSection", QT_TRANSLATE_NOOP("Shortcut", "Next Section"),
            "arrow.down", Qt::Key_Down, commandOption},
        {Shortcut::moveSectionUp, "moveSectionUp", QT_TRANSLATE_NOOP("Shortcut", "Move Section Up"),
            "arrow.up.to.line", Qt::Key_Up, Qt::AltModifier},
        {Shortcut::moveSectionDown, "moveSectionDown",
            QT_TRANSLATE_NOOP("Shortcut", "Move Section Down"), "arrow.down.to.line", Qt::Key_Down,
            Qt::AltModifier},
        {Shortcut::toggleSectionCollapsed, "toggleSectionCollapsed",
            QT_TRANSLATE_NOOP("Shortcut", "Collapse or Expand Active Section"),
            "chevron.up.chevron.down", Qt::Key_E, commandShift},
        {Shortcut::jumpToSection1, "jumpToSection1",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 1"), "", Qt::Key_1, command},
        {Shortcut::jumpToSection2, "jumpToSection2",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 2"), "", Qt::Key_2, command},
        {Shortcut::jumpToSection3, "jumpToSection3",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 3"), "", Qt::Key_3, command},
        {Shortcut::jumpToSection4, "jumpToSection4",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 4"), "", Qt::Key_4, command},
        {Shortcut::jumpToSection5, "jumpToSection5",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 5"), "", Qt::Key_5, command},
        {Shortcut::jumpToSection6, "jumpToSection6",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 6"), "", Qt::Key_6, command},
        {Shortcut::jumpToSection7, "jumpToSection7",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 7"), "", Qt::Key_7, command},
        {Shortcut::jumpToSection8, "jumpToSection8",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 8"), "", Qt::Key_8, command},
        {Shortcut::jumpToSection9, "jumpToSection9",
            QT_TRANSLATE_NOOP("Shortcut", "Jump to Section 9"), "", Qt::Key_9, command},
        {Shortcut::focusSearch, "focusSearch", QT_TRANSLATE_NOOP("Shortcut", "Find"),
            "magnifyingglass", Qt::Key_F, command},
        {Shortcut::selectAll, "selectAll", QT_TRANSLATE_NOOP("Shortcut", "Select All"), "",
            Qt::Key_A, command},
        {Shortcut::copy, "copy", QT_TRANSLATE_NOOP("Shortcut", "Copy"), "doc.on.doc", Qt::Key_C,
            command},
        {Shortcut::copyAsList, "copyAsList", QT_TRANSLATE_NOOP("Shortcut", "Copy as List"),
            "list.number", Qt::Key_C, commandShift},
        {Shortcut::mergeNotes, "mergeNotes", QT_TRANSLATE_NOOP("Shortcut", "Merge Notes"),
            "arrow.triangle.merge", Qt::Key_M, commandShift},
        {Shortcut::toggleExpanded, "toggleExpanded",
            QT_TRANSLATE_NOOP("Shortcut", "Expand or Collapse Note"), "chevron.down.circle",
            Qt::Key_E, command},
        {Shortcut::undo, "undo", QT_TRANSLATE_NOOP("Shortcut", "Undo"), "arrow.uturn.backward",
            Qt::Key_Z, command},
        {Shortcut::redo, "redo", QT_TRANSLATE_NOOP("Shortcut", "Redo"), "arrow.uturn.forward",
            Qt::Key_Z, commandShift},
        {Shortcut::openInNewWindow, "openInNewWindow",
            QT_TRANSLATE_NOOP("Shortcut", "Edit in New Window"), "uiwindow.split.2x1",
            Qt::Key_Return, command},
        {Shortcut::deleteNotes, "deleteNotes", QT_TRANSLATE_NOOP("Shortcut", "Delete"), "trash",
            Qt::Key_Backspace, command},
        {Shortcut::showShortcuts, "showShortcuts",
            QT_TRANSLATE_NOOP("Shortcut", "Keyboard Shortcuts"), "keyboard", Qt::Key_Slash,
            command},
        {Shortcut::settings, "settings", QT_TRANSLATE_NOOP("Shortcut", "Settings"), "gearshape",
            Qt::Key_Comma, command},
        {Shortcut::hidePanel, "hidePanel", QT_TRANSLATE_NOOP("Shortcut", "Hide Vesko"), "eye.slash",
            Qt::Key_W, command},
        {Shortcut::moveSelectionUp, "moveSelectionUp",
            QT_TRANSLATE_NOOP("Shortcut", "Select Previous Note"), "", Qt::Key_Up, none},
        {Shortcut::moveSelectionDown, "moveSelectionDown",
            QT_TRANSLATE_NOOP("Shortcut", "Select Next Note"), "", Qt::Key_Down, none},
        {Shortcut::extendSelectionUp, "extendSelectionUp",
            QT_TRANSLATE_NOOP("Shortcut", "Extend Selection Up"), "", Qt::Key_Up,
            Qt::ShiftModifier},
        {Shortcut::extendSelectionDown, "extendSelectionDown",
            QT_TRANSLATE_NOOP("Shortcut", "Extend Selection Down"), "", Qt::Key_Down,
            Qt::ShiftModifier},
        {Shortcut::firstNote, "firstNote", QT_TRANSLATE_NOOP("Shortcut", "First Note"), "",
            Qt::Key_Up, command},
        {Shortcut::lastNote, "lastNote", QT_TRANSLATE_NOOP("Shortcut", "Last Note"), "",
            Qt::Key_Down, command},
        {Shortcut::toggleDone, "toggleDone", QT_TRANSLATE_NOOP("Shortcut", "Mark or Unmark Done"),
            "checkmark.circle", Qt::Key_Space, none},
        {Shortcut::editNote, "editNote", QT_TRANSLATE_NOOP("Shortcut", "Edit Note"), "pencil",
            Qt::Key_Return, none},
        {Shortcut::focusComposer, "focusComposer", QT_TRANSLATE_NOOP("Shortcut", "Focus Composer"),
            "", Qt::Key_Tab, none},
        {Shortcut::close, "close", QT_TRANSLATE_NOOP("Shortcut", "Close"), "", Qt::Key_Escape,
            none},
        {Shortcut::commitNote, "commitNote", QT_TRANSLATE_NOOP("Shortcut", "Add Note"), "return",
            Qt::Key_Return, none},
        {Shortcut::newLine, "newLine", QT_TRANSLATE_NOOP("Shortcut", "New Line"),
            "arrow.turn.down.left", Qt::Key_Return, Qt::ShiftModifier},
        {Shortcut::hashtagSection, "hashtagSection",
            QT_TRANSLATE_NOOP("Shortcut", "Create or Use Section"), "number", Qt::Key_NumberSign,
            none},
    }};
    return entries;
}

const Entry &entry(Shortcut shortcut)
{
    return table().at(std::size_t(shortcut));
}

QString keySymbol(Qt::Key key)
{
    switch (key) {
    case Qt::Key_Up:
        return QStringLiteral("↑");
    case Qt::Key_Down:
        return QStringLiteral("↓");
    case Qt::Key_Left:
        return QStringLiteral("←");
    case Qt::Key_Right:
        return QStringLiteral("→");
    case Qt::Key_Space:
        return QStringLiteral("Space");
    case Qt::Key_Return:
        return QStringLiteral("↩");
    case Qt::Key_Escape:
        return QStringLiteral("⎋");
    case Qt::Key_Backspace:
        return QStringLiteral("⌫");
    case Qt::Key_Delete:
        return QStringLiteral("⌦");
    case Qt::Key_Tab:
        return QStringLiteral("⇥");
    default:
        return QString(QChar(char16_t(key))).toUpper();
    }
}

} // namespace

const QList<Shortcut> &allCases()
{
    static const QList<Shortcut> cases = [] {
        QList<Shortcut> all;
        for (const Entry &each : table())
            all.append(each.shortcut);
        return all;
    }();
    return cases;
}

QString identity(Shortcut shortcut)
{
    return QString::fromLatin1(entry(shortcut).identity);
}

QString title(Shortcut shortcut)
{
    return QCoreApplication::translate("Shortcut", entry(shortcut).title);
}

QString symbolName(Shortcut shortcut)
{
    return QString::fromLatin1(entry(shortcut).symbol);
}

Qt::Key keyEquivalent(Shortcut shortcut)
{
    return entry(shortcut).key;
}

Qt::KeyboardModifiers modifiers(Shortcut shortcut)
{
    return entry(shortcut).modifiers;
}

QKeySequence keySequence(Shortcut shortcut)
{
    return QKeySequence(QKeyCombination(modifiers(shortcut), keyEquivalent(shortcut)));
}

QString displayText(Shortcut shortcut)
{
    switch (shortcut) {
    case Shortcut::deleteNotes:
        return QCoreApplication::translate("Shortcut", "Ctrl+Backspace");
    case Shortcut::firstNote:
        return QCoreApplication::translate("Shortcut", "Ctrl+Up / Home");
    case Shortcut::lastNote:
        return QCoreApplication::translate("Shortcut", "Ctrl+Down / End");
    case Shortcut::newLine:
        return QCoreApplication::translate("Shortcut", "Shift+Return");
    case Shortcut::hashtagSection:
        return QCoreApplication::translate("Shortcut", "# Name");
    default:
        return keySequence(shortcut).toString(QKeySequence::NativeText);
    }
}

QString symbolDisplayText(Shortcut shortcut)
{
    switch (shortcut) {
    case Shortcut::deleteNotes:
        return QStringLiteral("⌘⌫");
    case Shortcut::firstNote:
        return QStringLiteral("⌘↑ / ↖");
    case Shortcut::lastNote:
        return QStringLiteral("⌘↓ / ↘");
    case Shortcut::newLine:
        return QStringLiteral("⇧↵");
    case Shortcut::hashtagSection:
        return QStringLiteral("# Name");
    default:
        break;
    }
    const Qt::KeyboardModifiers held = modifiers(shortcut);
    QString text;
    if (held & Qt::MetaModifier)
        text += QStringLiteral("⌃");
    if (held & Qt::AltModifier)
        text += QStringLiteral("⌥");
    if (held & Qt::ShiftModifier)
        text += QStringLiteral("⇧");
    if (held & Qt::ControlModifier)
        text += QStringLiteral("⌘");
    return text + keySymbol(keyEquivalent(shortcut));
}

std::optional<Shortcut> lookup(int key, Qt::KeyboardModifiers held)
{
    held &= countedModifiers;
    if (key == Qt::Key_Enter)
        key = Qt::Key_Return;
    if (held == Qt::NoModifier && key == Qt::Key_Home)
        return Shortcut::firstNote;
    if (held == Qt::NoModifier && key == Qt::Key_End)
        return Shortcut::lastNote;
    // Letters arrive as their upper-case key whatever the Shift state.
    if (key >= 'a' && key <= 'z')
        key -= 'a' - 'A';
    for (const Entry &each : table()) {
        if (each.key == key && each.modifiers == held)
            return each.shortcut;
    }
    return std::nullopt;
}

int jumpNumber(Shortcut shortcut)
{
    const int offset = int(shortcut) - int(Shortcut::jumpToSection1);
    return offset >= 0 && offset < 9 ? offset + 1 : 0;
}

} // namespace Vesko::Shortcuts
