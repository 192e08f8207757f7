// SPDX-License-Identifier: GPL-3.0-or-later
//
// The symbol icons: every symbol the panel, the toasts, the note window and
// Settings show has a drawing of the program's own, drawn in the colour
// asked for (fainter while disabled); the desktop's icon theme wins where it
// has the symbol.

#include "WidgetTestMain.h"

#include "panel/window/Shortcut.h"
#include "shell/SymbolIcon.h"

#include <QDir>
#include <QImage>
#include <QSvgRenderer>
#include <QTemporaryDir>
#include <QTest>

using namespace Vesko;

namespace {

//! What an icon paints at \a size: how much of its square it covers (0 to
//! 1), and whether every pixel it paints has the colour \a ink.
struct Ink
{
    double coverage = 0;
    bool allInk = true;
    double strongestAlpha = 0;
};

Ink inkOf(const QIcon &icon, int size, const QColor &ink, QIcon::Mode mode = QIcon::Normal)
{
    const QImage image
        = icon.pixmap(QSize(size, size), mode).toImage().convertToFormat(QImage::Format_ARGB32);
    Ink result;
    double covered = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QColor pixel = QColor::fromRgba(image.pixel(x, y));
            if (pixel.alpha() == 0)
                continue;
            covered += pixel.alphaF();
            result.strongestAlpha = std::max(result.strongestAlpha, double(pixel.alphaF()));
            // The faint rim of a stroke carries too little colour to compare.
            if (pixel.alphaF() >= 0.3f
                && (std::abs(pixel.red() - ink.red()) > 8
                    || std::abs(pixel.green() - ink.green()) > 8
                    || std::abs(pixel.blue() - ink.blue()) > 8))
                result.allInk = false;
        }
    }
    result.coverage = covered / double(image.width() * image.height());
    return result;
}

//! The symbols the program shows outside the shortcut table: the toasts, the
//! panel's header and composer, the switchers, the note window's bar, the
//! attachments and Settings.
const char *const shownSymbols[] = {
    // toasts
    "checkmark", "text.cursor", "exclamationmark.triangle", "lock", "list.number", "doc.on.doc",
    "plus", "pencil", "square.and.arrow.up", "paperclip", "clipboard",
    // panel
    "ellipsis", "magnifyingglass", "xmark.circle.fill", "keyboard",
    // note window
    "circle", "checkmark.circle.fill", "eye.fill", "eye.slash",
    // attachments
    "photo", "doc",
    // Settings
    "gearshape", "text.viewfinder", "internaldrive", "info.circle", "exclamationmark.triangle.fill",
    "person.slash"};

} // namespace

class SymbolIconsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void everyShownSymbolIsDrawn_data();
    void everyShownSymbolIsDrawn();
    void drawingsAreValid_data();
    void drawingsAreValid();
    void desktopThemeWins();
};

void SymbolIconsTest::init()
{
    // No desktop theme: the program's own drawings.
    QIcon::setThemeSearchPaths({});
    QIcon::setThemeName(QString());
}

void SymbolIconsTest::everyShownSymbolIsDrawn_data()
{
    QTest::addColumn<QString>("symbol");
    QTest::addColumn<QColor>("ink");

    QStringList symbols;
    for (const char *symbol : shownSymbols)
        symbols.append(QString::fromLatin1(symbol));
    for (Shortcut shortcut : Shortcuts::allCases()) {
        const QString symbol = Shortcuts::symbolName(shortcut);
        if (!symbol.isEmpty() && !symbols.contains(symbol))
            symbols.append(symbol);
    }
    // Dark ink for the light appearance, light ink for the dark one.
    for (const QString &symbol : std::as_const(symbols)) {
        QTest::addRow("%s on light", qPrintable(symbol)) << symbol << QColor(28, 28, 30);
        QTest::addRow("%s on dark", qPrintable(symbol)) << symbol << QColor(236, 236, 238);
    }
}

void SymbolIconsTest::everyShownSymbolIsDrawn()
{
    QFETCH(QString, symbol);
    QFETCH(QColor, ink);

    QVERIFY2(!SymbolIcons::bundledPath(symbol).isEmpty(), "no drawing of its own");
    const QIcon icon = symbolIcon(symbol, ink, 32);
    QVERIFY(!icon.isNull());
    for (const int size : {12, 16, 32}) {
        const Ink drawn = inkOf(icon, size, ink);
        // A line drawing: something, and far from a filled square.
        QVERIFY2(drawn.coverage > 0.05 && drawn.coverage < 0.7,
            qPrintable(QStringLiteral("%1 px covered %2").arg(size).arg(drawn.coverage)));
        QVERIFY2(drawn.allInk, qPrintable(QStringLiteral("%1 px off colour").arg(size)));
        QVERIFY(drawn.strongestAlpha > 0.6);
    }
    // Disabled, the same drawing, fainter.
    const Ink disabled = inkOf(icon, 16, ink, QIcon::Disabled);
    // Never larger than the size it was made for.
    QCOMPARE(symbolIcon(symbol, ink, 12).actualSize(QSize(48, 48)), QSize(12, 12));
    QVERIFY(disabled.allInk);
    QVERIFY(disabled.strongestAlpha > 0.2 && disabled.strongestAlpha < 0.6);
}

void SymbolIconsTest::drawingsAreValid_data()
{
    QTest::addColumn<QString>("symbol");
    const QStringList symbols = SymbolIcons::bundledSymbols();
    QVERIFY(!symbols.isEmpty());
    for (const QString &symbol : symbols)
        QTest::newRow(qPrintable(symbol)) << symbol;
}

void SymbolIconsTest::drawingsAreValid()
{
    QFETCH(QString, symbol);
    QSvgRenderer drawing(SymbolIcons::bundledPath(symbol));
    QVERIFY(drawing.isValid());
    // All of one grid, square.
    QCOMPARE(drawing.viewBox(), QRect(0, 0, 16, 16));
}

void SymbolIconsTest::desktopThemeWins()
{
    // A theme that has the copy icon (a filled square) and nothing else.
    QTemporaryDir folder;
    QVERIFY(folder.isValid());
    QDir theme(folder.path());
    QVERIFY(theme.mkpath(QStringLiteral("Plain/16x16/actions")));
    QFile index(folder.filePath(QStringLiteral("Plain/index.theme")));
    QVERIFY(index.open(QIODevice::WriteOnly));
    index.write("[Icon Theme]\nName=Plain\nDirectories=16x16/actions\n\n"
                "[16x16/actions]\nSize=16\nType=Fixed\n");
    index.close();
    QImage square(16, 16, QImage::Format_ARGB32);
    square.fill(QColor(46, 52, 54));
    QVERIFY(square.save(folder.filePath(QStringLiteral("Plain/16x16/actions/")
        + SymbolIcons::themeName(QStringLiteral("doc.on.doc")) + QStringLiteral(".png"))));
    QIcon::setThemeSearchPaths({folder.path()});
    QIcon::setThemeName(QStringLiteral("Plain"));

    const QColor ink(200, 30, 40);
    // The theme's square, in the colour asked for.
    const Ink copy = inkOf(symbolIcon(QStringLiteral("doc.on.doc"), ink, 16), 16, ink);
    QVERIFY2(copy.coverage > 0.99, qPrintable(QString::number(copy.coverage)));
    QVERIFY(copy.allInk);
    // A symbol the theme lacks: the program's own drawing.
    const Ink clip = inkOf(symbolIcon(QStringLiteral("paperclip"), ink, 16), 16, ink);
    QVERIFY(clip.coverage > 0.05 && clip.coverage < 0.7);
    QVERIFY(clip.allInk);
    // A symbol neither has: no icon.
    QVERIFY(symbolIcon(QStringLiteral("no.such.symbol"), ink, 16).isNull());
}

VESKO_WIDGET_TEST_MAIN(SymbolIconsTest)
#include "tst_symbolicons.moc"
