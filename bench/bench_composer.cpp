// SPDX-License-Identifier: GPL-3.0-or-later
//
// One character typed into the composer, from the key press to the repainted
// field, in a panel whose active project holds 10k notes (100k in the
// library), beside one rebuild of the rows of that project in the same run.
// Needs an X session (tests/x-session.sh).

#include "LibraryGenerator.h"
#include "PanelBench.h"
#include "TestEnvironment.h"

#include "panel/text/ComposerView.h"
#include "panel/text/NativeInlineTextField.h"
#include "panel/window/PanelRootView.h"
#include "platform/SpellChecker.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTextEdit>

#include <benchmark/benchmark.h>

#include <cstdio>

using namespace Vesko;

namespace {

struct Panel : Bench::PanelStore
{
    Panel()
        : PanelStore(Test::generateLibraryWithActiveProject(100000, 10000, 42))
        , root(store, state, preferences)
    {
        root.resize(340, 560);
        root.show();
        root.activateWindow();
        QApplication::setActiveWindow(&root);
        for (int i = 0; i < 50; ++i)
            QCoreApplication::processEvents();
        editor()->setFocus();
        editor()->viewport()->installEventFilter(&paints);
    }

    QTextEdit *editor() const { return root.composer()->field()->editor(); }

    //! Counts the paints of the field.
    struct PaintCounter : QObject
    {
        int count = 0;
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                ++count;
            return false;
        }
    } paints;

    PanelRootView root;
};

Panel &panel()
{
    static Panel *const made = new Panel;
    return *made;
}

void BM_RebuildRows(benchmark::State &state)
{
    Store &store = panel().store;
    // The rows derived whole.
    for (auto _ : state)
        benchmark::DoNotOptimize(
            derivePanelRows(Vesko::activeProject(store.library()), {}, std::nullopt));
    state.counters["rows"] = double(store.rows().size());
}

void BM_ComposerTypedCharacter(benchmark::State &state)
{
    Panel &p = panel();
    QTextEdit *editor = p.editor();
    int typed = 0;
    for (auto _ : state) {
        if (++typed % 120 == 0) {
            // A note's worth of text: start again, outside the measure.
            state.PauseTiming();
            p.root.composer()->setText(QString());
            QCoreApplication::processEvents();
            state.ResumeTiming();
        }
        const int before = p.paints.count;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QKeyEvent release(QEvent::KeyRelease, Qt::Key_A, Qt::NoModifier, QStringLiteral("a"));
        QApplication::sendEvent(editor, &press);
        QApplication::sendEvent(editor, &release);
        // Until the field has painted the character, with what the key scheduled.
        while (p.paints.count == before)
            QCoreApplication::processEvents();
        QCoreApplication::processEvents();
    }
}

void BM_ComposerTypedCharacterSpellChecked(benchmark::State &state)
{
    // The same with the English dictionary marking misspelled words as typed.
    if (!SpellChecking::shared().checker()
        && !SpellChecking::shared().loadNow(QStringLiteral("en_US"))) {
        state.SkipWithError("no English dictionary");
        return;
    }
    panel().root.composer()->setText(QString());
    QCoreApplication::processEvents();
    BM_ComposerTypedCharacter(state);
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication app(argc, argv);
    panel();
    benchmark::RegisterBenchmark("BM_RebuildRows", BM_RebuildRows)->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("BM_ComposerTypedCharacter", BM_ComposerTypedCharacter)
        ->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark(
        "BM_ComposerTypedCharacterSpellChecked", BM_ComposerTypedCharacterSpellChecked)
        ->Unit(benchmark::kMillisecond);
    benchmark::Initialize(&argc, argv);
    Bench::RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    std::printf("\none typed character in the composer: %.3f ms, %.3f of one rebuild of the rows "
                "(%.3f ms)\n",
        reporter.times["BM_ComposerTypedCharacter"],
        reporter.ratio("BM_ComposerTypedCharacter", "BM_RebuildRows"),
        reporter.times["BM_RebuildRows"]);
    std::printf("with spell checking: %.3f ms, %.3f of one rebuild of the rows\n",
        reporter.times["BM_ComposerTypedCharacterSpellChecked"],
        reporter.ratio("BM_ComposerTypedCharacterSpellChecked", "BM_RebuildRows"));
    benchmark::Shutdown();
    return 0;
}
