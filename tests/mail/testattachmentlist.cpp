#include <QTest>

#include "mail/attachmentlist.h"
#include "mailharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;

// The room made in the body for the attachments is checked where messages are really sent
// (TestMailDialogs::sendDialogAttachments, TestMailSender::send, TestPageNotice).
class TestAttachmentList : public QObject
{
    Q_OBJECT
private slots:
    void counting_data()
    {
        test::columns<QString, int, QStringList>({"attachments", "count", "paths"});
        const QStringList one = {"/p/1.jpg"};
        test::row("none", "", 0, QStringList());
        test::row("one without a mark", "/p/1.jpg", 1, one);
        test::row("one with its mark", "/p/1.jpg|", 1, one);
        test::row("three pages", "/p/1.jpg|/p/2.jpg|/p/3.jpg|", 3,
                  QStringList{"/p/1.jpg", "/p/2.jpg", "/p/3.jpg"});
        // Marks count even where no path stands between them; the empty pieces are skipped.
        test::row("empty pieces", "|/p/1.jpg||", 3, one);
        // A text after the last mark is not a path of the list.
        test::row("tail without a mark", "/p/1.jpg|/p/2.jpg", 1, one);
    }
    void counting()
    {
        QFETCH(QString, attachments);
        QFETCH(int, count);
        QFETCH(QStringList, paths);
        QCOMPARE(AttachmentList::count(attachments), count);
        QCOMPARE(AttachmentList::paths(attachments), paths);
    }
};

QMR_TEST(TestAttachmentList)
#include "testattachmentlist.moc"
