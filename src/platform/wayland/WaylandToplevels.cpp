// SPDX-License-Identifier: GPL-3.0-or-later

#include "platform/wayland/WaylandToplevels.h"

#include "platform/Logging.h"
#include "platform/wayland/WaylandGlobals.h"

#include "wlr-foreign-toplevel-management-unstable-v1-client-protocol.h"

#include <QTimer>

namespace Vesko {

WaylandToplevels::WaylandToplevels(WaylandGlobals &globals, QObject *parent)
    : QObject(parent)
    , m_globals(globals)
{
    bindManager();
    connect(&globals, &WaylandGlobals::announced, this, [this](const QByteArray &interface) {
        if (!m_manager && interface == zwlr_foreign_toplevel_manager_v1_interface.name)
            bindManager();
    });
    connect(&globals, &WaylandGlobals::withdrawn, this, [this](quint32 name) {
        if (name == m_managerName)
            release();
    });
}

WaylandToplevels::~WaylandToplevels()
{
    release();
}

void WaylandToplevels::bindManager()
{
    m_manager = reinterpret_cast<zwlr_foreign_toplevel_manager_v1 *>(
        m_globals.bind(&zwlr_foreign_toplevel_manager_v1_interface, 3, &m_managerName));
    if (!m_manager)
        return;
    static const zwlr_foreign_toplevel_manager_v1_listener listener
        = {&WaylandToplevels::toplevel, &WaylandToplevels::finished};
    zwlr_foreign_toplevel_manager_v1_add_listener(m_manager, &listener, this);
    m_globals.flush();
}

void WaylandToplevels::release()
{
    for (auto it = m_handles.cbegin(); it != m_handles.cend(); ++it)
        zwlr_foreign_toplevel_handle_v1_destroy(it.key());
    m_handles.clear();
    if (m_manager)
        zwlr_foreign_toplevel_manager_v1_destroy(m_manager);
    m_manager = nullptr;
    m_managerName = 0;
    m_globals.flush();
}

std::optional<WaylandToplevels::Toplevel> WaylandToplevels::activated() const
{
    for (const Handle &handle : m_handles) {
        if (handle.current.activated)
            return handle.current;
    }
    return std::nullopt;
}

void WaylandToplevels::toplevel(
    void *data, zwlr_foreign_toplevel_manager_v1 *, zwlr_foreign_toplevel_handle_v1 *handle)
{
    auto *self = static_cast<WaylandToplevels *>(data);
    self->m_handles.insert(handle, {});
    static const zwlr_foreign_toplevel_handle_v1_listener listener = {
        // title
        [](void *data, zwlr_foreign_toplevel_handle_v1 *handle, const char *title) {
            auto *self = static_cast<WaylandToplevels *>(data);
            self->m_handles[handle].pending.title = QString::fromUtf8(title);
        },
        // app_id
        [](void *data, zwlr_foreign_toplevel_handle_v1 *handle, const char *appID) {
            auto *self = static_cast<WaylandToplevels *>(data);
            self->m_handles[handle].pending.appID = QString::fromUtf8(appID);
        },
        // output_enter, output_leave
        [](void *, zwlr_foreign_toplevel_handle_v1 *, wl_output *) {},
        [](void *, zwlr_foreign_toplevel_handle_v1 *, wl_output *) {},
        // state
        [](void *data, zwlr_foreign_toplevel_handle_v1 *handle, wl_array *states) {
            auto *self = static_cast<WaylandToplevels *>(data);
            bool activated = false;
            const auto *state = static_cast<const quint32 *>(states->data);
            for (size_t i = 0; i < states->size / sizeof(quint32); ++i)
                activated
                    = activated || state[i] == ZWLR_FOREIGN_TOPLEVEL_HANDLE_V1_STATE_ACTIVATED;
            self->m_handles[handle].pending.activated = activated;
        },
        // done: the pending state holds
        [](void *data, zwlr_foreign_toplevel_handle_v1 *handle) {
            auto *self = static_cast<WaylandToplevels *>(data);
            Handle &entry = self->m_handles[handle];
            entry.current = entry.pending;
        },
        // closed
        [](void *data, zwlr_foreign_toplevel_handle_v1 *handle) {
            auto *self = static_cast<WaylandToplevels *>(data);
            self->m_handles.remove(handle);
            zwlr_foreign_toplevel_handle_v1_destroy(handle);
        },
        // parent
        [](void *, zwlr_foreign_toplevel_handle_v1 *, zwlr_foreign_toplevel_handle_v1 *) {},
    };
    zwlr_foreign_toplevel_handle_v1_add_listener(handle, &listener, self);
}

void WaylandToplevels::finished(void *data, zwlr_foreign_toplevel_manager_v1 *)
{
    auto *self = static_cast<WaylandToplevels *>(data);
    qCInfo(lcCapture, "The compositor ended the list of toplevels");
    QTimer::singleShot(0, self, [self] { self->release(); });
}

} // namespace Vesko
