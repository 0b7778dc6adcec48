#include <QApplication>
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

namespace {

// The letter after '&' of a caption, lower case; a null char when there is none.
QChar accessKey(const QString& text)
{
    for (int i = 0; i + 1 < text.size(); ++i) {
        if (text.at(i) != QLatin1Char('&'))
            continue;
        if (text.at(i + 1) != QLatin1Char('&'))
            return text.at(i + 1).toLower();
        ++i;
    }
    return QChar();
}

// Every label of a field that the user can reach has its own access key.
void checkAccessKeys(QWidget* dialog)
{
    QSet<QChar> keys;
    for (QLabel* label : dialog->findChildren<QLabel*>()) {
        if (!label->buddy() || !label->isVisibleTo(dialog))
            continue;
        const QChar key = accessKey(label->text());
        QVERIFY2(!key.isNull(), qPrintable(label->objectName() + " has no access key"));
        QVERIFY2(!keys.contains(key), qPrintable(label->objectName() + " repeats a key"));
        keys.insert(key);
    }
    QVERIFY(!keys.isEmpty());
}

} // namespace

class TestDialogKeys : public QObject
{
    Q_OBJECT
private slots:
    void itemDialogsStartInTheName_data()
    {
        QTest::addColumn<int>("level");
        QTest::addColumn<bool>("edit");
        QTest::addColumn<bool>("collectOnly");
        for (int level = 0; level < 4; ++level) {
            const QString word = QLatin1String(levelInfo(Level(level)).word);
            QTest::newRow(qPrintable(word + " add")) << level << false << false;
            QTest::newRow(qPrintable(word + " properties")) << level << true << false;
        }
        QTest::newRow("new document") << 3 << false << true;
    }
    void itemDialogsStartInTheName()
    {
        QFETCH(int, level);
        QFETCH(bool, edit);
        QFETCH(bool, collectOnly);
        DialogHarness h;
        ItemDialog dialog(Level(level), h.context(), nullptr, collectOnly);
        if (edit)
            QVERIFY(dialog.setEdit(1));
        else
            dialog.setAdd(1);
        dialog.show();
        QVERIFY(QTest::qWaitForWindowActive(&dialog));
        // What is typed at once lands in the name.
        QCOMPARE(QApplication::focusWidget(), child<QWidget>(&dialog, "txtName"));
        child<QLineEdit>(&dialog, "txtName")->clear();
        QTest::keyClicks(QApplication::focusWidget(), "Typed");
        QCOMPARE(child<QLineEdit>(&dialog, "txtName")->text(), QStringLiteral("Typed"));
        checkAccessKeys(&dialog);
        // An access key takes the focus to its field.
        if (level == 3) {
            QTest::keyClick(&dialog, Qt::Key_A, Qt::AltModifier);
            QCOMPARE(QApplication::focusWidget(), child<QWidget>(&dialog, "txtAmount"));
        }
    }

    void cancelIsWrittenAlike()
    {
        DialogHarness h;
        std::vector<std::unique_ptr<QDialog>> dialogs;
        for (int level = 0; level < 4; ++level)
            dialogs.push_back(std::make_unique<ItemDialog>(Level(level), h.context()));
        dialogs.push_back(
            std::make_unique<ItemDialog>(Level::Document, h.context(), nullptr, true));
        dialogs.push_back(std::make_unique<PasswordDialog>());
        dialogs.push_back(std::make_unique<PageNumberDialog>(3));
        for (const auto& dialog : dialogs) {
            auto* cancel = child<QPushButton>(dialog.get(), "cmdCancel");
            QVERIFY(cancel);
            QCOMPARE(cancel->text(), QStringLiteral("Cancel"));
        }
        for (QDialog* d : {static_cast<QDialog*>(dialogs.at(5).get()), dialogs.at(6).get()})
            checkAccessKeys(d);
    }
};

QMR_TEST(TestDialogKeys)
#include "testdialogkeys.moc"
