#include "dialogs/passworddialog.h"
#include "navharness.h"
#include "tests/support/testrunner.h"

#include <QDir>
#include <QImage>
#include <QMenu>
#include <QTest>

using namespace qmr;

// Renders windows on a filled store to PNG files, so that anyone can look at them without a
// display. The files go to $QMR_SHOTS_DIR (default: shots/ in the working directory).
class Shots : public QObject
{
    Q_OBJECT
private:
    QString m_dir;

    void save(QWidget* w, const QString& name)
    {
        QCoreApplication::processEvents();
        const QImage image = w->grab().toImage();
        QVERIFY(!image.isNull());
        QVERIFY(image.width() > 50 && image.height() > 50);
        // A picture of one colour would mean nothing was drawn.
        QVERIFY(image.pixel(0, 0) != image.pixel(image.width() / 2, image.height() / 2) ||
                image.pixel(image.width() / 3, image.height() / 3) !=
                    image.pixel(image.width() / 2, image.height() / 2));
        const QString path = m_dir + "/" + name + ".png";
        QVERIFY2(image.save(path), qPrintable(path));
    }

private slots:
    void initTestCase()
    {
        m_dir = qEnvironmentVariable("QMR_SHOTS_DIR", QDir::currentPath() + "/shots");
        QVERIFY(QDir().mkpath(m_dir));
    }

    void mainWindow()
    {
        test::NavHarness h;
        test::FixtureStore store(h.home.home());
        store.fillSample();
        const qint32 cab = store.cabinet("Shoe Box 1998-2004");
        for (const char* d : {"Receipts", "Warranties", "Medical", "Car", "School"}) {
            const qint32 drw = store.drawer(cab, d);
            for (int f = 1; f <= 3; ++f)
                store.folder(drw, QString("%1 folder %2").arg(d).arg(f));
        }
        h.load();
        h.window->resize(1000, 640);
        h.click("ROOT");
        save(h.window.get(), "navigator-root");
        h.click("CAB1");
        h.click("DRW1");
        save(h.window.get(), "navigator-drawer");
        h.click("FLD1");
        h.click("DOC1");
        save(h.window.get(), "navigator-document");
        h.tree()->expandAll();
        save(h.window.get(), "navigator-expanded");
        QMenu* bar = h.window->menus().menu("mnuPopupDocument");
        bar->popup(h.window->mapToGlobal(QPoint(200, 30)));
        QVERIFY(QTest::qWaitForWindowExposed(bar));
        save(bar, "menu-document");
        bar->close();
    }

    void passwordDialog()
    {
        PasswordDialog dialog;
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        save(&dialog, "dialog-password");
    }
};

QMR_TEST(Shots)
#include "testshots.moc"
