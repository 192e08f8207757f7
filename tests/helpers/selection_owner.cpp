// SPDX-License-Identifier: GPL-3.0-or-later
//
// selection_owner SELECTION [TARGET DELAY_MS TEXT]...: another program
// holding a selection (PRIMARY or CLIPBOARD) that answers each target after
// its own delay, or never when the delay is negative. TEXT goes out as UTF-8
// for UTF8_STRING and as Latin-1 for STRING. Targets not listed are refused.
// Prints "owned" once it holds the selection; runs until killed.

#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Offer
{
    xcb_atom_t target;
    int delay;
    std::string bytes;
};

struct Answer
{
    Clock::time_point due;
    xcb_selection_request_event_t request;
    const Offer *offer;
};

xcb_atom_t atom(xcb_connection_t *c, const char *name)
{
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, uint16_t(std::strlen(name)), name), nullptr);
    const xcb_atom_t result = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return result;
}

//! UTF-8 to Latin-1, for the characters Latin-1 has.
std::string latin1(const std::string &utf8)
{
    std::string out;
    for (size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte == 0xC3 && i + 1 < utf8.size()) {
            out += char(0xC0 + (static_cast<unsigned char>(utf8[++i]) & 0x3F));
        } else if (byte == 0xC2 && i + 1 < utf8.size()) {
            out += utf8[++i];
        } else {
            out += char(byte);
        }
    }
    return out;
}

void notify(xcb_connection_t *c, const xcb_selection_request_event_t &request, xcb_atom_t property)
{
    xcb_selection_notify_event_t event = {};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = request.time;
    event.requestor = request.requestor;
    event.selection = request.selection;
    event.target = request.target;
    event.property = property;
    xcb_send_event(
        c, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char *>(&event));
    xcb_flush(c);
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc < 2 || (argc - 2) % 3 != 0)
        return 2;
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c))
        return 1;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const xcb_atom_t selection = atom(c, argv[1]);
    const xcb_atom_t targets = atom(c, "TARGETS");
    std::vector<Offer> offers;
    for (int i = 2; i + 2 < argc; i += 3) {
        const xcb_atom_t target = atom(c, argv[i]);
        const std::string text = argv[i + 2];
        offers.push_back(
            {target, std::atoi(argv[i + 1]), target == XCB_ATOM_STRING ? latin1(text) : text});
    }
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, selection, XCB_CURRENT_TIME);
    xcb_flush(c);
    std::puts("owned");
    std::fflush(stdout);

    std::vector<Answer> pending;
    for (;;) {
        int wait = -1;
        const Clock::time_point now = Clock::now();
        for (const Answer &answer : pending) {
            const auto left
                = std::chrono::duration_cast<std::chrono::milliseconds>(answer.due - now).count();
            wait = wait < 0 ? int(std::max<long long>(left, 0)) : std::min(wait, int(left));
        }
        pollfd fd {xcb_get_file_descriptor(c), POLLIN, 0};
        poll(&fd, 1, wait < 0 ? -1 : std::max(wait, 0));
        for (auto it = pending.begin(); it != pending.end();) {
            if (it->due > Clock::now()) {
                ++it;
                continue;
            }
            const xcb_selection_request_event_t &request = it->request;
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                it->offer->target, 8, uint32_t(it->offer->bytes.size()), it->offer->bytes.data());
            notify(c, request, request.property);
            it = pending.erase(it);
        }
        while (xcb_generic_event_t *event = xcb_poll_for_event(c)) {
            if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
                const auto request = *reinterpret_cast<xcb_selection_request_event_t *>(event);
                const Offer *offer = nullptr;
                for (const Offer &candidate : offers) {
                    if (candidate.target == request.target)
                        offer = &candidate;
                }
                if (request.target == targets) {
                    std::vector<xcb_atom_t> list {targets};
                    for (const Offer &candidate : offers)
                        list.push_back(candidate.target);
                    xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor,
                        request.property, XCB_ATOM_ATOM, 32, uint32_t(list.size()), list.data());
                    notify(c, request, request.property);
                } else if (!offer) {
                    notify(c, request, XCB_ATOM_NONE);
                } else if (offer->delay >= 0) {
                    pending.push_back(
                        {Clock::now() + std::chrono::milliseconds(offer->delay), request, offer});
                }
            }
            std::free(event);
        }
        if (xcb_connection_has_error(c))
            return 1;
    }
}
