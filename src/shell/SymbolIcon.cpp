// SPDX-License-Identifier: GPL-3.0-or-later

#include "shell/SymbolIcon.h"

#include <QDir>
#include <QFile>
#include <QHash>
#include <QIconEngine>
#include <QPainter>
#include <QPixmap>
#include <QSvgRenderer>

#include <memory>

namespace Vesko {

namespace {

//! The freedesktop names of the symbols that have one with the same meaning.
const QHash<QString, QString> &themeNames()
{
    static const QHash<QString, QString> names = {
        {QStringLiteral("checkmark"), QStringLiteral("object-select-symbolic")},
        {QStringLiteral("ellipsis"), QStringLiteral("view-more-horizontal-symbolic")},
        {QStringLiteral("magnifyingglass"), QStringLiteral("edit-find-symbolic")},
        {QStringLiteral("xmark.circle.fill"), QStringLiteral("edit-clear-symbolic")},
        {QStringLiteral("exclamationmark.triangle"), QStringLiteral("dialog-warning-symbolic")},
        {QStringLiteral("exclamationmark.triangle.fill"),
            QStringLiteral("dialog-warning-symbolic")},
        {QStringLiteral("lock"), QStringLiteral("changes-prevent-symbolic")},
        {QStringLiteral("list.number"), QStringLiteral("view-list-ordered-symbolic")},
        {QStringLiteral("doc.on.doc"), QStringLiteral("edit-copy-symbolic")},
        {QStringLiteral("plus"), QStringLiteral("list-add-symbolic")},
        {QStringLiteral("pencil"), QStringLiteral("document-edit-symbolic")},
        {QStringLiteral("eye.fill"), QStringLiteral("view-reveal-symbolic")},
        {QStringLiteral("eye.slash"), QStringLiteral("view-conceal-symbolic")},
        {QStringLiteral("square.and.arrow.up"), QStringLiteral("document-export-symbolic")},
        {QStringLiteral("paperclip"), QStringLiteral("mail-attachment-symbolic")},
        {QStringLiteral("clipboard"), QStringLiteral("edit-paste-symbolic")},
        {QStringLiteral("gearshape"), QStringLiteral("preferences-system-symbolic")},
        {QStringLiteral("internaldrive"), QStringLiteral("drive-harddisk-symbolic")},
        {QStringLiteral("info.circle"), QStringLiteral("help-about-symbolic")},
        {QStringLiteral("keyboard"), QStringLiteral("input-keyboard-symbolic")},
        {QStringLiteral("folder"), QStringLiteral("folder-symbolic")},
        {QStringLiteral("folder.badge.plus"), QStringLiteral("folder-new-symbolic")},
        {QStringLiteral("arrow.up"), QStringLiteral("go-up-symbolic")},
        {QStringLiteral("arrow.down"), QStringLiteral("go-down-symbolic")},
        {QStringLiteral("arrow.up.to.line"), QStringLiteral("go-top-symbolic")},
        {QStringLiteral("arrow.down.to.line"), QStringLiteral("go-bottom-symbolic")},
        {QStringLiteral("arrow.uturn.backward"), QStringLiteral("edit-undo-symbolic")},
        {QStringLiteral("arrow.uturn.forward"), QStringLiteral("edit-redo-symbolic")},
        {QStringLiteral("uiwindow.split.2x1"), QStringLiteral("window-new-symbolic")},
        {QStringLiteral("trash"), QStringLiteral("user-trash-symbolic")},
        {QStringLiteral("photo"), QStringLiteral("image-x-generic-symbolic")},
        {QStringLiteral("doc"), QStringLiteral("text-x-generic-symbolic")},
    };
    return names;
}

//! Draws a source icon as a silhouette in one colour, at any size and scale.
class TintedIconEngine : public QIconEngine
{
public:
    //! The drawing of a symbol: the theme's icon, or an SVG file.
    struct Source
    {
        QIcon themed;
        std::shared_ptr<QSvgRenderer> drawing;
    };

    TintedIconEngine(Source source, const QColor &color, int size)
        : m_source(std::move(source))
        , m_color(color)
        , m_size(size)
    { }

    QIconEngine *clone() const override { return new TintedIconEngine(m_source, m_color, m_size); }
    QString key() const override { return QStringLiteral("VeskoSymbol"); }

    QSize actualSize(const QSize &size, QIcon::Mode, QIcon::State) override
    {
        // Square, within what was asked, and never larger than the size the
        // caller made the icon for: a view that asks for more gets it centred.
        const int side = std::min({size.width(), size.height(), m_size});
        return QSize(side, side);
    }

    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override
    {
        return {QSize(m_size, m_size)};
    }

    QPixmap pixmap(const QSize &size, QIcon::Mode mode, QIcon::State state) override
    {
        return scaledPixmap(size, mode, state, 1.0);
    }

    QPixmap scaledPixmap(const QSize &size, QIcon::Mode mode, QIcon::State, qreal scale) override
    {
        const QSize side = actualSize(size, mode, QIcon::Off);
        QPixmap pixmap(side * scale);
        pixmap.fill(Qt::transparent);
        if (side.isEmpty())
            return pixmap;
        {
            QPainter painter(&pixmap);
            painter.setRenderHint(QPainter::Antialiasing);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            const QRect target(QPoint(), pixmap.size());
            if (m_source.drawing)
                m_source.drawing->render(&painter, target);
            else
                m_source.themed.paint(&painter, target);
            painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
            QColor color = m_color;
            if (mode == QIcon::Disabled)
                color.setAlphaF(color.alphaF() * 0.4f);
            painter.fillRect(target, color);
        }
        pixmap.setDevicePixelRatio(scale);
        return pixmap;
    }

    void paint(QPainter *painter, const QRect &rect, QIcon::Mode mode, QIcon::State state) override
    {
        const qreal scale = painter->device() ? painter->device()->devicePixelRatioF() : 1.0;
        const QPixmap drawn = scaledPixmap(rect.size(), mode, state, scale);
        const QSize logical = drawn.deviceIndependentSize().toSize();
        QRect place(QPoint(), logical);
        place.moveCenter(rect.center());
        painter->drawPixmap(place, drawn);
    }

private:
    Source m_source;
    QColor m_color;
    int m_size;
};

//! The parsed drawing of a bundled symbol, read once per process.
std::shared_ptr<QSvgRenderer> bundledDrawing(const QString &symbol)
{
    static QHash<QString, std::shared_ptr<QSvgRenderer>> drawings;
    if (const auto found = drawings.constFind(symbol); found != drawings.constEnd())
        return *found;
    std::shared_ptr<QSvgRenderer> drawing;
    const QString path = SymbolIcons::bundledPath(symbol);
    if (!path.isEmpty()) {
        drawing = std::make_shared<QSvgRenderer>(path);
        if (!drawing->isValid())
            drawing.reset();
    }
    drawings.insert(symbol, drawing);
    return drawing;
}

} // namespace

namespace SymbolIcons {

QStringList bundledSymbols()
{
    QStringList symbols;
    const QStringList files
        = QDir(QStringLiteral(":/icons")).entryList({QStringLiteral("*.svg")}, QDir::Files);
    for (const QString &file : files)
        symbols.append(file.chopped(4));
    return symbols;
}

QString bundledPath(const QString &symbol)
{
    const QString path = QStringLiteral(":/icons/%1.svg").arg(symbol);
    return QFile::exists(path) ? path : QString();
}

QString themeName(const QString &symbol)
{
    return themeNames().value(symbol);
}

} // namespace SymbolIcons

QIcon symbolIcon(const QString &symbol, const QColor &color, int size)
{
    TintedIconEngine::Source source;
    const QString name = SymbolIcons::themeName(symbol);
    if (!name.isEmpty() && QIcon::hasThemeIcon(name))
        source.themed = QIcon::fromTheme(name);
    if (source.themed.isNull()) {
        source.drawing = bundledDrawing(symbol);
        if (!source.drawing)
            return QIcon();
    }
    return QIcon(new TintedIconEngine(std::move(source), color, size));
}

} // namespace Vesko
