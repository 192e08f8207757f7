// SPDX-License-Identifier: GPL-3.0-or-later
//
// attachment_gallery OUT.png [dark]: the attachment views on a panel-like
// surface, collapsed and expanded tiles with real thumbnails and the pending
// strip, saved as a PNG for the documentation.

#include "SilentAttachmentActions.h"
#include "StoreFixture.h"
#include "TestEnvironment.h"

#include "attachments/AttachmentListView.h"
#include "attachments/PendingAttachmentStrip.h"
#include "library/LibraryFile.h"
#include "shell/Theme.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QLinearGradient>
#include <QPainter>
#include <QVBoxLayout>

using namespace Vesko;

namespace {

class Surface : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Theme::currentColors().panelSurface);
    }
};

QString sample(const QString &folder, const QString &name, const QImage &image)
{
    const QString stored
        = QUuid::createUuid().toString(QUuid::WithoutBraces).toUpper() + u'/' + name;
    QDir().mkpath(QFileInfo(folder + u'/' + stored).absolutePath());
    image.save(folder + u'/' + stored);
    return stored;
}

QImage landscape()
{
    QImage image(640, 420, QImage::Format_RGB32);
    QPainter painter(&image);
    QLinearGradient sky(0, 0, 0, 420);
    sky.setColorAt(0, QColor(70, 130, 210));
    sky.setColorAt(1, QColor(250, 200, 150));
    painter.fillRect(image.rect(), sky);
    painter.setBrush(QColor(255, 230, 120));
    painter.setPen(Qt::NoPen);
    painter.drawEllipse(QPoint(460, 150), 60, 60);
    painter.setBrush(QColor(40, 90, 60));
    painter.drawPolygon(
        QPolygon({{0, 420}, {0, 300}, {180, 200}, {360, 310}, {520, 240}, {640, 300}, {640, 420}}));
    return image;
}

QImage chart()
{
    QImage image(400, 400, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    const QColor colours[]
        = {QColor(230, 90, 70), QColor(80, 160, 230), QColor(120, 200, 110), QColor(240, 180, 60)};
    for (int i = 0; i < 4; ++i)
        painter.fillRect(40 + i * 85, 360 - (i + 2) * 60, 60, (i + 2) * 60, colours[i]);
    return image;
}

} // namespace

int main(int argc, char *argv[])
{
    Test::IsolatedEnvironment environment;
    QApplication app(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() < 2)
        return 2;
    Theme::applyAppearance(
        arguments.value(2) == u"dark" ? AppAppearance::Dark : AppAppearance::Light);

    Test::StoreFixture fixture;
    Test::SilentAttachmentActions attachmentActions(
        fixture.make(makeDefaultLibrary()), fixture.attachments());
    AttachmentActions &actions = attachmentActions.actions;
    ThumbnailCache &cache = attachmentActions.thumbnails;

    const QString folder = attachmentsFolder(libraryURL());
    QList<NoteAttachment> attachments;
    auto add
        = [&](const QString &stored, NoteAttachment::Kind kind, const QString &type, qint64 bytes) {
              NoteAttachment attachment;
              attachment.id = QUuid::createUuid();
              attachment.storedFileName = stored;
              attachment.fileName = QFileInfo(stored).fileName();
              attachment.kind = kind;
              attachment.contentTypeIdentifier = type;
              attachment.byteCount = bytes;
              attachments.append(attachment);
          };
    add(sample(folder, QStringLiteral("Evening walk.jpg"), landscape()),
        NoteAttachment::Kind::Image, QStringLiteral("image/jpeg"), 2483112);
    add(sample(folder, QStringLiteral("Q3 figures.png"), chart()), NoteAttachment::Kind::Image,
        QStringLiteral("image/png"), 48211);
    add(QStringLiteral("X/Contract draft.pdf"), NoteAttachment::Kind::File,
        QStringLiteral("application/pdf"), 182733);
    add(QStringLiteral("Y/notes.txt"), NoteAttachment::Kind::File, QStringLiteral("text/plain"),
        912);

    Surface surface;
    surface.setFixedWidth(340);
    auto *layout = new QVBoxLayout(&surface);
    layout->setContentsMargins(14, 14, 14, 14);
    layout->setSpacing(10);
    auto caption = [&](const QString &text) {
        auto *label = new QLabel(text, &surface);
        label->setFont(Theme::captionFont());
        layout->addWidget(label);
    };
    caption(QStringLiteral("Collapsed note"));
    auto *collapsed = new AttachmentListView(actions, cache, &surface);
    collapsed->setAttachments(attachments, QUuid::createUuid());
    layout->addWidget(collapsed);
    caption(QStringLiteral("Expanded note"));
    auto *expanded = new AttachmentListView(actions, cache, &surface);
    expanded->setExpanded(true);
    expanded->setAttachments(attachments.mid(0, 3), QUuid::createUuid());
    layout->addWidget(expanded);
    caption(QStringLiteral("Waiting in the composer"));
    auto *strip = new PendingAttachmentStrip(&surface);
    strip->setUrls({QUrl::fromLocalFile(QStringLiteral("/home/me/Pictures/Whiteboard.png")),
        QUrl::fromLocalFile(QStringLiteral("/home/me/Documents/Minutes 12 May.odt")),
        QUrl::fromLocalFile(QStringLiteral("/home/me/Downloads/invoice-2291.pdf"))});
    layout->addWidget(strip);
    surface.show();

    QEventLoop loop;
    int ready = 0;
    QObject::connect(&cache, &ThumbnailCache::thumbnailReady, &loop, [&] {
        if (++ready == 2)
            loop.quit();
    });
    QTimer::singleShot(10000, &loop, &QEventLoop::quit);
    loop.exec();
    QCoreApplication::processEvents();
    surface.adjustSize();
    return surface.grab().save(arguments.at(1)) ? 0 : 1;
}
