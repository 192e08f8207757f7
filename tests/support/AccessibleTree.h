// SPDX-License-Identifier: GPL-3.0-or-later
//
// A running program as a screen reader sees it: its accessible tree read
// over AT-SPI (through tests/helpers/atspi_reader.py and pyatspi), with the
// roles, names, descriptions, states, texts and places on the screen of its
// objects. Needs a session bus (dbus-run-session) and the program started
// with accessibility on (QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1).

#pragma once

#include <QJsonObject>
#include <QList>
#include <QRect>
#include <QStringList>

#include <optional>

namespace Vesko::Test {

//! One accessible object.
struct AccessibleNode
{
    QString role;
    QString name;
    QString description;
    QStringList states;
    std::optional<QString> text;
    //! The names of the labels that label it.
    QStringList labelledBy;
    //! Where it is on the screen; empty when it has no place.
    QRect extents;
    QList<AccessibleNode> children;

    bool hasState(const QString &state) const { return states.contains(state); }
    //! Is on screen: "showing" and "visible".
    bool isShowing() const { return hasState(QStringLiteral("showing")); }
    QPoint center() const { return extents.center(); }
};

class AccessibleTree
{
public:
    //! The tree of the application \a name (or process id), or only of its
    //! window \a window, as it is now; empty when it is not on the bus.
    static AccessibleTree read(const QString &application, const QString &window = QString());
    //! Performs the first action of the first object of \a role and \a name.
    static bool act(const QString &application, const QString &role, const QString &name);
    //! The popup menu on screen, found as a screen reader finds it: \a key
    //! is pressed (xdotool) and the menu whose entry takes the focus is read.
    //! Empty when no menu entry took the focus. A popup is no child of its
    //! application, so read() does not see it.
    static AccessibleTree popup(
        const QString &application, const QString &key = QStringLiteral("Down"));

    bool isEmpty() const { return !m_root; }
    const AccessibleNode &root() const { return *m_root; }

    //! Every object, depth first.
    QList<const AccessibleNode *> all() const;
    //! The first object of \a role (and \a name, unless empty) that is showing.
    const AccessibleNode *find(const QString &role, const QString &name = QString()) const;
    //! The first object of \a role and \a name, showing or not.
    const AccessibleNode *any(const QString &role, const QString &name) const;
    //! The names of the showing objects of \a role, in tree order.
    QStringList names(const QString &role) const;

private:
    //! Runs the reader with \a arguments and parses the tree it prints.
    static AccessibleTree run(const QStringList &arguments);

    std::optional<AccessibleNode> m_root;
};

} // namespace Vesko::Test
