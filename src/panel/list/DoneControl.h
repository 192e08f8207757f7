// SPDX-License-Identifier: GPL-3.0-or-later
//
// The round done control of a note row: an empty ring, or a filled disc with
// a check mark once the note is done. Screen readers hear it as "Mark as
// done" or "Mark as not done".

#pragma once

#include <QAbstractButton>

namespace Vesko {

class DoneControl : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int diameter = 15;

    explicit DoneControl(QWidget *parent = nullptr);
    void setDone(bool done);
    bool isDone() const { return m_done; }
    QSize sizeHint() const override { return {diameter, diameter}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    bool m_done = false;
};

} // namespace Vesko
