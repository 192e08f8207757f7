// SPDX-License-Identifier: GPL-3.0-or-later
//
// One quiet line at the foot of the panel while the library cannot be saved:
// "Not saved: " and the reason, cut in the middle to the panel's width with
// the whole text in its tool tip. It watches the Store itself and hides again at the
// first save that succeeds.

#pragma once

#include <QLabel>

namespace Vesko {

class Store;

class SaveStatusView : public QLabel
{
    Q_OBJECT

public:
    explicit SaveStatusView(Store &store, QWidget *parent = nullptr);

    //! The whole line, before it is cut to the width; empty while saves succeed.
    QString statusText() const { return m_statusText; }

protected:
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refresh();
    void applyColors();
    void showElided();

    Store &m_store;
    QString m_statusText;
};

} // namespace Vesko
