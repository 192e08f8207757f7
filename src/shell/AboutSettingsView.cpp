// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/AboutSettingsView.h"

#include "shell/Theme.h"

#include <QCoreApplication>
#include <QGridLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace Vesko {

AboutSettingsView::AboutSettingsView(QWidget *parent)
    : QWidget(parent)
{
    auto *layout = new QVBoxLayout(this);
    layout->setAlignment(Qt::AlignHCenter);
    layout->addStretch(1);

    auto *icon = new QLabel;
    icon->setPixmap(Theme::applicationIcon().pixmap(72, 72));
    icon->setAlignment(Qt::AlignCenter);
    icon->setAccessibleName(tr("Vesko icon"));
    layout->addWidget(icon);

    auto *name = new QLabel(tr("Vesko"));
    QFont titleFont = name->font();
    titleFont.setPointSizeF(titleFont.pointSizeF() * 1.6);
    titleFont.setBold(true);
    name->setFont(titleFont);
    name->setAlignment(Qt::AlignCenter);
    layout->addWidget(name);

    auto *version = new QLabel(tr("Version %1").arg(QCoreApplication::applicationVersion()));
    version->setAlignment(Qt::AlignCenter);
    version->setForegroundRole(QPalette::PlaceholderText);
    layout->addWidget(version);

    auto *tagline = new QLabel(tr("A to-do list, a clipboard, and a scratchpad in one panel. "
                                  "Built for working alongside AI tools."));
    tagline->setWordWrap(true);
    tagline->setAlignment(Qt::AlignCenter);
    tagline->setFixedWidth(340);
    layout->addWidget(tagline, 0, Qt::AlignHCenter);
    layout->addSpacing(12);

    struct Promise
    {
        const char *symbol;
        QString text;
    };
    const Promise promises[] = {
        {"internaldrive", tr("Notes stay in a local file")},
        {"eye.slash", tr("No tracking, no telemetry")},
        {"person.slash", tr("No account, no sync")},
    };
    auto *list = new QWidget;
    auto *grid = new QGridLayout(list);
    grid->setContentsMargins(0, 0, 0, 0);
    int row = 0;
    for (const Promise &promise : promises) {
        auto *symbol = new QLabel;
        symbol->setPixmap(
            symbolIcon(QLatin1String(promise.symbol), palette().color(QPalette::WindowText), 14)
                .pixmap(14, 14));
        auto *text = new QLabel(promise.text);
        grid->addWidget(symbol, row, 0);
        grid->addWidget(text, row, 1);
        ++row;
    }
    layout->addWidget(list, 0, Qt::AlignHCenter);
    layout->addStretch(1);
}

} // namespace Vesko
