// SPDX-License-Identifier: GPL-3.0-or-later
//
// Copies a selection (CLIPBOARD, PRIMARY) from its owner, every format at
// once or the text alone, over an X connection of its own. It blocks the
// thread that calls it, within a deadline: it is meant for a worker thread
// (X11Clipboard runs it on a serial queue), never for the main thread.
// All of an owner's formats are asked for together, each into a property of
// its own, so one slow format does not hold up the others; large ones arrive
// piecewise (INCR), several at a time.

#pragma once

#include <QByteArray>
#include <QDeadlineTimer>
#include <QHash>
#include <QList>
#include <QMap>
#include <QSet>
#include <QString>

#include <xcb/xcb.h>

#include <atomic>
#include <optional>

namespace Vesko {

class X11SelectionTransfer
{
public:
    //! A whole copy gives up above this many bytes in all.
    static constexpr qsizetype maximumSize = qsizetype(256) << 20;

    //! Connects to $DISPLAY. \a cancelled, when given, makes a copy under way
    //! give up at once once it is set, from any thread; it must outlive this.
    explicit X11SelectionTransfer(const std::atomic_bool *cancelled = nullptr);
    ~X11SelectionTransfer();

    X11SelectionTransfer(const X11SelectionTransfer &) = delete;
    X11SelectionTransfer &operator=(const X11SelectionTransfer &) = delete;

    bool isValid() const { return m_connection != nullptr; }

    //! Every format of \a selection with its bytes, keyed as the clipboard
    //! keeps them (the text targets as "text/plain"); empty when the
    //! selection has no owner. Nothing when the copy could not be made whole
    //! before \a deadline: the owner left a format, or its list of formats,
    //! unanswered, or the content was too large. Formats the owner refuses
    //! are left out, as they hold nothing to copy.
    std::optional<QMap<QString, QByteArray>> copyAll(
        const char *selection, QDeadlineTimer deadline);
    //! The text of \a selection: UTF8_STRING, else STRING (Latin-1); nothing
    //! when the owner has none or does not answer before \a deadline.
    std::optional<QString> text(const char *selection, QDeadlineTimer deadline);

    //! The format under which the content of \a target is kept; empty for
    //! targets that describe the selection rather than hold its content.
    static QString formatOfTarget(const QByteArray &target);

private:
    struct Conversion;

    xcb_atom_t atom(const QByteArray &name);
    //! The names of \a atoms, asked for together.
    QList<QByteArray> atomNames(const QList<xcb_atom_t> &atoms);
    //! A server timestamp, from a zero-length change of a property of the window.
    std::optional<xcb_timestamp_t> timestamp(QDeadlineTimer deadline);
    //! Asks for every conversion at once and takes the answers until each
    //! has one, or \a deadline passes.
    void convert(xcb_atom_t selection, QList<Conversion> &conversions, QDeadlineTimer deadline);
    //! The next event, waiting for it until \a deadline; null when none came.
    xcb_generic_event_t *nextEvent(QDeadlineTimer deadline);
    //! Reads \a property of the window whole and deletes it.
    std::optional<QByteArray> takeProperty(xcb_atom_t property, xcb_atom_t *type);
    xcb_atom_t nextProperty();

    xcb_connection_t *m_connection = nullptr;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    QHash<QByteArray, xcb_atom_t> m_atoms;
    QList<xcb_atom_t> m_properties;
    //! Targets of requests given up on before the owner answered them.
    QSet<xcb_atom_t> m_unanswered;
    xcb_window_t m_lastOwner = XCB_WINDOW_NONE;
    int m_nextProperty = 0;
    const std::atomic_bool *m_cancelled = nullptr;
};

} // namespace Vesko
