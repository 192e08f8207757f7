// SPDX-License-Identifier: GPL-3.0-or-later
//
// The content of the floating panel: the list of the active project's rows
// and the composer under it, with the empty state over an empty list. It
// applies the focus requests of the PanelState to its own parts.

#pragma once

#include "panel/PanelState.h"

#include <QWidget>

class QLabel;
class QLineEdit;

namespace Vesko {

class PanelListView;
class Preferences;
class Store;

class PanelRootView : public QWidget
{
    Q_OBJECT

public:
    //! The composer's editor carries this object name; the panel looks for it
    //! to place the focus after a show.
    static inline const QString composerEditorName = QStringLiteral("VeskoComposerEditor");

    PanelRootView(Store &store, PanelState &state, QWidget *parent = nullptr);

    void setFocusTarget(PanelFocusTarget target);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void applyFocusRequest();
    void commitComposer();
    void refreshComposerPlaceholder();
    void refreshEmptyState();
    void placeComposer();

    Store &m_store;
    PanelState &m_state;
    PanelFocusTarget m_focus = PanelFocusTarget::Composer;
    PanelListView *m_list = nullptr;
    QLineEdit *m_composer = nullptr;
    QWidget *m_composerBox = nullptr;
    QWidget *m_emptyState = nullptr;
    QLabel *m_emptyTitle = nullptr;
    QLabel *m_emptyHint = nullptr;
};

} // namespace Vesko
