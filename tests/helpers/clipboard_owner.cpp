// SPDX-License-Identifier: GPL-3.0-or-later
//
// clipboard_owner TYPE=FILE...: another application holding the clipboard,
// offering each TYPE with the bytes of its FILE, in the order given.
// clipboard_owner --silent: takes the clipboard and never answers a request,
// as a hung application would.
// Either prints "ready" once it owns the clipboard, and runs until killed.

#include <QClipboard>
#include <QFile>
#include <QGuiApplication>
#include <QMimeData>
#include <QTimer>

#include <xcb/xcb.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

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
