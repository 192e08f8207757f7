// SPDX-License-Identifier: GPL-3.0-or-later
//
// The panel's one text editor: a borderless plain-text field that grows with
// its content up to a maximum height and then scrolls with the caret. Return
// commits, Escape cancels, Shift+Return starts a new line when the field is
// multiline, and losing the focus any other way is a blur. The composer, the
// inline editor of a note row and the rename of a section header use it.

#pragma once

#include <QColor>
#include <QPointer>
#include <QTextEdit>
#include <QWidget>

#include <optional>

namespace Vesko {

class InlineTextEditor;
class SpellCheckHighlighter;

class NativeInlineTextField : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(QString placeholder READ placeholder WRITE setPlaceholder)
    Q_PROPERTY(bool multiline READ isMultiline WRITE setMultiline)
    Q_PROPERTY(bool wantsFocus READ wantsFocus WRITE setWantsFocus)
    Q_PROPERTY(bool resignsOnCommit READ resignsOnCommit WRITE setResignsOnCommit)
    Q_PROPERTY(qreal contentHeight READ contentHeight NOTIFY heightChanged)

public:
    //! The narrowest width at which the field measures its content; a field
    //! that has not been laid out wider reports no height.
    static constexpr int minimumMeasuredWidth = 40;
    //! The smallest height of one line, whatever the font.
    static constexpr int minimumLineHeight = 17;

    explicit NativeInlineTextField(QWidget *parent = nullptr);
    ~NativeInlineTextField() override;

    QString text() const;
    //! Replaces the content when it differs; a new height report follows.
    void setText(const QString &text);

    QString placeholder() const;
    void setPlaceholder(const QString &placeholder);
    void setPlaceholderColor(const QColor &color);
    void setTextColor(const QColor &color);
    //! The font of the text and of the placeholder.
    void setTextFont(const QFont &font);

    bool isMultiline() const { return m_multiline; }
    //! Several lines with word wrap and Shift+Return, or one line that never wraps.
    void setMultiline(bool multiline);

    bool wantsFocus() const { return m_wantsFocus; }
    //! While true the field takes the keyboard focus, one event-loop turn later.
    void setWantsFocus(bool wants);

    bool resignsOnCommit() const { return m_resignsOnCommit; }
    //! After a commit the field gives the focus up (the inline editors), or keeps it (the
    //! composer).
    void setResignsOnCommit(bool resigns);

    //! The field is no taller than this; longer content scrolls inside.
    void setMaximumFieldHeight(int height);
    int maximumFieldHeight() const { return m_maximumFieldHeight; }

    //! The object name of the text view, by which others find it.
    void setViewIdentifier(const QString &identifier);

    //! The height of the content as last reported, or 0 before the first report.
    qreal contentHeight() const { return m_lastReportedHeight.value_or(0); }
    //! The height of one line of the present font, never under minimumLineHeight.
    int lineHeight() const;

    //! Selects every character; the caret goes to the end.
    void selectAll();
    void moveCaretToEnd();
    //! The text view inside, for the accessibility name and the focus chain.
    QTextEdit *editor() const;
    //! The marking of misspelled words as the user types.
    SpellCheckHighlighter *spelling() const;

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    //! Every real change of the content, typed or set.
    void textChanged(const QString &text);
    //! Return (and Shift+Return in a single-line field).
    void committed();
    //! Escape.
    void cancelled();
    //! The field lost the focus by other means than Return or Escape.
    void blurred();
    //! Editing began (true) or ended (false).
    void focusChanged(bool focused);
    //! The content's height in pixels changed, by more than half a pixel.
    void heightChanged(qreal height);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    friend class InlineTextEditor;

    //! Keys that end or break the editing; false leaves the key to the text view.
    bool handleKey(QKeyEvent *event);
    void editorFocusIn();
    void editorFocusOut(Qt::FocusReason reason);
    void contentEdited();
    void scheduleHeightReport();
    void reportHeight();
    void scheduleFocusRequest();
    void applyFieldHeight();

    InlineTextEditor *m_editor = nullptr;
    bool m_multiline = true;
    bool m_wantsFocus = false;
    bool m_resignsOnCommit = false;
    bool m_endsExplicitly = false;
    bool m_heightReportScheduled = false;
    bool m_focusRequestScheduled = false;
    bool m_settingText = false;
    int m_maximumFieldHeight = QWIDGETSIZE_MAX;
    int m_fieldHeight = minimumLineHeight;
    std::optional<qreal> m_lastReportedHeight;
    QString m_text;
};

} // namespace Vesko
