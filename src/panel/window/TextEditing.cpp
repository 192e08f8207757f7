// SPDX-License-Identifier: GPL-3.0-or-later

#include "panel/window/TextEditing.h"

#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextDocument>
#include <QTextEdit>

namespace Vesko {

bool isTextEditor(const QWidget *widget)
{
    return qobject_cast<const QLineEdit *>(widget) || qobject_cast<const QTextEdit *>(widget)
        || qobject_cast<const QPlainTextEdit *>(widget);
}

bool canUndoTyping(const QWidget *widget, bool redo)
{
    if (auto *line = qobject_cast<const QLineEdit *>(widget))
        return redo ? line->isRedoAvailable() : line->isUndoAvailable();
    const QTextDocument *document = nullptr;
    if (auto *text = qobject_cast<const QTextEdit *>(widget))
        document = text->document();
    else if (auto *plain = qobject_cast<const QPlainTextEdit *>(widget))
        document = plain->document();
    if (!document)
        return false;
    return redo ? document->isRedoAvailable() : document->isUndoAvailable();
}

} // namespace Vesko
