// SPDX-License-Identifier: GPL-3.0-or-later
//
// The text field of a row in edit: a note's text or a section's title. It
// grows with its content up to 112 px and then scrolls, commits on Return
// (Shift+Return adds a line where it is multiline), cancels on Escape, and
// reports leaving it any other way as a blur. It has the signals and
// properties of the panel's inline text field, which takes its place once
// that field is part of the program.

#pragma once

#include <QWidget>

class QPlainTextEdit;

namespace Vesko {

class RowEditorField : public QWidget
{
    Q_OBJECT

public:
    static constexpr int minimumHeight = 17;
    static constexpr int maximumHeight = 112;

    explicit RowEditorField(QWidget *parent = nullptr);

    QString text() const;
    void setText(const QString &text);
    void setPlaceholder(const QString &placeholder);
    void setMultiline(bool multiline);
    void setWantsFocus(bool wantsFocus);
    void setResignsOnCommit(bool resigns) { m_resignsOnCommit = resigns; }
    void setFieldFont(const QFont &font);
    void setTextColor(const QColor &color);

    //! The height of the content, within the minimum and maximum.
    int contentHeight() const { return m_height; }
    QPlainTextEdit *editor() const { return m_editor; }

Q_SIGNALS:
    void textChanged();
    void committed();
    void cancelled();
    //! The field lost the keyboard other than by Return or Escape.
    void blurred();
    void heightChanged(qreal height);

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void updateHeight();

    QPlainTextEdit *m_editor = nullptr;
    bool m_multiline = true;
    bool m_resignsOnCommit = true;
    bool m_endsExplicitly = false;
    int m_height = minimumHeight;
};

} // namespace Vesko
