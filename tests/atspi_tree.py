#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads an application's windows over AT-SPI, the way a screen reader does.

    atspi_tree.py PID WINDOW-NAME              prints the window as JSON
    atspi_tree.py PID WINDOW-NAME press NAME   does the first action of the
                                               first control named NAME

The JSON has one object per accessible: role, name, description, states,
value, text, the names of the labels that label it (labelled_by), and
children. Exits with 2 when the process has no such window on the bus, and
with 3 when no control of that name is there."""

import json
import sys

import pyatspi


def value_of(accessible):
    try:
        return accessible.queryValue().currentValue
    except NotImplementedError:
        return None


def text_of(accessible):
    try:
        text = accessible.queryText()
    except NotImplementedError:
        return None
    return text.getText(0, -1)


def labels_of(accessible):
    names = []
    for relation in accessible.getRelationSet():
        if relation.getRelationType() == pyatspi.RELATION_LABELLED_BY:
            for i in range(relation.getNTargets()):
                names.append(relation.getTarget(i).name or "")
    return names


def node(accessible, depth=0):
    entry = {
        "role": accessible.getRoleName(),
        "name": accessible.name or "",
        "description": accessible.description or "",
        "states": sorted(pyatspi.stateToString(s) for s in accessible.getState().getStates()),
    }
    value = value_of(accessible)
    if value is not None:
        entry["value"] = value
    text = text_of(accessible)
    if text:
        entry["text"] = text
    labels = labels_of(accessible)
    if labels:
        entry["labelled_by"] = labels
    if depth < 40:
        entry["children"] = [node(child, depth + 1) for child in accessible if child is not None]
    return entry


def find_window(pid, name):
    for application in pyatspi.Registry.getDesktop(0):
        if application is None:
            continue
        try:
            if application.get_process_id() != pid:
                continue
        except Exception:
            continue
        for window in application:
            if window is not None and window.name == name:
                return window
    return None


def find_control(accessible, name):
    if accessible.name == name and accessible.getRoleName() in (
            "check box", "push button", "page tab", "radio button", "toggle button"):
        return accessible
    for child in accessible:
        if child is not None:
            found = find_control(child, name)
            if found is not None:
                return found
    return None


def main():
    pid, name = int(sys.argv[1]), sys.argv[2]
    window = find_window(pid, name)
    if window is None:
        return 2
    if len(sys.argv) > 4 and sys.argv[3] == "press":
        control = find_control(window, sys.argv[4])
        if control is None:
            return 3
        control.queryAction().doAction(0)
        return 0
    json.dump(node(window), sys.stdout, ensure_ascii=False)
    return 0


if __name__ == "__main__":
    sys.exit(main())
