#include <QLineEdit>
#include <QListWidget>

#include "exchange/exportdialog.h"
#include "exchange/filetypesdialog.h"
#include "exchange/importdialog.h"
#include "exchangefixture.h"
#include "tests/support/shots.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::ExchangeFixture;
using test::TestFileSystem;

namespace {

// Pictures of a dialog idle and at its third copy, then it runs.
template <class Dialog> void shootAndRun(Dialog& dialog, TestFileSystem& fs, const QString& name)
{
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    test::saveShot(&dialog, name);
    fs.afterCopy = [&](int n) {
        if (n == 3)
            test::saveShot(&dialog, name + "-working");
    };
    dialog.cmdOK();
}

} // namespace

// Pictures of the exchange dialogs, idle and at work.
class Shots : public QObject
{
    Q_OBJECT
private slots:
    void exportDialog()
    {
        ExchangeFixture f;
        f.filledCabinet("Home Papers", 3, 2);
        f.store->cabinet("Shoe Box 1998-2004");
        TestFileSystem fs;
        ExportDialog dialog(f.context(), nullptr, &fs);
        dialog.findChild<QLineEdit*>("txtOutputPath")->setText(f.outsidePath("backup"));
        f.prompter.expect("'" + f.outsidePath("backup") +
                              "' does not exist.  Do you want to create it?",
                          Prompter::Answer::Yes);
        f.prompter.expect("Export complete. 6 pages copied.");
        shootAndRun(dialog, fs, "dialog-export");
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
    }

    void importDialog()
    {
        ExchangeFixture f;
        f.store->cabinet("Home Papers");
        const QString ex = f.outsidePath("exchange/Home Papers");
        ExchangeFixture::writeBytes(ex + "/QMR.txt", "");
        for (int p = 1; p <= 6; ++p)
            ExchangeFixture::writeImage(ex + QString("/Bank/Checking/March/Page %1.jpg").arg(p));
        TestFileSystem fs;
        ImportDialog dialog(f.context(), nullptr, &fs);
        dialog.findChild<QLineEdit*>("txtImportPath")->setText(ex);
        f.prompter.expect("6 files imported.\r\n0 shortcuts created.");
        shootAndRun(dialog, fs, "dialog-import");
        QVERIFY2(f.prompter.verify(), qPrintable(f.prompter.report()));
    }

    void fileTypesDialog()
    {
        FileTypesDialog dialog({"JPG", "PDF", "TXT", "README", "TIF"});
        dialog.list()->item(0)->setSelected(true);
        dialog.list()->item(1)->setSelected(true);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        test::saveShot(&dialog, "dialog-import-file-types");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
