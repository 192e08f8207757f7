// SPDX-License-Identifier: GPL-3.0-or-later
//
// stuck_selection silent|flood: takes the Wayland seat's primary selection
// through data control, offering text, and then misbehaves with every
// reader: "silent" keeps the pipe open and never writes; "flood" writes
// without end. stuck_selection clipboard FORMATS BYTES takes the clipboard
// instead, offering FORMATS formats of BYTES bytes each. Prints "owned" once
// the compositor has the selection, and runs until it is replaced or killed.

#include "wlr-data-control-unstable-v1-client-protocol.h"

#include <wayland-client.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <unistd.h>

namespace {

zwlr_data_control_manager_v1 *manager = nullptr;
wl_seat *seat = nullptr;
bool flood = false;
long long formatBytes = -1; // the clipboard's formats: this many bytes each
bool replaced = false;

void announce(void *, wl_registry *registry, uint32_t name, const char *interface, uint32_t version)
{
    if (std::strcmp(interface, zwlr_data_control_manager_v1_interface.name) == 0 && version >= 2)
        manager = static_cast<zwlr_data_control_manager_v1 *>(
            wl_registry_bind(registry, name, &zwlr_data_control_manager_v1_interface, 2));
    else if (std::strcmp(interface, wl_seat_interface.name) == 0 && !seat)
        seat = static_cast<wl_seat *>(wl_registry_bind(registry, name, &wl_seat_interface, 1));
}

void withdraw(void *, wl_registry *, uint32_t) { }

void send(void *, zwlr_data_control_source_v1 *, const char *, int32_t fd)
{
    if (formatBytes >= 0) {
        std::thread([fd] {
            static char block[1 << 16];
            std::memset(block, 'x', sizeof block);
            for (long long left = formatBytes; left > 0;) {
                const ssize_t written
                    = ::write(fd, block, size_t(std::min<long long>(left, sizeof block)));
                if (written > 0)
                    left -= written;
                else if (errno != EINTR)
                    break;
            }
            ::close(fd);
        }).detach();
        return;
    }
    if (!flood)
        return; // the descriptor stays open and empty: the reader waits for ever
    // Written from a thread of its own: the selection stays served meanwhile.
    std::thread([fd] {
        static char block[1 << 16];
        std::memset(block, 'x', sizeof block);
        while (::write(fd, block, sizeof block) > 0 || errno == EINTR) { }
        ::close(fd);
    }).detach();
}

void cancelled(void *, zwlr_data_control_source_v1 *)
{
    replaced = true;
}

} // namespace

int main(int argc, char **argv)
{
    const bool clipboard = argc == 4 && std::strcmp(argv[1], "clipboard") == 0;
    if (!clipboard
        && (argc != 2
            || (std::strcmp(argv[1], "silent") != 0 && std::strcmp(argv[1], "flood") != 0))) {
        std::fprintf(stderr, "usage: stuck_selection silent|flood|clipboard FORMATS BYTES\n");
        return 2;
    }
    if (clipboard)
        formatBytes = std::atoll(argv[3]);
    std::signal(SIGPIPE, SIG_IGN);
    flood = std::strcmp(argv[1], "flood") == 0;
    wl_display *display = wl_display_connect(nullptr);
    if (!display) {
        std::fprintf(stderr, "stuck_selection: no Wayland display\n");
        return 1;
    }
    static const wl_registry_listener registryListener = {&announce, &withdraw};
    wl_registry *registry = wl_display_get_registry(display);
    wl_registry_add_listener(registry, &registryListener, nullptr);
    wl_display_roundtrip(display);
    if (!manager || !seat) {
        std::fprintf(stderr, "stuck_selection: no data control version 2 here\n");
        return 1;
    }
    zwlr_data_control_device_v1 *device
        = zwlr_data_control_manager_v1_get_data_device(manager, seat);
    zwlr_data_control_source_v1 *source = zwlr_data_control_manager_v1_create_data_source(manager);
    static const zwlr_data_control_source_v1_listener sourceListener = {&send, &cancelled};
    zwlr_data_control_source_v1_add_listener(source, &sourceListener, nullptr);
    if (clipboard) {
        for (int format = std::atoi(argv[2]); format > 0; --format)
            zwlr_data_control_source_v1_offer(
                source, ("application/x-vesko-test-" + std::to_string(format)).c_str());
        zwlr_data_control_device_v1_set_selection(device, source);
    } else {
        zwlr_data_control_source_v1_offer(source, "text/plain;charset=utf-8");
        zwlr_data_control_source_v1_offer(source, "text/plain");
        zwlr_data_control_device_v1_set_primary_selection(device, source);
    }
    wl_display_roundtrip(display);
    std::printf("owned\n");
    std::fflush(stdout);
    while (!replaced && wl_display_dispatch(display) != -1) { }
    return 0;
}
