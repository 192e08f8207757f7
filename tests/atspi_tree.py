#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Reads an application's windows over AT-SPI, the way a screen reader does,
and prints them as JSON: one object per accessible with its role, name,
description, states, value and children.

    atspi_tree.py PID [WINDOW-NAME]

Only the windows whose name equals WINDOW-NAME are printed when it is given.
Exits with 2 when no application of that process is on the bus."""

import json
import sys

import pyatspi


def value_of(accessible):
    try:
        value = accessible.queryValue()
    except NotImplementedError:
        return None
    return value.currentValue


def text_of(accessible):
    try:
        text = accessible.queryText()
    except NotImplementedError:
        return None
    return text.getText(0, -1)


def node(accessible, depth=0):
    states = accessible.getState().getStates()
    entry = {
        "role": accessible.getRoleName(),
        "name": accessible.name or "",
        "description": accessible.description or "",
        "states": sorted(pyatspi.stateToString(s) for s in states),
    }
    value = value_of(accessible)
    if value is not None:
        entry["value"] = value
    text = text_of(accessible)
    if text:
        entry["text"] = text
    if depth < 40:
        entry["children"] = [node(child, depth + 1) for child in accessible if child is not None]
    return entry


def main():
    pid = int(sys.argv[1])
    window = sys.argv[2] if len(sys.argv) > 2 else None
    desktop = pyatspi.Registry.getDesktop(0)
    for application in desktop:
        if application is None:
            continue
        try:
            if application.get_process_id() != pid:
                continue
        except Exception:
            continue
        windows = [child for child in application
                   if child is not None and (window is None or child.name == window)]
        json.dump([node(w) for w in windows], sys.stdout, ensure_ascii=False)
        return 0
    return 2


if __name__ == "__main__":
    sys.exit(main())
