#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads a running application over AT-SPI the way a screen reader does.

    atspi_reader.py tree APP [WINDOW]   the accessible tree of APP as JSON,
                                        or only that of its window named
                                        WINDOW
    atspi_reader.py do APP ROLE NAME    performs the first action of the
                                        first object of ROLE and NAME,
                                        depth first
    atspi_reader.py where APP ROLE [PATTERN]
                                        the centre "x y" on the screen of the
                                        first showing object of ROLE whose
                                        name matches the regular expression
    atspi_reader.py popup APP [KEY]     presses KEY (default Down) with
                                        xdotool and prints, as JSON, the
                                        popup menu that gets the focus: a
                                        popup is no child of its application,
                                        so it is found as a screen reader
                                        finds it, by the focus event of its
                                        entry

APP is an application's name or, all digits, its process id (to tell apart
two instances of one program). Each node of the tree has role, name,
description, states, and where the object offers them its place on the
screen (extents: x, y, width, height), text (its Text interface) and the
names of the labels that label it (labelled_by). Exit status 2 when APP (or
its WINDOW) is not on the bus (yet).
"""

import json
import re
import subprocess
import sys

import pyatspi

MAX_DEPTH = 40
MAX_CHILDREN = 2000


def is_app(app, name):
    if not name.isdigit():
        return app.name.lower() == name.lower()
    try:
        return app.get_process_id() == int(name)
    except Exception:
        return False


def find_app(name):
    desktop = pyatspi.Registry.getDesktop(0)
    for app in desktop:
        if app is not None and is_app(app, name):
            return app
    return None


def find_window(app, name):
    for index in range(min(app.childCount, MAX_CHILDREN)):
        window = app.getChildAtIndex(index)
        if window is not None and window.name == name:
            return window
    return None


def labels_of(node):
    names = []
    for relation in node.getRelationSet():
        if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY:
            for i in range(relation.getNTargets()):
                names.append(relation.getTarget(i).name or "")
    return names


def describe(node, depth=0):
    entry = {
        "role": node.getRoleName(),
        "name": node.name or "",
        "description": node.description or "",
        "states": sorted(pyatspi.stateToString(s) for s in node.getState().getStates()),
    }
    try:
        entry["text"] = node.queryText().getText(0, -1)
    except NotImplementedError:
        pass
    try:
        extents = node.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        entry["extents"] = [extents.x, extents.y, extents.width, extents.height]
    except NotImplementedError:
        pass
    labels = labels_of(node)
    if labels:
        entry["labelled_by"] = labels
    if depth < MAX_DEPTH:
        children = []
        for index in range(min(node.childCount, MAX_CHILDREN)):
            child = node.getChildAtIndex(index)
            if child is not None:
                children.append(describe(child, depth + 1))
        if children:
            entry["children"] = children
    return entry


def first(node, matches):
    """The first object below node, depth first, that matches."""
    if matches(node):
        return node
    for index in range(min(node.childCount, MAX_CHILDREN)):
        child = node.getChildAtIndex(index)
        found = first(child, matches) if child is not None else None
        if found is not None:
            return found
    return None


def focused_popup(app_name, key):
    """The menu whose entry takes the focus after pressing key."""
    from gi.repository import GLib

    found = {}

    def on_focus(event):
        source = event.source
        try:
            if not is_app(source.getApplication(), app_name):
                return
        except Exception:
            return
        if event.type.startswith("object:state-changed") and not event.detail1:
            return
        role = source.getRoleName()
        if "menu item" in role or role == "menu":
            found["menu"] = source.parent if "menu item" in role else source

    def press():
        subprocess.run(["xdotool", "key", key], check=False)
        return False

    pyatspi.Registry.registerEventListener(on_focus, "object:state-changed:focused", "focus:")
    GLib.timeout_add(300, press)
    GLib.timeout_add(1500, lambda: pyatspi.Registry.stop() or False)
    pyatspi.Registry.start()
    pyatspi.Registry.deregisterEventListener(on_focus, "object:state-changed:focused", "focus:")
    return found.get("menu")


def main(arguments):
    if len(arguments) < 2:
        print(__doc__, file=sys.stderr)
        return 64
    command = arguments[0]
    app = find_app(arguments[1])
    if app is None:
        return 2
    if command == "tree":
        if len(arguments) > 2:
            app = find_window(app, arguments[2])
            if app is None:
                return 2
        print(json.dumps(describe(app), ensure_ascii=False))
        return 0
    if command == "popup":
        menu = focused_popup(arguments[1], arguments[2] if len(arguments) > 2 else "Down")
        if menu is None:
            return 3
        print(json.dumps(describe(menu), ensure_ascii=False))
        return 0
    if command == "where" and len(arguments) >= 3:
        pattern = arguments[3] if len(arguments) > 3 else ""
        target = first(app, lambda node: node.getRoleName() == arguments[2]
                       and re.search(pattern, node.name or "")
                       and node.getState().contains(pyatspi.STATE_SHOWING))
        if target is None:
            return 3
        box = target.queryComponent().getExtents(pyatspi.DESKTOP_COORDS)
        print(box.x + box.width // 2, box.y + box.height // 2)
        return 0
    if command == "do" and len(arguments) >= 4:
        target = first(app, lambda node: node.getRoleName() == arguments[2]
                       and (node.name or "") == arguments[3])
        if target is None:
            return 3
        action = target.queryAction()
        if action.nActions == 0:
            return 4
        return 0 if action.doAction(0) else 1
    print(__doc__, file=sys.stderr)
    return 64


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
