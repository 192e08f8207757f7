#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""A GTK 3 application with one frame, as the accessibility bus shows it.

    atspi_frame.py PROGRAM TITLE

PROGRAM is the program name (GLib's prgname: the application's accessible
name and its window class); TITLE the frame's title. Prints "active" each
time the frame becomes the active window, and runs until killed.
"""

import sys

import gi

gi.require_version("Gtk", "3.0")
from gi.repository import GLib, Gtk  # noqa: E402


def main():
    GLib.set_prgname(sys.argv[1])
    window = Gtk.Window(title=sys.argv[2])
    window.set_default_size(320, 120)
    window.add(Gtk.Label(label=sys.argv[2]))

    def activity(*_):
        if window.is_active():
            print("active", flush=True)

    window.connect("notify::is-active", activity)
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
    Gtk.main()


if __name__ == "__main__":
    main()
