// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11Session.h"

#include "platform/x11/X11Connection.h"
#include "platform/x11/X11Keyboard.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QLocale>
#include <QStandardPaths>
#include <QThread>

#include <xcb/res.h>
#include <xcb/xtest.h>

#include <poll.h>

#include <cstdlib>

namespace Vesko {

namespace {

constexpr quint32 keysymControlL = 0xffe3;
constexpr quint32 keysymC = 0x0063;

const QStringList terminalClasses = {QStringLiteral("xterm"), QStringLiteral("uxterm"),
    QStringLiteral("urxvt"), QStringLiteral("rxvt"), QStringLiteral("gnome-terminal-server"),
    QStringLiteral("gnome-terminal"), QStringLiteral("konsole"), QStringLiteral("alacritty"),
    QStringLiteral("kitty"), QStringLiteral("terminator"), QStringLiteral("tilix"),
    QStringLiteral("xfce4-terminal"), QStringLiteral("lxterminal"), QStringLiteral("mate-terminal"),
    QStringLiteral("st-256color"), QStringLiteral("wezterm"), QStringLiteral("foot"),
    QStringLiteral("org.wezfurlong.wezterm"), QStringLiteral("org.gnome.console"),
    QStringLiteral("kgx"), QStringLiteral("qterminal"), QStringLiteral("sakura"),
    QStringLiteral("terminology"), QStringLiteral("guake"), QStringLiteral("tilda"),
    QStringLiteral("cool-retro-term")};

//! The value of \a key in the [Desktop Entry] group, localised when a
//! translation for the user's language is there.
struct DesktopFile
{
    QHash<QString, QString> values;

    explicit DesktopFile(const QString &path)
    {
        QFile file(path);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            return;
        bool inEntry = false;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine()).trimmed();
            if (line.startsWith(u'[')) {
                inEntry = line == u"[Desktop Entry]";
                continue;
            }
            if (!inEntry || line.startsWith(u'#'))
                continue;
            const qsizetype equals = line.indexOf(u'=');
            if (equals > 0)
                values.insert(line.left(equals).trimmed(), line.mid(equals + 1).trimmed());
        }
    }

    QString localized(const QString &key) const
    {
        const QLocale locale;
        const QString full = locale.name(); // de_DE
        for (const QString &variant : {full, full.section(u'_', 0, 0)}) {
            const auto found = values.constFind(key + u'[' + variant + u']');
            if (found != values.constEnd())
                return *found;
        }
        return values.value(key);
    }
};

} // namespace

X11Session::X11Session()
    : m_connection(std::make_unique<X11Connection>())
{
    if (!m_connection->isValid())
        return;
    m_keyboard = std::make_unique<X11Keyboard>(m_connection->get());
    // A window of our own to receive the converted selection.
    m_requestor = xcb_generate_id(m_connection->get());
    xcb_create_window(m_connection->get(), XCB_COPY_FROM_PARENT, m_requestor, m_connection->root(),
        0, 0, 1, 1, 0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
    xcb_flush(m_connection->get());
    // Events are read by the selection request itself; none is expected otherwise.
    m_connection->setEventHandler([this](xcb_generic_event_t *event) {
        if ((event->response_type & 0x7F) == XCB_MAPPING_NOTIFY)
            m_keyboard->reload();
    });
}

X11Session::~X11Session() = default;

bool X11Session::isCaptureAvailable()
{
    return captureObstacle() == CaptureObstacle::None;
}

CaptureObstacle X11Session::captureObstacle()
{
    // Under Xwayland the X server only knows its own clients: a Wayland
    // session is one whatever platform Qt runs on.
    if (QGuiApplication::platformName().startsWith(u"wayland")
        || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY")
        || qEnvironmentVariable("XDG_SESSION_TYPE") == u"wayland")
        return CaptureObstacle::WaylandSession;
    if (QGuiApplication::platformName() != QLatin1String("xcb"))
        return CaptureObstacle::NoXServer;
    X11Connection connection;
    if (!connection.isValid())
        return CaptureObstacle::NoXServer;
    if (!connection.extensionOpcode("XInputExtension"))
        return CaptureObstacle::NoXInput2;
    if (!connection.extensionOpcode("XTEST"))
        return CaptureObstacle::NoXTest;
    if (!connection.extensionOpcode("X-Resource"))
        return CaptureObstacle::NoXResource;
    return CaptureObstacle::None;
}

xcb_window_t X11Session::activeWindow()
{
    const std::optional<uint32_t> active = m_connection->cardinal(
        m_connection->root(), m_connection->atom("_NET_ACTIVE_WINDOW"), XCB_ATOM_WINDOW);
    if (active && *active != 0)
        return *active;
    xcb_get_input_focus_reply_t *focus = xcb_get_input_focus_reply(
        m_connection->get(), xcb_get_input_focus(m_connection->get()), nullptr);
    xcb_window_t window = focus ? focus->focus : 0;
    std::free(focus);
    if (window == XCB_INPUT_FOCUS_POINTER_ROOT || window == m_connection->root())
        return 0;
    return window;
}

std::optional<qint64> X11Session::processOf(xcb_window_t window)
{
    if (const std::optional<uint32_t> pid
        = m_connection->cardinal(window, m_connection->atom("_NET_WM_PID"), XCB_ATOM_CARDINAL))
        return qint64(*pid);
    // The X-Resource extension knows the process of a local client.
    xcb_res_client_id_spec_t spec {window, XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID};
    xcb_res_query_client_ids_reply_t *reply = xcb_res_query_client_ids_reply(
        m_connection->get(), xcb_res_query_client_ids(m_connection->get(), 1, &spec), nullptr);
    std::optional<qint64> pid;
    if (reply) {
        xcb_res_client_id_value_iterator_t it = xcb_res_query_client_ids_ids_iterator(reply);
        for (; it.rem; xcb_res_client_id_value_next(&it)) {
            if ((it.data->spec.mask & XCB_RES_CLIENT_ID_MASK_LOCAL_CLIENT_PID)
                && xcb_res_client_id_value_value_length(it.data) >= 1) {
                pid = qint64(*xcb_res_client_id_value_value(it.data));
                break;
            }
        }
        std::free(reply);
    }
    return pid;
}

std::optional<QString> X11Session::windowTitle(xcb_window_t window)
{
    if (const std::optional<QByteArray> name = m_connection->property(
            window, m_connection->atom("_NET_WM_NAME"), m_connection->atom("UTF8_STRING")))
        return QString::fromUtf8(*name);
    if (const std::optional<QByteArray> name
        = m_connection->property(window, XCB_ATOM_WM_NAME, XCB_ATOM_ANY))
        return QString::fromLocal8Bit(*name);
    return std::nullopt;
}

void X11Session::loadDesktopEntries()
{
    m_entriesLoaded = true;
    const QStringList folders = QStandardPaths::locateAll(
        QStandardPaths::ApplicationsLocation, QString(), QStandardPaths::LocateDirectory);
    // The first folder wins, as in the desktop's own lookup.
    for (const QString &folder : folders) {
        const QDir dir(folder);
        for (const QFileInfo &info :
            dir.entryInfoList({QStringLiteral("*.desktop")}, QDir::Files)) {
            const QString id = info.completeBaseName();
            if (m_entriesByID.contains(id))
                continue;
            const DesktopFile file(info.filePath());
            DesktopEntry entry;
            entry.id = id;
            entry.name = file.localized(QStringLiteral("Name"));
            entry.isTerminal = file.values.value(QStringLiteral("Categories"))
                                   .split(u';')
                                   .contains(QStringLiteral("TerminalEmulator"));
            m_entriesByID.insert(id, entry);
            const QString wmClass = file.values.value(QStringLiteral("StartupWMClass"));
            if (!wmClass.isEmpty() && !m_entriesByWMClass.contains(wmClass.toLower()))
                m_entriesByWMClass.insert(wmClass.toLower(), entry);
        }
    }
}

std::optional<X11Session::DesktopEntry> X11Session::desktopEntry(
    const QStringList &candidates, const QString &wmClass)
{
    if (!m_entriesLoaded)
        loadDesktopEntries();
    for (const QString &candidate : candidates) {
        QString id = candidate;
        if (id.endsWith(QLatin1String(".desktop")))
            id.chop(8);
        const auto found = m_entriesByID.constFind(id);
        if (found != m_entriesByID.constEnd())
            return *found;
    }
    const auto byClass = m_entriesByWMClass.constFind(wmClass.toLower());
    if (byClass != m_entriesByWMClass.constEnd())
        return *byClass;
    for (const QString &candidate : candidates) {
        const auto found = m_entriesByID.constFind(candidate.toLower());
        if (found != m_entriesByID.constEnd())
            return *found;
    }
    return std::nullopt;
}

std::optional<FrontApplication> X11Session::frontApplication()
{
    if (!m_connection->isValid())
        return std::nullopt;
    const xcb_window_t window = activeWindow();
    if (window == 0)
        return std::nullopt;
    FrontApplication front;
    front.processID = processOf(window).value_or(0);
    front.windowTitle = windowTitle(window);

    QString instance;
    QString wmClass;
    if (const std::optional<QByteArray> classes
        = m_connection->property(window, XCB_ATOM_WM_CLASS, XCB_ATOM_STRING)) {
        const QList<QByteArray> parts = classes->split('\0');
        instance = QString::fromLocal8Bit(parts.value(0));
        wmClass = QString::fromLocal8Bit(parts.value(1));
    }
    QStringList candidates;
    for (const char *name : {"_GTK_APPLICATION_ID", "_KDE_NET_WM_DESKTOP_FILE"}) {
        if (const std::optional<QByteArray> id
            = m_connection->property(window, m_connection->atom(name), XCB_ATOM_ANY)) {
            candidates.append(QString::fromUtf8(*id).remove(QChar(0)));
        }
    }
    candidates.append(wmClass);
    candidates.append(instance);
    candidates.removeAll(QString());

    const std::optional<DesktopEntry> entry = desktopEntry(candidates, wmClass);
    if (entry && !entry->name.isEmpty())
        front.name = entry->name;
    else if (!wmClass.isEmpty())
        front.name = wmClass;
    else if (front.processID > 0) {
        QFile comm(QStringLiteral("/proc/%1/comm").arg(front.processID));
        if (comm.open(QIODevice::ReadOnly))
            front.name = QString::fromLocal8Bit(comm.readAll()).trimmed();
    }
    if (entry)
        front.identifier = entry->id;
    else if (!instance.isEmpty())
        front.identifier = instance;
    front.isTerminal = (entry && entry->isTerminal) || terminalClasses.contains(wmClass.toLower())
        || terminalClasses.contains(instance.toLower());
    return front;
}

std::optional<QString> X11Session::primarySelection(qint64 processID)
{
    if (!m_connection->isValid() || processID <= 0)
        return std::nullopt;
    xcb_connection_t *c = m_connection->get();
    xcb_get_selection_owner_reply_t *owner
        = xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, XCB_ATOM_PRIMARY), nullptr);
    const xcb_window_t ownerWindow = owner ? owner->owner : 0;
    std::free(owner);
    if (ownerWindow == 0 || processOf(ownerWindow) != processID)
        return std::nullopt;

    const xcb_atom_t property = m_connection->atom("VESKO_SELECTION");
    const xcb_atom_t incr = m_connection->atom("INCR");
    for (xcb_atom_t target : {m_connection->atom("UTF8_STRING"), xcb_atom_t(XCB_ATOM_STRING)}) {
        xcb_convert_selection(c, m_requestor, XCB_ATOM_PRIMARY, target, property, XCB_CURRENT_TIME);
        xcb_flush(c);
        // Wait for the owner's answer, letting no other event of this connection matter.
        QDeadlineTimer deadline(selectionTimeoutMilliseconds);
        bool answered = false;
        bool converted = false;
        while (!answered && !deadline.hasExpired()) {
            xcb_generic_event_t *event = xcb_poll_for_event(c);
            if (!event) {
                pollfd fd {xcb_get_file_descriptor(c), POLLIN, 0};
                ::poll(&fd, 1, int(std::max<qint64>(1, deadline.remainingTime())));
                continue;
            }
            if ((event->response_type & 0x7F) == XCB_SELECTION_NOTIFY) {
                auto *notify = reinterpret_cast<xcb_selection_notify_event_t *>(event);
                if (notify->requestor == m_requestor) {
                    answered = true;
                    converted = notify->property != XCB_ATOM_NONE;
                }
            }
            std::free(event);
        }
        if (!converted)
            continue;
        xcb_atom_t type = XCB_ATOM_NONE;
        const std::optional<QByteArray> bytes
            = m_connection->property(m_requestor, property, XCB_ATOM_ANY, &type);
        xcb_delete_property(c, m_requestor, property);
        xcb_flush(c);
        // A selection too large for one property comes piecewise (INCR): not read here.
        if (!bytes || type == incr)
            continue;
        return target == XCB_ATOM_STRING ? QString::fromLatin1(*bytes) : QString::fromUtf8(*bytes);
    }
    return std::nullopt;
}

void X11Session::releaseHeldModifiers()
{
    // The keys of a hot key are often still down: wait a little for their
    // release, then release them so they do not mix with the synthetic Ctrl+C.
    xcb_connection_t *c = m_connection->get();
    QDeadlineTimer deadline(heldKeysTimeoutMilliseconds);
    QList<quint8> held;
    do {
        held.clear();
        xcb_query_keymap_reply_t *keymap = xcb_query_keymap_reply(c, xcb_query_keymap(c), nullptr);
        if (!keymap)
            return;
        for (int code = 8; code < 256; ++code) {
            if ((keymap->keys[code / 8] >> (code % 8)) & 1 && m_keyboard->isModifier(quint8(code)))
                held.append(quint8(code));
        }
        std::free(keymap);
        if (held.isEmpty())
            return;
        QThread::msleep(10);
    } while (!deadline.hasExpired());
    for (quint8 code : std::as_const(held))
        xcb_test_fake_input(c, XCB_KEY_RELEASE, code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    xcb_flush(c);
}

bool X11Session::sendCopy(int attempt)
{
    if (!m_connection->isValid() || !m_connection->extensionOpcode("XTEST"))
        return false;
    const quint8 control = m_keyboard->keyCodeOf(keysymControlL);
    const quint8 c = m_keyboard->keyCodeOf(keysymC);
    if (control == 0 || c == 0)
        return false;
    releaseHeldModifiers();
    xcb_connection_t *connection = m_connection->get();
    if (attempt == 1) {
        // To the focused window: make sure the front window has the keyboard.
        if (const xcb_window_t window = activeWindow())
            xcb_set_input_focus(connection, XCB_INPUT_FOCUS_PARENT, window, XCB_CURRENT_TIME);
    }
    for (auto [type, code] : {std::pair {XCB_KEY_PRESS, control}, std::pair {XCB_KEY_PRESS, c},
             std::pair {XCB_KEY_RELEASE, c}, std::pair {XCB_KEY_RELEASE, control}}) {
        xcb_test_fake_input(connection, uint8_t(type), code, XCB_CURRENT_TIME, XCB_NONE, 0, 0, 0);
    }
    xcb_flush(connection);
    return true;
}

} // namespace Vesko
