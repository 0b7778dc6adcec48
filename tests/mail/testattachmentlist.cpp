#include <QTest>

#include "mail/attachmentlist.h"
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
        QTest::newRow("none") << "" << 0 << QStringList();
        QTest::newRow("one without a mark") << "/p/1.jpg" << 1 << QStringList{"/p/1.jpg"};
        QTest::newRow("one with its mark") << "/p/1.jpg|" << 1 << QStringList{"/p/1.jpg"};
        QTest::newRow("three pages") << "/p/1.jpg|/p/2.jpg|/p/3.jpg|" << 3
                                     << QStringList{"/p/1.jpg", "/p/2.jpg", "/p/3.jpg"};
        // Marks count even where no path stands between them; the empty pieces are skipped.
        QTest::newRow("empty pieces") << "|/p/1.jpg||" << 3 << QStringList{"/p/1.jpg"};
        // A text after the last mark is not a path of the list.
        QTest::newRow("tail without a mark") << "/p/1.jpg|/p/2.jpg" << 1 << QStringList{"/p/1.jpg"};
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
        QTest::newRow("no attachments: the body as it is") << 0 << "Hello";
        QTest::newRow("one page") << 1 << " \r\nHello";
        QTest::newRow("a document of three pages") << 3 << "   \r\nHello";
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
