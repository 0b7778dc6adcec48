#include <QDebug>
#include <QLabel>
#include <QListWidget>
#include <QPainter>
#include <QPushButton>
#include <QRandomGenerator>
#include <QTest>

#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"
#include "tests/text/printedpage.h"
#include "text/textrecognizer.h"
#include "text/textsettingsdialog.h"

using namespace qmr;
using namespace qmr::test;

class TestTextRecognizer : public QObject
{
    Q_OBJECT

    TextRecognizer m_recognizer;

    static QStringList checked(const QListWidget* list)
    {
        QStringList names;
        for (int row = 0; row < list->count(); ++row)
            if (list->item(row)->checkState() == Qt::Checked)
                names << list->item(row)->text();
        return names;
    }

private slots:
    void initTestCase() { QVERIFY2(m_recognizer.start("eng").ok(), "the English pack"); }

    // The words of a printed line come back in order, each boxed where it was printed.
    void readsAPrintedLine()
    {
        const QString text = "Invoice number 4711 from Northwind Heating, due 12 March 2026";
        const QPoint origin(150, 200);
        const QImage page = printedPage({text}, origin);
        const QList<TextIndex::Word> words = m_recognizer.read(page);
        QStringList texts;
        for (const TextIndex::Word& word : words)
            texts << word.text;
        QCOMPARE(texts.join(' '), text);

        const QFontMetrics metrics(printFont(), &page);
        const int start = origin.x() + metrics.horizontalAdvance(text.left(text.indexOf("4711")));
        const QRect printed(start, origin.y() - metrics.ascent(), metrics.horizontalAdvance("4711"),
                            metrics.ascent());
        const QRect read = words.at(2).box;
        QString boxes;
        QDebug(&boxes) << printed << read;
        QVERIFY2(printed.adjusted(-8, -8, 8, 8).contains(read) &&
                     read.width() > printed.width() * 3 / 4,
                 qPrintable(boxes));
    }

    // Nothing written gives no words, and no message either.
    void nothingWrittenGivesNoWords_data()
    {
        columns<QString>({"page"});
        row("blank", "blank");
        row("a photograph", "photograph");
        row("no picture", "none");
    }
    void nothingWrittenGivesNoWords()
    {
        QFETCH(QString, page);
        QImage picture;
        if (page == "blank") {
            picture = paper(1200);
        } else if (page == "photograph") {
            // Soft shapes and grain, as a snapshot of a garden has them.
            picture = paper(1200);
            QPainter painter(&picture);
            painter.setRenderHint(QPainter::Antialiasing);
            QRandomGenerator random(7);
            for (int i = 0; i < 60; ++i) {
                painter.setPen(Qt::NoPen);
                painter.setBrush(
                    QColor::fromHsv(int(random.bounded(360)), 120, 80 + int(random.bounded(150))));
                painter.drawEllipse(QPoint(int(random.bounded(2480)), int(random.bounded(1200))),
                                    40 + int(random.bounded(300)), 40 + int(random.bounded(200)));
            }
            for (int i = 0; i < 200000; ++i)
                picture.setPixel(int(random.bounded(2480)), int(random.bounded(1200)),
                                 random.bounded(2) ? 0xff303030 : 0xffd0d0d0);
        }
        QCOMPARE(m_recognizer.read(picture), QList<TextIndex::Word>{});
    }

    void languages_data()
    {
        columns<QString, QString, QString>({"locale", "installed", "chosen"});
        row("the locale's pack", "de_DE", "deu eng", "deu");
        row("no pack for the locale", "de_DE", "eng fra", "eng");
    }
    void languages()
    {
        const auto [locale, installed] = fetch<QString, QString>("locale", "installed");
        QTEST(TextRecognizer::defaultLanguages(QLocale(locale), installed.split(' ')), "chosen");
    }

    // The message for a missing pack is checked through the worker, in the reader's test, and
    // that "eng" is among the packs installed by the start in initTestCase.
    void aMissingPackIsNamed()
    {
        TextRecognizer recognizer;
        QVERIFY(!recognizer.start("eng+xyz"));
        QCOMPARE(recognizer.read(paper()), QList<TextIndex::Word>{});
        QVERIFY(!TextRecognizer::installedLanguages().contains("osd"));
    }

    // The languages offered are the packs installed, the chosen ones checked; a chosen pack
    // that is missing, or no pack at all, is said in the dialog; reading needs one language.
    void offersThePacksInstalled_data()
    {
        // `missing`: a part of the message, "" for none.
        columns<QString, QStringList, QStringList, QString>(
            {"chosen", "installed", "checked", "missing"});
        row("one of two", "eng", QStringList{"deu", "eng"}, QStringList{"English (eng)"}, "");
        row("both", "deu+eng", QStringList{"deu", "eng"},
            QStringList{"German (deu)", "English (eng)"}, "");
        row("a pack gone", "deu+eng", QStringList{"eng"}, QStringList{"English (eng)"},
            "The language pack for deu is not installed");
        row("none at all", "eng", QStringList{}, QStringList{},
            "No language pack for reading text is installed");
        // A pack with a script, and one the program has no name for.
        row("names for people", "chi_sim+xqz", QStringList{"chi_sim", "xqz"},
            QStringList{"Chinese (chi_sim)", "xqz"}, "");
    }
    void offersThePacksInstalled()
    {
        const auto [chosen, installed, checked, missing] =
            fetch<QString, QStringList, QStringList, QString>("chosen", "installed", "checked",
                                                              "missing");
        TextSettingsDialog dialog(chosen, installed);
        auto* list = dialog.findChild<QListWidget*>("lstLanguages");
        QCOMPARE(list->count(), installed.size());
        QCOMPARE(TestTextRecognizer::checked(list), checked);
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
};

QMR_TEST(TestTextRecognizer)
#include "testtextrecognizer.moc"
