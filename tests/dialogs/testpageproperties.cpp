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
    // One page shows its own facts; several show a count and what they share. Every page
    // starts at 100 bytes, scanned 03/14/2026, before the row's changes.
    void shows_data()
    {
        QTest::addColumn<bool>("several");
        QTest::addColumn<QVector<qint32>>("ids");
        QTest::addColumn<QString>("update");
        QTest::addColumn<QStringList>("expected"); // label=text
        const auto row = [](const char* tag, bool several, const QVector<qint32>& ids,
                            const char* update, const QStringList& expected) {
            QTest::newRow(tag) << several << ids << QString(update) << expected;
        };
        row("one page", false, {1}, "UPDATE Page SET FileSize = 1234567 WHERE PageId = 1",
            {"lblPageIdData=1", "lblFileSizeData=1,234,567 bytes", "lblScanDateData=03/14/2026",
             "lblFileTypeData=JPG", "lblShortcutData=(not a shortcut)"});
        row("shortcut, nothing known", false, {2},
            "UPDATE Page SET FileSize = NULL, ScanDate = NULL, ShortcutYN = 'Y', "
            "Filename = '/elsewhere/scan.jpg' WHERE PageId = 2",
            {"lblFileSizeData=Not known", "lblScanDateData=Not known",
             "lblShortcutData=/elsewhere/scan.jpg"});
        const QStringList shared{"lblPageId=Pages:", "lblFileTypeData=Not konwn",
                                 "lblShortcutData=Not known"};
        const auto several = [&](const char* tag, const QVector<qint32>& ids, const char* update,
                                 const QString& count, const QString& date, const QString& size) {
            row(tag, true, ids, update,
                shared + QStringList{"lblPageIdData=" + count, "lblScanDateData=" + date,
                                     "lblFileSizeData=" + size});
        };
        several("one", {1}, "", "1 pages", "03/14/2026", "100 bytes");
        several("same date, same time", {1, 2, 3}, "", "3 pages", "03/14/2026", "300 bytes");
        several("same day, other time", {1, 2},
                "UPDATE Page SET ScanDate = '2026-03-14 10:00:00' WHERE PageId = 2", "2 pages",
                "Various", "200 bytes");
        several("null size among others", {1, 2, 3},
                "UPDATE Page SET FileSize = NULL WHERE PageId = 2", "3 pages", "03/14/2026",
                "200 bytes");
        several("nothing known", {2},
                "UPDATE Page SET FileSize = NULL, ScanDate = NULL WHERE PageId = 2", "1 pages",
                "Not known", "Not known");
        several("pages that are gone do not count", {999, 3}, "", "1 pages", "03/14/2026",
                "100 bytes");
    }
    void shows()
    {
        QFETCH(bool, several);
        QFETCH(QVector<qint32>, ids);
        QFETCH(QString, update);
        QFETCH(QStringList, expected);
        DialogHarness h;
        h.db().execute("UPDATE Page SET FileSize = 100");
        if (!update.isEmpty())
            h.db().execute(update);
        PagePropertiesDialog dialog(h.db());
        QCOMPARE(dialog.windowTitle(), QStringLiteral("Page Properties"));
        if (several)
            dialog.populateMultiple(ids);
        else
            dialog.populate(ids.value(0));
        for (const QString& e : expected)
            QCOMPARE(dialog.text(e.section('=', 0, 0)), e.section('=', 1));
    }
};

QMR_TEST(TestPageProperties)
#include "testpageproperties.moc"
