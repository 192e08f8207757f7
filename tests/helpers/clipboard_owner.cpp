// SPDX-License-Identifier: GPL-3.0-or-later
//
// clipboard_owner TYPE=FILE...: another application holding the clipboard,
// offering each TYPE with the bytes of its FILE, in the order given.
// clipboard_owner --silent: takes the clipboard and never answers a request,
// as a hung application would.
// clipboard_owner --answer-after MS,MS,... TYPE=FILE...: offers each TYPE
// (and TARGETS), answering the first request after the first delay in
// milliseconds, the second after the second, and so on (the last delay
// stands for the rest), as a slow application would.
// Each prints "ready" once it owns the clipboard, and runs until killed.

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QTimer>

#include <xcb/xcb.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <vector>

namespace {

xcb_atom_t internAtom(xcb_connection_t *c, const QByteArray &name)
{
    xcb_intern_atom_reply_t *reply = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, uint16_t(name.size()), name.constData()), nullptr);
    const xcb_atom_t atom = reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
    std::free(reply);
    return atom;
}

int answerLate(const QStringList &arguments)
{
    using Clock = std::chrono::steady_clock;
    std::vector<int> delays;
    for (const QString &delay : arguments.value(0).split(u','))
        delays.push_back(delay.toInt());
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c) || delays.empty())
        return 1;
    struct Offer
    {
        xcb_atom_t type;
        QByteArray bytes;
    };
    std::vector<Offer> offers;
    for (const QString &argument : arguments.mid(1)) {
        QFile file(argument.section(u'=', 1));
        if (!file.open(QIODevice::ReadOnly))
            return 2;
        offers.push_back({internAtom(c, argument.section(u'=', 0, 0).toLatin1()), file.readAll()});
    }
    const xcb_atom_t targets = internAtom(c, "TARGETS");
    const xcb_atom_t clipboard = internAtom(c, "CLIPBOARD");
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_set_selection_owner(c, window, clipboard, XCB_CURRENT_TIME);
    xcb_flush(c);
    std::printf("ready\n");
    std::fflush(stdout);

    struct Pending
    {
        Clock::time_point due;
        xcb_selection_request_event_t request;
    };
    std::vector<Pending> pending;
    std::size_t requests = 0;
    auto answer = [&](const xcb_selection_request_event_t &request) {
        xcb_atom_t property = request.property;
        if (request.target == targets) {
            std::vector<xcb_atom_t> atoms {targets};
            for (const Offer &offer : offers)
                atoms.push_back(offer.type);
            xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, property,
                XCB_ATOM_ATOM, 32, uint32_t(atoms.size()), atoms.data());
        } else {
            property = XCB_ATOM_NONE;
            for (const Offer &offer : offers) {
                if (offer.type == request.target) {
                    property = request.property;
                    xcb_change_property(c, XCB_PROP_MODE_REPLACE, request.requestor, property,
                        offer.type, 8, uint32_t(offer.bytes.size()), offer.bytes.constData());
                }
            }
        }
        xcb_selection_notify_event_t notify {};
        notify.response_type = XCB_SELECTION_NOTIFY;
        notify.time = request.time;
        notify.requestor = request.requestor;
        notify.selection = request.selection;
        notify.target = request.target;
        notify.property = property;
        xcb_send_event(c, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT,
            reinterpret_cast<const char *>(&notify));
        xcb_flush(c);
    };
    for (;;) {
        int timeout = -1;
        const Clock::time_point now = Clock::now();
        for (const Pending &p : pending) {
            const auto wait = std::chrono::duration_cast<std::chrono::milliseconds>(p.due - now);
            timeout = timeout < 0 ? int(std::max<long long>(0, wait.count()))
                                  : std::min(timeout, int(std::max<long long>(0, wait.count())));
        }
        pollfd descriptor {xcb_get_file_descriptor(c), POLLIN, 0};
        ::poll(&descriptor, 1, timeout);
        while (xcb_generic_event_t *event = xcb_poll_for_event(c)) {
            if ((event->response_type & 0x7F) == XCB_SELECTION_REQUEST) {
                const auto *request = reinterpret_cast<xcb_selection_request_event_t *>(event);
                const int delay = delays[std::min(requests, delays.size() - 1)];
                ++requests;
                pending.push_back({Clock::now() + std::chrono::milliseconds(delay), *request});
            }
            std::free(event);
        }
        if (xcb_connection_has_error(c))
            return 0;
        for (auto p = pending.begin(); p != pending.end();) {
            if (p->due <= Clock::now()) {
                answer(p->request);
                p = pending.erase(p);
            } else {
                ++p;
            }
        }
    }
}

int holdSilently()
{
    xcb_connection_t *c = xcb_connect(nullptr, nullptr);
    if (xcb_connection_has_error(c))
        return 1;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(c)).data->root;
    const xcb_window_t window = xcb_generate_id(c);
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, root, 0, 0, 1, 1, 0,
        XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    const char *name = "CLIPBOARD";
    xcb_intern_atom_reply_t *atom = xcb_intern_atom_reply(
        c, xcb_intern_atom(c, 0, uint16_t(std::strlen(name)), name), nullptr);
    if (!atom)
        return 1;
    xcb_set_selection_owner(c, window, atom->atom, XCB_CURRENT_TIME);
    std::free(atom);
    xcb_flush(c);
    std::printf("ready\n");
    std::fflush(stdout);
    // Requests arrive and are never answered.
    while (xcb_generic_event_t *event = xcb_wait_for_event(c))
        std::free(event);
    return 0;
}

} // namespace

int main(int argc, char *argv[])
{
    if (argc == 2 && std::strcmp(argv[1], "--silent") == 0)
        return holdSilently();
    if (argc > 2 && std::strcmp(argv[1], "--answer-after") == 0) {
        QCoreApplication app(argc, argv);
        return answerLate(QCoreApplication::arguments().mid(2));
    }

    QGuiApplication app(argc, argv);
    auto *data = new QMimeData;
    const QStringList arguments = QCoreApplication::arguments().mid(1);
    for (const QString &argument : arguments) {
        QFile file(argument.section(u'=', 1));
        if (!file.open(QIODevice::ReadOnly))
            return 2;
        data->setData(argument.section(u'=', 0, 0), file.readAll());
    }
    QGuiApplication::clipboard()->setMimeData(data, QClipboard::Clipboard);
    QTimer::singleShot(0, [] {
        std::printf("ready\n");
        std::fflush(stdout);
    });
    return app.exec();
}
