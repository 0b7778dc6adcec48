#include <QComboBox>
#include <QDir>
#include <QTemporaryDir>
#include <QTest>
#include <QTreeView>

#include "dialogs/pathselectdialog.h"
#include "tests/support/testhome.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

// The names the directory tree shows below the directory `path`, once it has read them.
QStringList shownBelow(QTreeView* view, const QString& path)
{
    QAbstractItemModel* model = view->model();
    // Walk down from the top through the shown names.
    QModelIndex at = model->index(0, 0);
    const QStringList parts = path.split(QLatin1Char('/'), Qt::SkipEmptyParts);
    for (const QString& part : parts) {
        QModelIndex next;
        for (int r = 0; r < model->rowCount(at); ++r)
            if (model->index(r, 0, at).data().toString() == part)
                next = model->index(r, 0, at);
        if (!next.isValid())
            return {};
        at = next;
    }
    QStringList names;
    for (int r = 0; r < model->rowCount(at); ++r)
        names << model->index(r, 0, at).data().toString();
    return names;
}

} // namespace

class TestPathSelect : public QObject
{
    Q_OBJECT
private slots:
    void leavesOutTheVirtualDirectories()
    {
        test::TestHome home;
        PathSelectDialog dialog(home.settings(), home.path());
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto* tree = dialog.findChild<QTreeView*>("dirBox");
        QTRY_VERIFY(shownBelow(tree, "/").contains("tmp"));
        const QStringList top = shownBelow(tree, "/");
        for (const char* hidden : {"proc", "sys", "dev", "run"})
            QVERIFY2(!top.contains(hidden), hidden);
        QVERIFY(top.contains("usr"));
        auto* drives = dialog.findChild<QComboBox*>("drvBox");
        for (int i = 0; i < drives->count(); ++i)
            for (const char* hidden : {"/proc", "/sys", "/dev", "/run"})
                QVERIFY2(!drives->itemText(i).startsWith(hidden), qPrintable(drives->itemText(i)));
    }

    void opensAtThePathOrHome_data()
    {
        QTest::addColumn<QString>("start"); // "HOME": the test's own directory
        QTest::addColumn<bool>("atStart");
        QTest::newRow("existing directory") << "HOME" << true;
        QTest::newRow("missing directory") << "/no/such/directory" << false;
        QTest::newRow("empty") << "" << false;
        QTest::newRow("virtual directory") << "/proc" << false;
    }
    void opensAtThePathOrHome()
    {
        QFETCH(QString, start);
        QFETCH(bool, atStart);
        test::TestHome home;
        QTemporaryDir place;
        const QString path = start == "HOME" ? place.path() : start;
        PathSelectDialog dialog(home.settings(), path);
        const QString expected = QDir::cleanPath(atStart ? path : QDir::homePath());
        QCOMPARE(dialog.path(), expected);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowExposed(&dialog));
        auto* tree = dialog.findChild<QTreeView*>("dirBox");
        // The tree shows the place selected, opened down to it.
        QTRY_VERIFY(tree->currentIndex().isValid());
        QModelIndex at = tree->currentIndex();
        QStringList parts;
        for (; at.isValid(); at = at.parent())
            parts.prepend(at.data().toString());
        QCOMPARE(QDir::cleanPath(parts.join('/')), expected);
        QVERIFY(tree->isExpanded(tree->currentIndex().parent()));
    }
};

QMR_TEST(TestPathSelect)
#include "testpathselect.moc"
