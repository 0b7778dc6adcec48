#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"
#include "text/unreadpages.h"

using namespace qmr;
using namespace qmr::test;

class TestUnreadPages : public QObject
{
    Q_OBJECT
private slots:
    void sweep_data()
    {
        columns<QString, QString, QList<int>>({"entry", "file", "read"});
        row("no entry", "", "same", QList<int>{1});
        row("read from this file", "read", "same", QList<int>{});
        row("read, the file changed since", "read", "changed", QList<int>{1});
        row("read, the file is gone", "read", "gone", QList<int>{1});
        row("unreadable, the file is the same", "unreadable", "same", QList<int>{});
        row("unreadable, the file changed since", "unreadable", "changed", QList<int>{1});
        row("a worker ended on it once", "ended", "same", QList<int>{1});
    }
    void sweep()
    {
        QFETCH(QString, entry);
        QFETCH(QString, file);
        QFETCH(QList<int>, read);
        QTemporaryDir dir;
        const QString path = dir.filePath("1.png");
        QFile page(path);
        QVERIFY(page.open(QIODevice::WriteOnly));
        page.write("picture");
        page.close();
        const TextIndex::Stamp stamp = TextIndex::Stamp::of(path);
        QHash<int, TextIndex::Entry> entries;
        if (entry == "read")
            entries.insert(1, {stamp, TextIndex::State::Read, 0});
        else if (entry == "unreadable")
            entries.insert(1, {stamp, TextIndex::State::Unreadable, 2});
        else if (entry == "ended")
            entries.insert(1, {stamp, TextIndex::State::Interrupted, 1});
        if (file == "changed") {
            QVERIFY(page.open(QIODevice::Append));
            page.write(" and more");
            page.close();
        } else if (file == "gone") {
            QVERIFY(QFile::remove(path));
        }
        const UnreadPages::Sweep sweep = UnreadPages::of({{1, path}}, entries);
        QList<int> ids;
        for (const TextReader::Page& p : sweep.toRead)
            ids << p.id;
        QCOMPARE(ids, read);
        QCOMPARE(sweep.gone, QList<int>{});
    }

    void entriesOfPagesThatAreGone()
    {
        QHash<int, TextIndex::Entry> entries;
        for (int id : {9, 2})
            entries.insert(id, {});
        const UnreadPages::Sweep sweep = UnreadPages::of({{5, "/nowhere/5.png"}}, entries);
        QCOMPARE(sweep.gone, (QList<int>{2, 9}));
        QCOMPARE(sweep.toRead.size(), 1);
    }
};

QMR_TEST(TestUnreadPages)
#include "testunreadpages.moc"
