// SPDX-License-Identifier: GPL-3.0-or-later
//
// Draws the panel's keyboard layers on the demo library into PNG files, in
// the light and the dark appearance: the shortcut sheet, the section
// switcher with a query that offers to create a section, its rename form,
// and the project switcher. Runs offscreen.
//
//   keys_screenshots LIBRARY.json OUTPUT-FOLDER

#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryCoding.h"
#include "library/LibraryWriter.h"
#include "panel/PanelRootView.h"
#include "panel/PanelState.h"
#include "panel/SwitcherView.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "shell/Theme.h"
#include "store/Store.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QLineEdit>
#include <QPainter>
#include <QPainterPath>
#include <QTest>
#include <QVBoxLayout>

#include <cstdio>

using namespace Vesko;

namespace {

//! The panel's rounded surface behind its content.
class Surface : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        const ThemeColors colors = Theme::currentColors();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path;
        path.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 22, 22);
        QColor surface = colors.panelSurface;
        surface.setAlpha(255);
        painter.fillPath(path, surface);
        painter.setPen(QPen(colors.panelStroke, 1));
        painter.drawPath(path);
    }
};

void wait(int milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setAttribute(Qt::AA_Use96Dpi, true);
    QApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: keys_screenshots LIBRARY.json OUTPUT-FOLDER\n");
        return 2;
    }
    QFile file(QString::fromLocal8Bit(argv[1]));
    if (!file.open(QIODevice::ReadOnly)) {
        std::fprintf(stderr, "cannot read %s\n", argv[1]);
        return 1;
    }
    QString error;
    const std::optional<Library> library = decodeLibrary(file.readAll(), &error);
    if (!library) {
        std::fprintf(stderr, "cannot decode the library: %s\n", qPrintable(error));
        return 1;
    }
    const QString folder = QString::fromLocal8Bit(argv[2]);

    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex searchIndex;
    for (const AppAppearance appearance : {AppAppearance::Light, AppAppearance::Dark}) {
        const QString name
            = appearance == AppAppearance::Light ? QStringLiteral("light") : QStringLiteral("dark");
        Theme::applyAppearance(appearance);
        Store store(*library, {preferences, writer, attachments, searchIndex});
        PanelState state;
        Surface surface;
        surface.resize(340, 560);
        auto *layout = new QVBoxLayout(&surface);
        layout->setContentsMargins(0, 0, 0, 0);
        auto *root = new PanelRootView(store, state, preferences, &surface);
        layout->addWidget(root);
        surface.show();
        QApplication::setActiveWindow(&surface);
        wait(100);

        auto shoot = [&](const QString &what) {
            wait(400); // the layer fades in
            const QString path = folder + QStringLiteral("/keys-%1-%2.png").arg(what, name);
            surface.grab().save(path);
            std::printf("wrote %s\n", qPrintable(path));
        };

        state.setShowing(PanelLayer::Shortcuts, true);
        shoot(QStringLiteral("sheet"));
        state.setShowing(PanelLayer::Shortcuts, false);

        state.setShowing(PanelLayer::SectionSwitcher, true);
        wait(100);
        if (auto *switcher = qobject_cast<SectionSwitcherView *>(root->layerView())) {
            QTest::keyClicks(switcher->filterField(), QStringLiteral("o"));
            shoot(QStringLiteral("section-switcher"));
            switcher->filterField()->clear();
            switcher->beginRename();
            shoot(QStringLiteral("section-rename"));
        }
        state.setShowing(PanelLayer::SectionSwitcher, false);

        state.setShowing(PanelLayer::ProjectSwitcher, true);
        shoot(QStringLiteral("project-switcher"));
        state.setShowing(PanelLayer::ProjectSwitcher, false);
    }
    return 0;
}
