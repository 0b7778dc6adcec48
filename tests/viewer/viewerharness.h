#pragma once

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QImageWriter>
#include <QMouseEvent>
#include <QPainter>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <vector>

#include "filing/thumbnailmaker.h"
#include "tests/support/commandharness.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "viewer/pagecanvas.h"
#include "viewer/pageviewwindow.h"

namespace qmr::test {

// A store for the viewer, with real page files:
//   Cabinet "Home" (storage by the program): document "Numbers" with pages numbered 4, 5, 5
//   (ids numbered4, twinA, twinB), document "Single" with one page (single), document
//   "Empty" with none, all in folder "Letters" (no address).
//   Cabinet "Named" (storage 1 in `outside`, a directory beyond the home): folder "Mailed"
//   (address "folder@example.org"), document "Named" with one page whose file is
//   outside/first.jpg (named).
struct ViewerHarness : CommandHarness<>
{
    QTemporaryDir outside;
    qint32 homeCabinet = -1, homeDrawer = -1, letters = -1;
    qint32 numbers = -1, single = -1, empty = -1;
    qint32 numbered4 = -1, twinA = -1, twinB = -1, singlePage = -1;
    qint32 namedCabinet = -1, mailed = -1, namedDocument = -1, named = -1;
    std::vector<std::unique_ptr<PageViewWindow>> windows; // gone before the session

    ViewerHarness()
    {
        {
            FixtureStore store(home.home());
            homeCabinet = store.cabinet("Home");
            homeDrawer = store.drawer(homeCabinet, "Papers");
            letters = store.folder(homeDrawer, "Letters");
            numbers = store.document(letters, "Numbers");
            single = store.document(letters, "Single");
            empty = store.document(letters, "Empty");
            numbered4 = store.page(numbers, 4, QSize(400, 500));
            twinA = store.page(numbers, 5, QSize(400, 500));
            twinB = store.page(numbers, 5, QSize(400, 500));
            singlePage = store.page(single, 1, QSize(850, 1100));

            namedCabinet = store.cabinet("Named");
            store.db().execute("UPDATE Cabinet SET Storage = 1, StoragePath = ? "
                               "WHERE CabinetId = ?",
                               {outside.path(), namedCabinet});
            const qint32 drawer = store.drawer(namedCabinet, "Post");
            mailed = store.folder(drawer, "Mailed", "folder@example.org");
            namedDocument = store.document(mailed, "Named");
            named = store.pageRow(namedDocument, 1);
            const QString file = outsideFile("first.jpg");
            writePicture(file, QSize(600, 400), Qt::darkGreen);
            store.db().execute("UPDATE Page SET Filename = ?, FileSize = ? WHERE PageId = ?",
                               {file, QFile(file).size(), named});
        }
        openSession();
        view->read();
    }

    QString outsideFile(const QString& name) const { return outside.filePath(name); }
    PageRow row(qint32 pageId) const { return session->pages().page(pageId).value_or(PageRow()); }

    // A viewer of the harness's own, kept after closing.
    PageViewWindow& newViewer()
    {
        windows.push_back(std::make_unique<PageViewWindow>(context()));
        windows.back()->setAttribute(Qt::WA_DeleteOnClose, false);
        return *windows.back();
    }

    // A viewer on a page, kept after closing, with the image following the window once the
    // events of showing are done.
    std::unique_ptr<PageViewWindow> openViewer(qint32 pageId)
    {
        auto window = std::make_unique<PageViewWindow>(context());
        window->setAttribute(Qt::WA_DeleteOnClose, false);
        window->resize(900, 700);
        window->openPage(pageId);
        QTest::qWait(0);
        QCoreApplication::processEvents();
        return window;
    }

    // A band drawn on the image as a person draws it: pressed at `from`, moved with the left
    // button held through `moves`, and let go at the last point.
    static void band(PageCanvas* canvas, const QPoint& from, const QList<QPoint>& moves = {})
    {
        QWidget* view = canvas->viewport();
        const auto send = [view](QEvent::Type type, const QPoint& at, Qt::MouseButtons held) {
            QMouseEvent e(type, at, view->mapToGlobal(at),
                          type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, held,
                          Qt::NoModifier);
            QApplication::sendEvent(view, &e);
        };
        send(QEvent::MouseButtonPress, from, Qt::LeftButton);
        for (const QPoint& to : moves)
            send(QEvent::MouseMove, to, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, moves.isEmpty() ? from : moves.last(), Qt::NoButton);
    }

    // A picture with a white margin of a tenth, a frame and a diagonal inside it, so that its
    // orientation shows.
    static QImage picture(const QSize& size, QColor colour)
    {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter p(&image);
        p.setPen(QPen(colour, 6));
        const QRect frame = image.rect().adjusted(size.width() / 10, size.height() / 10,
                                                  -size.width() / 10, -size.height() / 10);
        p.drawRect(frame);
        p.drawLine(frame.topLeft(), QPoint(frame.center().x(), frame.bottom()));
        return image;
    }
    static bool writePicture(const QString& path, const QSize& size, QColor colour)
    {
        return picture(size, colour).save(path, "JPG", 80);
    }
    // What the viewer's JPEG writer makes of an image at a quality factor of the settings.
    static QByteArray jpegBytes(const QImage& image, int factor)
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        QImageWriter writer(&buffer, "jpeg");
        writer.setQuality(qtJpegQuality(factor));
        writer.write(image);
        return bytes;
    }
    static QByteArray fileBytes(const QString& path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }
};

} // namespace qmr::test
