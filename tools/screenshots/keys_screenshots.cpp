// SPDX-License-Identifier: GPL-3.0-or-later
//
// Draws the panel's keyboard layers on the demo library into PNG files, in
// the light and the dark appearance: the shortcut sheet, the section
// switcher with a query that offers to create a section, its rename form,
// and the project switcher. Runs offscreen.
//
//   keys_screenshots LIBRARY.json OUTPUT-FOLDER

#include "ScreenshotSupport.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentStore.h"
#include "library/LibraryWriter.h"
#include "panel/layers/SectionSwitcherView.h"
#include "panel/window/PanelRootView.h"
#include "panel/window/PanelState.h"
#include "search/SearchIndex.h"
#include "shell/Preferences.h"
#include "store/Store.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <cstdio>

using namespace Vesko;
using Test::wait;

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
    const std::optional<Library> library = Test::readLibraryFile(QString::fromLocal8Bit(argv[1]));
    if (!library)
        return 1;
    const QString folder = QString::fromLocal8Bit(argv[2]);

    Preferences preferences;
    LibraryWriter writer;
    AttachmentStore attachments;
    SearchIndex searchIndex;
    Test::inEachAppearance([&](const QString &name) {
        Store store(*library, {preferences, writer, attachments, searchIndex});
        PanelState state;
        Test::PanelSurface surface;
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
    });
    return 0;
}
