#include <QTest>

#include "dialogharness.h"
#include "dialogs/pagepropertiesdialog.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::DialogHarness;

class TestPageProperties : public QObject
{
    Q_OBJECT
private slots:
    void onePage()
    {
        DialogHarness h;
        h.db().execute("UPDATE Page SET FileSize = 1234567 WHERE PageId = 1");
        PagePropertiesDialog dialog(h.db());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Page Properties"));
        dialog.populate(1);
        QCOMPARE(dialog.text("lblPageIdData"), QStringLiteral("1"));
        QCOMPARE(dialog.text("lblFileSizeData"), QStringLiteral("1,234,567 bytes"));
        QCOMPARE(dialog.text("lblScanDateData"), QStringLiteral("03/14/2026"));
        QCOMPARE(dialog.text("lblFileTypeData"), QStringLiteral("JPG"));
        QCOMPARE(dialog.text("lblShortcutData"), QStringLiteral("(not a shortcut)"));

        h.db().execute("UPDATE Page SET FileSize = NULL, ScanDate = NULL, ShortcutYN = 'Y', "
                       "Filename = '/elsewhere/scan.jpg' WHERE PageId = 2");
        PagePropertiesDialog shortcut(h.db());
        shortcut.populate(2);
        QCOMPARE(shortcut.text("lblFileSizeData"), QStringLiteral("Not known"));
        QCOMPARE(shortcut.text("lblScanDateData"), QStringLiteral("Not known"));
        QCOMPARE(shortcut.text("lblShortcutData"), QStringLiteral("/elsewhere/scan.jpg"));
    }

    void severalPages_data()
    {
        QTest::addColumn<QVector<qint32>>("ids");
        QTest::addColumn<QStringList>("updates");
        QTest::addColumn<QString>("count");
        QTest::addColumn<QString>("date");
        QTest::addColumn<QString>("size");
        const auto row = [](const char* tag, const QVector<qint32>& ids, const char* update,
                            const char* count, const char* date, const char* size) {
            QTest::newRow(tag) << ids << (*update ? QStringList{update} : QStringList())
                               << QString(count) << QString(date) << QString(size);
        };
        row("one", {1}, "", "1 pages", "03/14/2026", "100 bytes");
        row("same date, same time", {1, 2, 3}, "", "3 pages", "03/14/2026", "300 bytes");
        row("same day, other time", {1, 2},
            "UPDATE Page SET ScanDate = '2026-03-14 10:00:00' WHERE PageId = 2", "2 pages",
            "Various", "200 bytes");
        row("null size among others", {1, 2, 3}, "UPDATE Page SET FileSize = NULL WHERE PageId = 2",
            "3 pages", "03/14/2026", "200 bytes");
        row("nothing known", {2},
            "UPDATE Page SET FileSize = NULL, ScanDate = NULL WHERE PageId = 2", "1 pages",
            "Not known", "Not known");
        row("pages that are gone do not count", {999, 3}, "", "1 pages", "03/14/2026", "100 bytes");
    }
    void severalPages()
    {
        QFETCH(QVector<qint32>, ids);
        QFETCH(QStringList, updates);
        QFETCH(QString, count);
        QFETCH(QString, date);
        QFETCH(QString, size);
        DialogHarness h;
        h.db().execute("UPDATE Page SET FileSize = 100");
        for (const QString& sql : updates)
            h.db().execute(sql);
        PagePropertiesDialog dialog(h.db());
        dialog.populateMultiple(ids);
        QCOMPARE(dialog.text("lblPageId"), QStringLiteral("Pages:"));
        QCOMPARE(dialog.text("lblPageIdData"), count);
        QCOMPARE(dialog.text("lblScanDateData"), date);
        QCOMPARE(dialog.text("lblFileSizeData"), size);
        QCOMPARE(dialog.text("lblFileTypeData"), QStringLiteral("Not konwn"));
        QCOMPARE(dialog.text("lblShortcutData"), QStringLiteral("Not known"));
    }
};

QMR_TEST(TestPageProperties)
#include "testpageproperties.moc"
