// SPDX-License-Identifier: GPL-3.0-or-later
//
// What capture can do in this session, each capability found on its own;
// Settings words each one for the user.
#pragma once
namespace Vesko {
struct CaptureCapabilities
{
    enum class HotKeys { None, KeyGrab, Portal };                 // None: bind `vesko ...` commands by hand
    enum class Selection { None, PrimarySelection, OnPanelFocus }; // data control / X11, or GNOME's focus read
    enum class Source { None, WindowProperties, ForeignToplevel, Accessibility };
    enum class Copy { None, SyntheticKeys };                      // XTEST or zwp_virtual_keyboard_v1
    // CompositorCanBind: the compositor runs a command on a lone Shift release
    // once told to (sway); CompositorBinding: it does (a tap has come, or kwinrc says so).
    enum class DoubleShift { None, KeyMonitor, CompositorBinding, CompositorCanBind };
    HotKeys hotKeys = HotKeys::None;
    Selection selection = Selection::None;
    Source source = Source::None;
    Copy copy = Copy::None;
    DoubleShift doubleShift = DoubleShift::None;
    bool operator==(const CaptureCapabilities &) const = default;
};
}
