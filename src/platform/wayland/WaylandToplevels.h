// SPDX-License-Identifier: GPL-3.0-or-later
//
// The compositor's windows through zwlr_foreign_toplevel_manager_v1: each
// toplevel's app_id, title and state as of its last "done", and so the one
// that is activated. The manager is let go when the compositor withdraws it.

#pragma once

#include <QHash>
#include <QObject>
#include <QString>

#include <optional>

struct wl_proxy;
struct zwlr_foreign_toplevel_handle_v1;
struct zwlr_foreign_toplevel_manager_v1;

namespace Vesko {

class WaylandGlobals;

class WaylandToplevels : public QObject
{
    Q_OBJECT

public:
    struct Toplevel
    {
        QString appID;
        QString title;
        bool activated = false;
    };

    explicit WaylandToplevels(WaylandGlobals &globals, QObject *parent = nullptr);
    ~WaylandToplevels() override;

    //! The compositor tells which window is active.
    bool isAvailable() const { return m_manager != nullptr; }
    //! The activated toplevel, or nothing when none is.
    std::optional<Toplevel> activated() const;

private:
    struct Handle
    {
        Toplevel current;
        Toplevel pending;
    };

    void bindManager();
    void release();

    static void toplevel(void *data, zwlr_foreign_toplevel_manager_v1 *manager,
        zwlr_foreign_toplevel_handle_v1 *handle);
    static void finished(void *data, zwlr_foreign_toplevel_manager_v1 *manager);

    WaylandGlobals &m_globals;
    zwlr_foreign_toplevel_manager_v1 *m_manager = nullptr;
    quint32 m_managerName = 0;
    QHash<zwlr_foreign_toplevel_handle_v1 *, Handle> m_handles;
};

} // namespace Vesko
