// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks the owner of a selection (PRIMARY, CLIPBOARD) for its content in one
// target, without ever waiting on the main thread. Each conversion takes a
// server timestamp, asks with ConvertSelection into a property of its own on
// a window of its own, and accepts only the SelectionNotify that answers it:
// same selection, target and property, same time. A late answer to an
// earlier request, which gave up waiting, is thrown away. Large content
// arrives piecewise (INCR). Conversions run one at a time, in the order asked;
// each ends with the content, or with nothing when the owner refuses, is
// gone, or is silent longer than the conversion's bound.

#pragma once

#include <QList>
#include <QObject>
#include <QTimer>

#include <xcb/xcb.h>

#include <functional>
#include <optional>

namespace Vesko {

class X11Connection;

class X11SelectionConverter : public QObject
{
    Q_OBJECT

public:
    struct Answer
    {
        //! The property's type: UTF8_STRING, STRING, ATOM, a MIME type…
        xcb_atom_t type = XCB_ATOM_NONE;
        QByteArray bytes;
    };
    //! What a conversion ends with: the content, or none and why.
    struct Result
    {
        std::optional<Answer> answer;
        //! The owner let the bound pass, rather than refusing or being gone.
        bool isSilent = false;
    };
    using Done = std::function<void(Result)>;

    //! Content above this size is given up.
    static constexpr qsizetype maximumSize = qsizetype(256) << 20;

    //! Works on \a connection, whose events the owner must hand to handleEvent().
    explicit X11SelectionConverter(X11Connection &connection, QObject *parent = nullptr);
    ~X11SelectionConverter() override;

    //! Asks for \a selection in \a target; \a done gets the content, or
    //! nothing. \a timeoutMilliseconds bounds the wait for the answer and for
    //! each piece of a piecewise one.
    void convert(xcb_atom_t selection, xcb_atom_t target, int timeoutMilliseconds, Done done);
    //! The selection's text: UTF8_STRING, else STRING (Latin-1), each bounded alike.
    void readText(xcb_atom_t selection, int timeoutMilliseconds,
        std::function<void(std::optional<QString>)> done);

    //! Takes the events that answer a conversion; false for any other.
    bool handleEvent(xcb_generic_event_t *event);
    xcb_window_t window() const { return m_window; }

private:
    enum class Stage { Idle, Timestamp, Converting, Piecewise };

    struct Request
    {
        xcb_atom_t selection = XCB_ATOM_NONE;
        xcb_atom_t target = XCB_ATOM_NONE;
        int timeout = 0;
        Done done;
    };

    void startNext();
    void convertNow(xcb_timestamp_t time);
    void finish(Result result);
    //! Reads and deletes \a property of the window, whole.
    std::optional<Answer> takeProperty(xcb_atom_t property);
    void giveUp();

    X11Connection &m_connection;
    xcb_window_t m_window = XCB_WINDOW_NONE;
    xcb_atom_t m_timestampProperty = XCB_ATOM_NONE;
    xcb_atom_t m_incr = XCB_ATOM_NONE;
    QList<xcb_atom_t> m_properties;
    int m_nextProperty = 0;

    QList<Request> m_queue;
    Stage m_stage = Stage::Idle;
    Request m_current;
    xcb_atom_t m_property = XCB_ATOM_NONE;
    xcb_timestamp_t m_time = 0;
    Answer m_pieces;
    QTimer m_deadline;
};

} // namespace Vesko
