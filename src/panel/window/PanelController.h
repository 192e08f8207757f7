// SPDX-License-Identifier: GPL-3.0-or-later
//
// Owns the floating panel's window: makes it on the first show, places it by
// the edge preference or where the user left it, fades it in and out, records
// the user's moves and resizes, and applies the window preferences (on top,
// on all desktops, appearance, presence in the taskbar).

#pragma once

#include "panel/window/PanelWindow.h"
#include "shell/Preferences.h"

#include <QObject>
#include <QPointer>
#include <QRect>

class QPropertyAnimation;

namespace Vesko {

class PanelState;
class Store;

class PanelController : public QObject
{
    Q_OBJECT

public:
    static constexpr int fadeInMilliseconds = 160;
    static constexpr int fadeOutMilliseconds = 120;
    static constexpr int composerFocusAttempts = 4;

    PanelController(
        Store &store, PanelState &state, Preferences &preferences, QObject *parent = nullptr);
    ~PanelController() override;

    //! The controller of the process, made on first use and never destroyed.
    static PanelController &shared();

    //! Brings the panel forward, making and placing it first when needed;
    //! with \a focusComposer the composer gets the keyboard. A note's open
    //! edit in place ends first, saved.
    void show(bool activate, bool focusComposer);
    //! Fades the panel out; a note's edit in place ends here, saved.
    void hide();
    //! Hides a panel that is visible and active; shows it in every other case.
    void toggle();
    //! Escape that no view handled: ends an edit, else a rename, else hides.
    void cancelOperation();

    void applyPanelAppearance();
    //! Rebuilds the panel's content in the application's present colours and
    //! applies the panel's look again; nothing before the first show.
    void refreshAppearance();
    //! Stores \a edge, forgets the stored frame and returns the panel to its preset place.
    void applyPanelEdge(PanelEdge edge);
    //! "Reset Window Position": forgets the stored frame and returns to the preset place.
    void resetPanelPosition();
    //! "Reset Window Size": the default size, kept inside the screen, stored.
    void resetPanelSize();
    //! Lists the panel in the taskbar, or keeps it out as a tool window.
    void setShowsInTaskbar(bool shows);

    PanelWindow *panel() const { return m_panel; }
    //! The panel is on screen and not on its way out.
    bool isPanelShown() const;

Q_SIGNALS:
    //! The fade-in or fade-out has painted its first frame.
    void fadeBegan();

private:
    void makePanel();
    Qt::WindowFlags windowFlags() const;
    void replaceContent();
    //! The available area of the panel's screen, if there is a screen.
    std::optional<QRect> panelScreenArea() const;
    QRectF presetFrame() const;
    void placeFrame(const QRectF &frame);
    void recordFrame();
    void focusComposer(int attempt);
    //! Ends a note's edit in place, saving the draft.
    void endNoteEdit();
    void fade(double to, int milliseconds);

    Store &m_store;
    PanelState &m_state;
    Preferences &m_preferences;
    QPointer<PanelWindow> m_panel;
    QPropertyAnimation *m_fade = nullptr;
    bool m_fadingOut = false;
    //! show() asked for the keyboard, and the panel has not lost it or been
    //! hidden since: the window manager may not have handed it over yet.
    bool m_keyRequested = false;
    bool m_isRestoringFrame = false;
    bool m_showsInTaskbar = false;
    //! The frame the controller last gave the panel; echoes of it are not the user's.
    QRect m_placedFrame;
};

} // namespace Vesko
