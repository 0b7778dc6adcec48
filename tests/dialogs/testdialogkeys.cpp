#include <QApplication>
#include <QKeySequence>
#include <QLabel>
#include <QPushButton>
#include <QSet>
#include <QTest>

#include "dialogharness.h"
#include "dialogs/pagenumberdialog.h"
#include "dialogs/passworddialog.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using test::child;
using test::DialogHarness;

class TestDialogKeys : public QObject
{
    Q_OBJECT
private slots:
    // Every dialog's Cancel reads alike, and every label of a field the user can reach has
    // its own access key. Item dialogs open in the name, so what is typed at once lands there.
    void keysAndCancel_data()
    {
        QTest::addColumn<int>("level"); // -1: password, -2: page number
        QTest::addColumn<bool>("edit");
        QTest::addColumn<bool>("collectOnly");
        for (int level = 0; level < 4; ++level) {
            const QString word = QLatin1String(levelInfo(Level(level)).word);
            QTest::newRow(qPrintable(word + " add")) << level << false << false;
            QTest::newRow(qPrintable(word + " properties")) << level << true << false;
        }
        QTest::newRow("new document") << 3 << false << true;
        QTest::newRow("password") << -1 << false << false;
        QTest::newRow("page number") << -2 << false << false;
    }
    void keysAndCancel()
    {
        QFETCH(int, level);
        QFETCH(bool, edit);
        QFETCH(bool, collectOnly);
        DialogHarness h;
        std::unique_ptr<QDialog> dialog;
        if (level == -1)
            dialog = std::make_unique<PasswordDialog>();
        else if (level == -2)
            dialog = std::make_unique<PageNumberDialog>(3);
        else {
            auto item =
                std::make_unique<ItemDialog>(Level(level), h.context(), nullptr, collectOnly);
            if (edit)
                QVERIFY(item->setEdit(1));
            else
                item->setAdd(1);
            item->show();
            QVERIFY(QTest::qWaitForWindowActive(item.get()));
            QCOMPARE(QApplication::focusWidget(), child<QWidget>(item.get(), "txtName"));
            child<QLineEdit>(item.get(), "txtName")->clear();
            QTest::keyClicks(QApplication::focusWidget(), "Typed");
            QCOMPARE(child<QLineEdit>(item.get(), "txtName")->text(), QStringLiteral("Typed"));
            dialog = std::move(item);
        }
        auto* cancel = child<QPushButton>(dialog.get(), "cmdCancel");
        QVERIFY(cancel);
        QCOMPARE(cancel->text(), QStringLiteral("Cancel"));

        QSet<int> keys;
        for (QLabel* label : dialog->findChildren<QLabel*>()) {
            if (!label->buddy() || !label->isVisibleTo(dialog.get()))
                continue;
            const QKeySequence key = QKeySequence::mnemonic(label->text());
            QVERIFY2(!key.isEmpty(), qPrintable(label->objectName() + " has no access key"));
            QVERIFY2(!keys.contains(key[0].toCombined()),
                     qPrintable(label->objectName() + " repeats a key"));
            keys.insert(key[0].toCombined());
        }
        QVERIFY(!keys.isEmpty());
        // An access key takes the focus to its field.
        if (level == 3) {
            QTest::keyClick(dialog.get(), Qt::Key_A, Qt::AltModifier);
            QCOMPARE(QApplication::focusWidget(), child<QWidget>(dialog.get(), "txtAmount"));
        }
    }
};

QMR_TEST(TestDialogKeys)
#include "testdialogkeys.moc"
