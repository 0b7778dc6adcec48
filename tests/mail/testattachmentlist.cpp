#include <QTest>

#include "mail/attachmentlist.h"
#include "mailharness.h"
#include "tests/support/testrunner.h"

using namespace qmr;

class TestAttachmentList : public QObject
{
    Q_OBJECT
private slots:
    void counting_data()
    {
        QTest::addColumn<QString>("attachments");
        QTest::addColumn<int>("count");
        QTest::addColumn<QStringList>("paths");
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

    void roomInTheBody_data()
    {
        QTest::addColumn<int>("count");
        QTest::addColumn<QString>("body");
        test::row("no attachments: the body as it is", 0, "Hello");
        test::row("one page", 1, " \r\nHello");
        test::row("a document of three pages", 3, "   \r\nHello");
    }
    void roomInTheBody()
    {
        QFETCH(int, count);
        QFETCH(QString, body);
        QCOMPARE(AttachmentList::bodyWithRoom("Hello", count), body);
    }
};

QMR_TEST(TestAttachmentList)
#include "testattachmentlist.moc"
