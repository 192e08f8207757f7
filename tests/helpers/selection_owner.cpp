// SPDX-License-Identifier: GPL-3.0-or-later
//
// selection_owner SELECTION [TARGET DELAYS TEXT]...: another program
// holding a selection (PRIMARY or CLIPBOARD) that answers each target after
// its own delay, or never when the delay is negative. DELAYS may list one
// delay per request, separated by commas, the last one for the rest; a delay
// written "refuse@N" refuses after N ms, stamped CurrentTime, as some owners
// do. TEXT goes out as UTF-8 for UTF8_STRING and as Latin-1 for STRING;
// "@FILE" stands for the bytes of FILE. Targets not listed are refused;
// TARGETS, listed, answers the list after its own delays (-1: a hung owner
// that never even says what it holds). Prints "owned" once it holds the
// selection; runs until killed.

#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <poll.h>
#include <string>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

struct Behaviour
{
    int delay = 0;
    bool refuses = false;
};

struct Offer
{
    xcb_atom_t target;
    std::vector<Behaviour> behaviours;
    std::string bytes;
    size_t requests = 0;

    //! What the next request of this target gets.
    Behaviour next()
    {
        const size_t at = std::min(requests++, behaviours.size() - 1);
        return behaviours[at];
    }
};

struct Answer
{
    Clock::time_point due;
    xcb_selection_request_event_t request;
    bool refuses;
};

std::vector<Behaviour> parseBehaviours(const std::string &text)
{
    std::vector<Behaviour> behaviours;
    size_t start = 0;
    while (start <= text.size()) {
        const size_t comma = std::min(text.find(',', start), text.size());
        std::string item = text.substr(start, comma - start);
        Behaviour behaviour;
        if (item.rfind("refuse@", 0) == 0) {
            behaviour.refuses = true;
            item = item.substr(7);
        }
        behaviour.delay = std::atoi(item.c_str());
        behaviours.push_back(behaviour);
        start = comma + 1;
    }
    return behaviours;
}

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

void notify(xcb_connection_t *c, const xcb_selection_request_event_t &request, xcb_atom_t property,
    xcb_timestamp_t time)
{
    xcb_selection_notify_event_t event = {};
    event.response_type = XCB_SELECTION_NOTIFY;
    event.time = time;
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
        std::string text = argv[i + 2];
        if (text.rfind('@', 0) == 0) {
            std::ifstream file(text.substr(1), std::ios::binary);
            text.assign(std::istreambuf_iterator<char>(file), {});
        }
        offers.push_back({target, parseBehaviours(argv[i + 1]),
            target == XCB_ATOM_STRING ? latin1(text) : text});
    }
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, selection, XCB_CURRENT_TIME);
    xcb_flush(c);
    std::puts("owned");
    std::fflush(stdout);

    // Gives the target asked for, or the list of targets; a refusal is stamped CurrentTime.
    const auto answer = [&](const xcb_selection_request_event_t &request, bool refuses) {
        if (refuses)
            return notify(c, request, XCB_ATOM_NONE, XCB_CURRENT_TIME);
        if (request.target == targets) {
            std::vector<xcb_atom_t> list {targets};
            for (const Offer &offer : offers) {
                if (offer.target != targets)
                    list.push_back(offer.target);
            }
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, request.property,
                XCB_ATOM_ATOM, 32, uint32_t(list.size()), list.data());
        } else {
            for (const Offer &offer : offers) {
                if (offer.target == request.target)
                    xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor,
                        request.property, offer.target, 8, uint32_t(offer.bytes.size()),
                        offer.bytes.data());
            }
        }
        notify(c, request, request.property, request.time);
    };
    std::vector<Answer> pending;
    for (;;) {
        int wait = -1;
        const Clock::time_point now = Clock::now();
        for (const Answer &due : pending) {
            const auto left
                = std::chrono::duration_cast<std::chrono::milliseconds>(due.due - now).count();
            wait = wait < 0 ? int(std::max<long long>(left, 0)) : std::min(wait, int(left));
        }
        pollfd fd {xcb_get_file_descriptor(c), POLLIN, 0};
        poll(&fd, 1, wait < 0 ? -1 : std::max(wait, 0));
        for (auto it = pending.begin(); it != pending.end();) {
            if (it->due > Clock::now()) {
                ++it;
                continue;
            }
            answer(it->request, it->refuses);
            it = pending.erase(it);
        }
        while (xcb_generic_event_t *event = xcb_poll_for_event(c)) {
            if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
                const auto request = *reinterpret_cast<xcb_selection_request_event_t *>(event);
                Offer *offer = nullptr;
                for (Offer &candidate : offers) {
                    if (candidate.target == request.target)
                        offer = &candidate;
                }
                if (!offer && request.target == targets) {
                    answer(request, false);
                } else if (!offer) {
                    notify(c, request, XCB_ATOM_NONE, request.time);
                } else if (const Behaviour behaviour = offer->next(); behaviour.delay >= 0) {
                    pending.push_back({Clock::now() + std::chrono::milliseconds(behaviour.delay),
                        request, behaviour.refuses});
                }
            }
            std::free(event);
        }
        if (xcb_connection_has_error(c))
            return 1;
    }
}
