// SPDX-License-Identifier: GPL-3.0-or-later

#include "AccessibleTree.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>

namespace Vesko::Test {

namespace {

//! The Debian Python, which has the pyatspi bindings.
const QString python = QStringLiteral("/usr/bin/python3");

QString readerPath()
{
    return QStringLiteral(VESKO_TESTS_SOURCE_DIR "/helpers/atspi_reader.py");
}

AccessibleNode parse(const QJsonObject &object)
{
    AccessibleNode node;
    node.role = object.value(QLatin1String("role")).toString();
    node.name = object.value(QLatin1String("name")).toString();
    node.description = object.value(QLatin1String("description")).toString();
    for (const QJsonValue &state : object.value(QLatin1String("states")).toArray())
        node.states.append(state.toString());
    for (const QJsonValue &label : object.value(QLatin1String("labelled_by")).toArray())
        node.labelledBy.append(label.toString());
    if (object.contains(QLatin1String("text")))
        node.text = object.value(QLatin1String("text")).toString();
    const QJsonArray extents = object.value(QLatin1String("extents")).toArray();
    if (extents.size() == 4)
        node.extents
            = QRect(extents[0].toInt(), extents[1].toInt(), extents[2].toInt(), extents[3].toInt());
    for (const QJsonValue &child : object.value(QLatin1String("children")).toArray())
        node.children.append(parse(child.toObject()));
    return node;
}

void collect(const AccessibleNode &node, QList<const AccessibleNode *> &out)
{
    out.append(&node);
    for (const AccessibleNode &child : node.children)
        collect(child, out);
}

} // namespace

AccessibleTree AccessibleTree::read(const QString &application, const QString &window)
{
    QStringList arguments {QStringLiteral("tree"), application};
    if (!window.isEmpty())
        arguments.append(window);
    return run(arguments);
}

bool AccessibleTree::act(const QString &application, const QString &role, const QString &name)
{
    QProcess reader;
    reader.start(python, {readerPath(), QStringLiteral("do"), application, role, name});
    return reader.waitForFinished(30000) && reader.exitCode() == 0;
}

AccessibleTree AccessibleTree::popup(const QString &application, const QString &key)
{
    return run({QStringLiteral("popup"), application, key});
}

AccessibleTree AccessibleTree::run(const QStringList &arguments)
{
    AccessibleTree tree;
    QProcess reader;
    reader.start(python, QStringList {readerPath()} + arguments);
    if (!reader.waitForFinished(30000) || reader.exitCode() != 0)
        return tree;
    const QJsonDocument document = QJsonDocument::fromJson(reader.readAllStandardOutput());
    if (document.isObject())
        tree.m_root = parse(document.object());
    return tree;
}

QList<const AccessibleNode *> AccessibleTree::all() const
{
    QList<const AccessibleNode *> nodes;
    if (m_root)
        collect(*m_root, nodes);
    return nodes;
}

const AccessibleNode *AccessibleTree::find(const QString &role, const QString &name) const
{
    for (const AccessibleNode *node : all()) {
        if (node->role == role && (name.isEmpty() || node->name == name) && node->isShowing())
            return node;
    }
    return nullptr;
}

const AccessibleNode *AccessibleTree::any(const QString &role, const QString &name) const
{
    for (const AccessibleNode *node : all()) {
        if (node->role == role && node->name == name)
            return node;
    }
    return nullptr;
}

QStringList AccessibleTree::names(const QString &role) const
{
    QStringList names;
    for (const AccessibleNode *node : all()) {
        if (node->role == role && node->isShowing())
            names.append(node->name);
    }
    return names;
}

} // namespace Vesko::Test
