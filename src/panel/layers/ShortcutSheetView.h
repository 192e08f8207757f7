// SPDX-License-Identifier: GPL-3.0-or-later
//
// The overlay that lists the panel's keyboard shortcuts in three groups,
// "In this window", "While composing" and the four system-wide hot keys
// with their present keys, over a dim that closes it when clicked.

#pragma once

#include "panel/layers/PanelLayerView.h"
#include "panel/window/Shortcut.h"

class QLabel;
class QVBoxLayout;

namespace Vesko {

class HotKeyCenter;
class KeyLayout;
class PanelState;
class Store;

class ShortcutSheetView : public PanelLayerView
{
    Q_OBJECT

public:
    static constexpr int cardWidth = 330;
    static constexpr int maximumBodyHeight = 340;

    //! \a hotKeys may be null (no capture in this session): the system-wide
    //! rows then show "—".
    ShortcutSheetView(Store &store, PanelState &state, HotKeyCenter *hotKeys,
        const KeyLayout *layout, QWidget *parent = nullptr);

    //! The shortcuts of the first group and of the second, in their order.
    static QList<Shortcut> windowShortcuts();
    static QList<Shortcut> composingShortcuts();

    //! The rows as shown, group after group, each as "title<TAB>keys".
    QStringList rowTexts() const;

protected:
    QRect cardGeometry() const override;
    void dismiss() override;

private:
    void refreshSystemWide();

    Store &m_store;
    PanelState &m_state;
    HotKeyCenter *m_hotKeys;
    const KeyLayout *m_layout;
    QList<QLabel *> m_systemWideKeys;
};

} // namespace Vesko
