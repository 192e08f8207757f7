// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/x11/X11KeyLayout.h"

#include "platform/x11/X11Connection.h"

#include <xkbcommon/xkbcommon-x11.h>
#include <xkbcommon/xkbcommon.h>

// The XKB header names a member "explicit", a C++ keyword.
#define explicit xkbExplicit
#include <xcb/xkb.h>
#undef explicit

#include <cstdlib>

namespace Vesko {

namespace {

//! Every XKB event begins alike; xkbType tells which it is.
struct XkbEventHead
{
    uint8_t responseType;
    uint8_t xkbType;
    uint16_t sequence;
    xcb_timestamp_t time;
    uint8_t deviceID;
};

//! Asks for the events that change what a key shows: a new keyboard or
//! keymap, and a change of the layout in effect.
bool selectEvents(xcb_connection_t *c, int32_t deviceID)
{
    constexpr uint16_t events = XCB_XKB_EVENT_TYPE_NEW_KEYBOARD_NOTIFY
        | XCB_XKB_EVENT_TYPE_MAP_NOTIFY | XCB_XKB_EVENT_TYPE_STATE_NOTIFY;
    constexpr uint16_t mapParts = XCB_XKB_MAP_PART_KEY_TYPES | XCB_XKB_MAP_PART_KEY_SYMS
        | XCB_XKB_MAP_PART_MODIFIER_MAP | XCB_XKB_MAP_PART_EXPLICIT_COMPONENTS
        | XCB_XKB_MAP_PART_KEY_ACTIONS | XCB_XKB_MAP_PART_VIRTUAL_MODS
        | XCB_XKB_MAP_PART_VIRTUAL_MOD_MAP;
    constexpr uint16_t groupParts = XCB_XKB_STATE_PART_GROUP_BASE | XCB_XKB_STATE_PART_GROUP_LATCH
        | XCB_XKB_STATE_PART_GROUP_LOCK;
    xcb_xkb_select_events_details_t details = {};
    details.affectNewKeyboard = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.newKeyboardDetails = XCB_XKB_NKN_DETAIL_KEYCODES;
    details.affectState = groupParts;
    details.stateDetails = groupParts;
    xcb_generic_error_t *error = xcb_request_check(c,
        xcb_xkb_select_events_aux_checked(
            c, xcb_xkb_device_spec_t(deviceID), events, 0, 0, mapParts, mapParts, &details));
    const bool selected = error == nullptr;
    std::free(error);
    return selected;
}

} // namespace

X11KeyLayout::X11KeyLayout(QObject *parent)
    : KeyLayout(parent)
    , m_connection(std::make_unique<X11Connection>())
{
    if (!m_connection->isValid())
        return;
    xcb_connection_t *c = m_connection->get();
    if (!xkb_x11_setup_xkb_extension(c, XKB_X11_MIN_MAJOR_XKB_VERSION,
            XKB_X11_MIN_MINOR_XKB_VERSION, XKB_X11_SETUP_XKB_EXTENSION_NO_FLAGS, nullptr, nullptr,
            &m_xkbEventBase, nullptr))
        return;
    m_deviceID = xkb_x11_get_core_keyboard_device_id(c);
    if (m_deviceID == -1 || !selectEvents(c, m_deviceID))
        return;
    m_context = xkb_context_new(XKB_CONTEXT_NO_FLAGS);
    if (!m_context)
        return;
    m_connection->setEventHandler([this](xcb_generic_event_t *event) { handleEvent(event); });
    reload();
}

X11KeyLayout::~X11KeyLayout()
{
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
    xkb_context_unref(m_context);
}

void X11KeyLayout::reload()
{
    xcb_connection_t *c = m_connection->get();
    xkb_keymap *keymap
        = xkb_x11_keymap_new_from_device(m_context, c, m_deviceID, XKB_KEYMAP_COMPILE_NO_FLAGS);
    xkb_state *state = keymap ? xkb_x11_state_new_from_device(keymap, c, m_deviceID) : nullptr;
    if (!state) {
        // Keep what was read before: a name from the last keymap is better than none.
        xkb_keymap_unref(keymap);
        return;
    }
    xkb_state_unref(m_state);
    xkb_keymap_unref(m_keymap);
    m_keymap = keymap;
    m_state = state;
}

void X11KeyLayout::handleEvent(xcb_generic_event_t *event)
{
    if ((event->response_type & 0x7F) != m_xkbEventBase)
        return;
    const auto *head = reinterpret_cast<const XkbEventHead *>(event);
    if (head->deviceID != m_deviceID)
        return;
    switch (head->xkbType) {
    case XCB_XKB_NEW_KEYBOARD_NOTIFY:
    case XCB_XKB_MAP_NOTIFY:
        reload();
        Q_EMIT changed();
        break;
    case XCB_XKB_STATE_NOTIFY: {
        if (!m_state)
            break;
        const auto *notify = reinterpret_cast<const xcb_xkb_state_notify_event_t *>(event);
        const xkb_state_component components = xkb_state_update_mask(m_state, notify->baseMods,
            notify->latchedMods, notify->lockedMods, xkb_layout_index_t(notify->baseGroup),
            xkb_layout_index_t(notify->latchedGroup), xkb_layout_index_t(notify->lockedGroup));
        if (components & XKB_STATE_LAYOUT_EFFECTIVE)
            Q_EMIT changed();
        break;
    }
    default:
        break;
    }
}

std::optional<QString> X11KeyLayout::keyText(quint16 keyCode) const
{
    if (!m_keymap || !m_state)
        return std::nullopt;
    const xkb_keycode_t key = keyCode;
    if (key < xkb_keymap_min_keycode(m_keymap) || key > xkb_keymap_max_keycode(m_keymap))
        return std::nullopt;
    const xkb_layout_index_t layout = xkb_state_key_get_layout(m_state, key);
    if (layout == XKB_LAYOUT_INVALID)
        return std::nullopt;
    const xkb_keysym_t *symbols = nullptr;
    if (xkb_keymap_key_get_syms_by_level(m_keymap, key, layout, 0, &symbols) < 1)
        return std::nullopt;
    char buffer[16] = {};
    if (xkb_keysym_to_utf8(symbols[0], buffer, sizeof buffer) <= 1) // counts the final zero
        return std::nullopt;
    const QString text = QString::fromUtf8(buffer).trimmed();
    if (text.isEmpty() || !text.at(0).isPrint())
        return std::nullopt;
    return text.toUpper();
}

} // namespace Vesko
