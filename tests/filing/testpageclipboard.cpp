#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include "core/commandtarget.h"
#include "movefixture.h"
#include "filing/clipboardfiles.h"
#include "filing/pageclipboard.h"
#include "store/pagestore.h"
#include "tests/support/settargetview.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::MoveBench;

namespace {

// The sample store with a clipboard on it, whose page list and tree a test sets.
struct ClipBench : MoveBench
{
    explicit ClipBench(Progress* progress = nullptr)
        : MoveBench(progress), target(state.selection(), stub)
    {
        context->target = &target;
        clipboard = std::make_unique<PageClipboard>(*context);
        QGuiApplication::clipboard()->clear();
    }
    test::SetTargetView stub;
    CommandTarget target;
    std::unique_ptr<PageClipboard> clipboard;
    // Where pages stand: "document:number" each.
    QStringList places(std::initializer_list<qint32> ids) const
    {
        QStringList out;
        for (const qint32 id : ids)
            out << QString("%1:%2").arg(page(id).documentId).arg(page(id).pageNumber);
        return out;
    }
};

} // namespace

class TestPageClipboard : public QObject
{
    Q_OBJECT
private slots:
    void copiedFilesReadBack_data()
    {
        QTest::addColumn<QStringList>("files");
        QTest::newRow("one") << QStringList{"/home/ann/Pages/0000000/7.jpg"};
        QTest::newRow("hostile names")
            << QStringList{"/tmp/Bob's scan.jpg", "/tmp/the \"best\" 100%.bmp",
                           "/tmp/semi;colon #hash?.tif", "/tmp/ümlaut ß.pdf"};
    }
    void copiedFilesReadBack()
    {
        QFETCH(QStringList, files);
        std::unique_ptr<QMimeData> data(ClipboardFiles::mimeDataFor(files));
        QVERIFY(data->hasFormat(QStringLiteral("text/uri-list")));
        QCOMPARE(ClipboardFiles::filesOf(data.get()), files);
        // A file manager's paste reads the second format: "copy", then one address a line.
        const QList<QByteArray> lines =
            data->data(QStringLiteral("x-special/gnome-copied-files")).split('\n');
        QCOMPARE(lines.first(), QByteArray("copy"));
        QCOMPARE(lines.size(), files.size() + 1);
        for (int i = 0; i < files.size(); ++i)
            QCOMPARE(QUrl::fromEncoded(lines.at(i + 1)).toLocalFile(), files.at(i));
        // Data with only that format reads the same.
        QMimeData copiedOnly;
        copiedOnly.setData(QStringLiteral("x-special/gnome-copied-files"),
                           data->data(QStringLiteral("x-special/gnome-copied-files")));
        QCOMPARE(ClipboardFiles::filesOf(&copiedOnly), files);
    }

    void addressesThatAreNoLocalFilesAreLeftOut()
    {
        QMimeData data;
        data.setUrls({QUrl(QStringLiteral("https://example.org/a.jpg")),
                      QUrl::fromLocalFile(QStringLiteral("/tmp/b.jpg"))});
        QCOMPARE(ClipboardFiles::filesOf(&data), QStringList{"/tmp/b.jpg"});
        QMimeData text;
        text.setText(QStringLiteral("/tmp/c.jpg"));
        QVERIFY(ClipboardFiles::filesOf(&text).isEmpty());
    }

    void copyPutsThePageFilesOnTheClipboard()
    {
        ClipBench b;
        const QString outside = b.write(QStringLiteral("O'Neil's 50%.pdf"), "pdf");
        b.files->begin();
        const qint32 shortcut = b.files->addPageFromFile(outside, 1);
        b.stub.pages = {2, shortcut, 1};
        b.clipboard->copySelectedPages();
        const QMimeData* data = QGuiApplication::clipboard()->mimeData();
        QVERIFY(data && data->hasFormat("text/uri-list"));
        QVERIFY(data->hasFormat("x-special/gnome-copied-files"));
        // In the list's order; a shortcut gives its own file.
        QCOMPARE(ClipboardFiles::getClipboardFiles(),
                 (QStringList{b.pagePath(2), outside, b.pagePath(1)}));
        QVERIFY(b.clipboard->canPaste());
    }

    void cutThenCopyForgetsTheCut()
    {
        ClipBench b;
        b.stub.pages = {1};
        b.clipboard->cut();
        QCOMPARE(b.state.clipPages().ids, QVector<qint32>{1});
        b.stub.pages = {2};
        b.clipboard->copySelectedPages();
        QVERIFY(b.state.clipPages().isEmpty());
        // The paste takes the copied file; what was cut stays where it is.
        b.stub.tree = NodeKey::parse("DOC3");
        b.clipboard->pasteIntoDocument();
        QCOMPARE(b.places({1, 2}), (QStringList{"1:1", "1:2"}));
        const QVector<PageRow> rows = b.session->pages().pages(3);
        QCOMPARE(rows.size(), 2);
        QCOMPARE(rows.last().pageNumber, 2);
        QVERIFY(QFile::exists(b.pagePath(rows.last().id)));
    }

    void cutWinsOverFilesOnTheClipboard()
    {
        ClipBench b;
        ClipboardFiles::setClipboardFiles({b.image(QStringLiteral("outside.jpg"))});
        b.stub.pages = {2, 1};
        b.clipboard->cut();
        // Cut pages stay in their document until the paste.
        QCOMPARE(b.places({1, 2}), (QStringList{"1:1", "1:2"}));
        b.stub.tree = NodeKey::parse("DOC3");
        b.clipboard->pasteIntoDocument();
        // Both moved, keeping their numbers: document 3 has two pages numbered 1 now.
        QCOMPARE(b.places({1, 2, 3}), (QStringList{"3:1", "3:2", "3:1"}));
        QCOMPARE(b.session->pages().count(3), 3);
        QCOMPARE(b.notices.pages, (QVector<qint32>{2, 1}));
        QCOMPARE(b.navigator.calls, QStringList{"SHOWDOC3"});
        QVERIFY(b.state.clipPages().isEmpty());
        // The next paste takes the files.
        b.clipboard->pasteIntoDocument();
        QCOMPARE(b.session->pages().count(3), 4);
    }

    void pasteWithNothingDoesNothing_data()
    {
        QTest::addColumn<QString>("tree");
        QTest::addColumn<bool>("cut");
        QTest::newRow("nothing on either clipboard") << "DOC3" << false;
        QTest::newRow("a folder selected") << "FLD1" << true;
        QTest::newRow("a found document selected") << "FDC3" << true;
    }
    void pasteWithNothingDoesNothing()
    {
        QFETCH(QString, tree);
        QFETCH(bool, cut);
        test::CancellingProgress progress(1000);
        ClipBench b(&progress);
        if (cut) {
            b.stub.pages = {1};
            b.clipboard->cut();
        }
        QCOMPARE(b.clipboard->canPaste(), cut);
        b.stub.tree = NodeKey::parse(tree);
        b.clipboard->pasteIntoDocument();
        QVERIFY(progress.titles.isEmpty());
        QVERIFY(b.navigator.calls.isEmpty());
        QVERIFY(b.prompter.seen().isEmpty());
        QCOMPARE(b.page(1).documentId, 1);
    }
};

QMR_TEST(TestPageClipboard)
#include "testpageclipboard.moc"
