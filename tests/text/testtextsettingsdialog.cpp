#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QTest>

#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"
#include "text/textsettingsdialog.h"

using namespace qmr;
using qmr::test::row;

// The languages offered are the packs installed, the chosen ones checked; a chosen pack that
// is missing, or no pack at all, is said in the dialog; reading needs one language at least.
class TestTextSettingsDialog : public QObject
{
    Q_OBJECT

    static QStringList checked(const QListWidget* list)
    {
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            if (list->item(row)->checkState() == Qt::Checked)
                names << list->item(row)->text();
        return names;
    }

private slots:
    void offersThePacksInstalled_data()
    {
        QTest::addColumn<QString>("chosen");
        QTest::addColumn<QStringList>("installed");
        QTest::addColumn<QStringList>("checked");
        QTest::addColumn<QString>("missing"); // a part of the message; "" for none
        row("one of two", "eng", QStringList{"deu", "eng"}, QStringList{"English (eng)"}, "");
        row("both", "deu+eng", QStringList{"deu", "eng"},
            QStringList{"German (deu)", "English (eng)"}, "");
        row("a pack gone", "deu+eng", QStringList{"eng"}, QStringList{"English (eng)"},
            "The language pack for deu is not installed");
        row("none at all", "eng", QStringList{}, QStringList{},
            "No language pack for reading text is installed");
    }
    void offersThePacksInstalled()
    {
        QFETCH(QString, chosen);
        QFETCH(QStringList, installed);
        QFETCH(QStringList, checked);
        QFETCH(QString, missing);
        TextSettingsDialog dialog(chosen, installed);
        auto* list = dialog.findChild<QListWidget*>("lstLanguages");
        QCOMPARE(list->count(), installed.size());
        QCOMPARE(TestTextSettingsDialog::checked(list), checked);
        auto* message = dialog.findChild<QLabel*>("lblMissing");
        QCOMPARE(message->isVisibleTo(&dialog), !missing.isEmpty());
        QVERIFY2(missing.isEmpty() ? message->text().isEmpty()
                                   : message->text().startsWith(missing),
                 qPrintable(message->text()));
        QCOMPARE(dialog.findChild<QPushButton*>("cmdOK")->isEnabled(), !checked.isEmpty());
    }

    void choosesInTheListsOrder()
    {
        TextSettingsDialog dialog("eng", {"deu", "eng", "fra"});
        auto* list = dialog.findChild<QListWidget*>("lstLanguages");
        auto* ok = dialog.findChild<QPushButton*>("cmdOK");
        list->item(1)->setCheckState(Qt::Unchecked);
        QCOMPARE(dialog.languages(), QString());
        QVERIFY(!ok->isEnabled());
        list->item(2)->setCheckState(Qt::Checked);
        list->item(0)->setCheckState(Qt::Checked);
        QCOMPARE(dialog.languages(), QString("deu+fra"));
        QVERIFY(ok->isEnabled());
        // The languages chosen before keep their order: the first leads the recogniser.
        TextSettingsDialog again("fra+deu", {"deu", "eng", "fra"});
        QCOMPARE(again.languages(), QString("fra+deu"));
        again.findChild<QListWidget*>("lstLanguages")->item(1)->setCheckState(Qt::Checked);
        QCOMPARE(again.languages(), QString("fra+deu+eng"));
    }

    void namesPacksForPeople_data()
    {
        QTest::addColumn<QString>("pack");
        QTest::addColumn<QString>("name");
        row("three letters", "deu", "German (deu)");
        row("with a script", "chi_sim", "Chinese (chi_sim)");
        row("unknown", "xqz", "xqz");
    }
    void namesPacksForPeople()
    {
        QFETCH(QString, pack);
        QFETCH(QString, name);
        QCOMPARE(TextSettingsDialog::displayName(pack), name);
    }
};

QMR_TEST(TestTextSettingsDialog)
#include "testtextsettingsdialog.moc"
