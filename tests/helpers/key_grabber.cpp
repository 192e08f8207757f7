// SPDX-License-Identifier: GPL-3.0-or-later
//
// key_grabber KEYCODE MASK: another program holding a global key. Grabs the
// key code with the X modifier mask on the root window, prints "grabbed" or
// "taken" (when someone holds it already), and keeps the grab until its
// standard input closes or it is killed.

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <unistd.h>

int main(int argc, char *argv[])
{
    if (argc < 3)
        return 2;
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c))
        return 1;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const auto code = xcb_keycode_t(std::atoi(argv[1]));
    const auto mask = uint16_t(std::atoi(argv[2]));
    xcb_generic_error_t *error = xcb_request_check(
        c, xcb_grab_key_checked(c, 1, root, mask, code, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC));
    std::puts(error ? "taken" : "grabbed");
    std::fflush(stdout);
    std::free(error);
    char buffer[64];
    while (read(STDIN_FILENO, buffer, sizeof buffer) > 0) { }
    xcb_disconnect(c);
    return 0;
}
