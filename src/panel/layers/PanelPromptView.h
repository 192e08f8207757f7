// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's one-field prompt ("New Section", "New Project", "Rename
// Project"): a card over a dim, with a title, a field and the buttons
// "Cancel" and "Add". Return or "Add" hands the trimmed name over, or
// nothing when it is blank; Escape, "Cancel" and a click on the dim hand
// nothing over.

#pragma once

#include "panel/layers/PanelLayerView.h"

#include <functional>
#include <optional>

class QLabel;
class QLineEdit;
class QPushButton;

namespace Vesko {

class PanelPromptView : public PanelLayerView
{
    Q_OBJECT

public:
    //! Gets the entered name, or nothing on cancel. Called once.
    using CommitHandler = std::function<void(const std::optional<QString> &name)>;

    static constexpr int cardMaximumWidth = 260;

    PanelPromptView(const QString &title, const QString &placeholder, const QString &initialText,
        CommitHandler onCommit, QWidget *parent = nullptr);

    QString title() const;
    QLineEdit *field() const { return m_field; }
    QPushButton *addButton() const { return m_add; }
    QPushButton *cancelButton() const { return m_cancel; }

    //! Return and "Add": the text trimmed of white space and line breaks, or
    //! nothing when that leaves it empty.
    void submit();
    //! Escape, "Cancel" and the dim.
    void cancel();

protected:
    QRect cardGeometry() const override;
    void dismiss() override { cancel(); }
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void finish(const std::optional<QString> &name);
    void updateAddButton();

    CommitHandler m_onCommit;
    QLabel *m_title;
    QLineEdit *m_field;
    QPushButton *m_cancel;
    QPushButton *m_add;
    bool m_finished = false;
};

} // namespace Vesko
