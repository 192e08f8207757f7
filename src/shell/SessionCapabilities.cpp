// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SessionCapabilities.h"

namespace Vesko {

CaptureCapabilities sessionCapabilities(const SessionFindings &found)
{
    using C = CaptureCapabilities;
    using W = SessionFindings::Windowing;
    if (found.windowing == W::X11) {
        if (!found.x11CaptureAvailable)
            return {};
        return {C::HotKeys::KeyGrab, C::Selection::PrimarySelection, C::Source::WindowProperties,
            C::Copy::SyntheticKeys, C::DoubleShift::KeyMonitor};
    }
    C capabilities;
    if (found.windowing == W::Wayland) {
        capabilities = found.compositor;
        if (capabilities.source == C::Source::None && found.accessibilityBus)
            capabilities.source = C::Source::Accessibility;
        if (!found.dataControl) {
            // No data control: the selection is read as the panel takes the
            // focus, and no copy keys are sent.
            capabilities.selection
                = found.readsOnPanelFocus ? C::Selection::OnPanelFocus : C::Selection::None;
            capabilities.copy = C::Copy::None;
        }
        if (capabilities.doubleShift == C::DoubleShift::None && found.kwinPassesShiftTaps)
            capabilities.doubleShift = C::DoubleShift::CompositorBinding;
        if (capabilities.doubleShift == C::DoubleShift::CompositorCanBind && found.shiftTapArrived)
            capabilities.doubleShift = C::DoubleShift::CompositorBinding;
    }
    // X11 clients under XWayland reach no other client: only the desktop's
    // shortcuts are left.
    if (found.portal
        && (*found.portal == PortalShortcutsState::Connecting
            || *found.portal == PortalShortcutsState::Bound))
        capabilities.hotKeys = C::HotKeys::Portal;
    return capabilities;
}

} // namespace Vesko
