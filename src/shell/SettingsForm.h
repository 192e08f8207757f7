// SPDX-License-Identifier: GPL-3.0-or-later
//
// The building blocks of the Settings tabs: a titled group of labelled rows,
// the small secondary footnote under a control, and a tab's scrolling page.

#pragma once

#include <QGroupBox>

class QFormLayout;
class QLabel;
class QScrollArea;

namespace Vesko {

class SettingsGroup : public QGroupBox
{
    Q_OBJECT

public:
    explicit SettingsGroup(const QString &title, QWidget *parent = nullptr);

    //! A row with its label beside \a field; the label names the field for a screen reader.
    void addRow(const QString &label, QWidget *field);
    //! A row across the whole width.
    void addRow(QWidget *field);
    //! Several buttons side by side, across the whole width.
    void addButtons(const QList<QWidget *> &buttons);

private:
    QFormLayout *m_form;
};

//! A small, secondary, wrapping line of text.
QLabel *makeFootnote(const QString &text, QWidget *parent = nullptr);
//! A small line for a failure, in the palette's warning colour.
QLabel *makeErrorLine(QWidget *parent = nullptr);
//! A page of groups that scrolls when the window is too short for it.
QScrollArea *makeSettingsPage(QWidget *content);

} // namespace Vesko
