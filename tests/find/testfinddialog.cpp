#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPushButton>
#include <QRadioButton>
#include <QTabWidget>
#include <QTest>
#include <QTimer>
#include <functional>
#include <optional>
#include <tuple>

#include "core/findrecord.h"
#include "core/foundresults.h"
#include "core/progress.h"
#include "core/runstate.h"
#include "core/viewsettings.h"
#include "find/finddialog.h"
#include "find/locationcombos.h"
#include "findfixture.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "store/textindex.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using qmr::test::columns;
using test::row;

namespace {

// Records what the dialog hands to the tree: "clear", and "show" with the document ids.
class RecordingResults : public FoundResults
{
public:
    QStringList calls;
    void clear() override { calls << "clear"; }
    void show(const QVector<FoundDocument>& documents) override
    {
        QStringList ids;
        for (const FoundDocument& d : documents)
            ids << QString::number(d.documentId);
        ids.removeDuplicates();
        ids.sort();
        calls << "show " + ids.join(',');
    }
};

QStringList items(const QComboBox* combo)
{
    QStringList texts;
    for (int i = 0; i < combo->count(); ++i)
        texts << combo->itemText(i);
    return texts;
}

// A find dialog on a new session of the fixture's store, with scripted questions. The
// session's criteria may be set through `prepare` before the dialog loads them.
struct DialogHarness
{
    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    std::unique_ptr<ViewSettings> view;
    RecordingResults results;
    Session& session;
    RunState state;
    std::optional<CommandContext> context; // the dialog holds it by reference
    std::unique_ptr<FindDialog> dialog;

    explicit DialogHarness(test::FindFixture& fixture,
                           const std::function<void(FindRecord&)>& prepare = {},
                           bool withResults = true)
        : session(fixture.open())
    {
        if (prepare)
            prepare(state.findRecord());
        view = std::make_unique<ViewSettings>(fixture.home.settings());
        context.emplace(CommandContext{session, state, prompter, choosers, progress, *view});
        dialog = std::make_unique<FindDialog>(*context, withResults ? &results : nullptr);
    }
    template <typename T> T* child(const char* name) const
    {
        T* w = dialog->findChild<T*>(QLatin1String(name));
        if (!w)
            qWarning("no control %s", name);
        return w;
    }
    QLineEdit* box(const char* name) const { return child<QLineEdit>(name); }
    QDateEdit* date(const char* name) const { return child<QDateEdit>(name); }
    QComboBox* combo(const char* name) const { return child<QComboBox>(name); }
    int tab() const { return child<QTabWidget>("tabFind")->currentIndex(); }
    // The four date pickers and the four number boxes, scan and size first.
    QList<QDate> dates() const
    {
        QList<QDate> all;
        for (const char* name : {"dtScanFrom", "dtScanThru", "dtDocFrom", "dtDocThru"})
            all << date(name)->date();
        return all;
    }
    QStringList numbers() const
    {
        QStringList all;
        for (const char* name : {"txtFileSizeFrom", "txtFileSizeThru", "txtAmtFrom", "txtAmtThru"})
            all << box(name)->text();
        return all;
    }
    // Chooses an entry, and lets the dialog's poll see it when asked to.
    void select(const char* name, const QString& text, bool poll = false)
    {
        QVERIFY2(LocationCombos::selectText(*combo(name), text), qPrintable(text));
        if (poll)
            dialog->pollCombos();
    }
};

} // namespace

class TestFindDialog : public QObject
{
    Q_OBJECT
    test::FindFixture m_fixture;

private slots:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
        m_fixture.build();
        // A drawer with no folders, and a cabinet with no drawers.
        m_fixture.store->drawer(3, "Archive");
        m_fixture.store->cabinet("Empty");
    }
    void cleanupTestCase() { QLocale::setDefault(QLocale::c()); }

    void controlsCaptionsAndDefaults()
    {
        DialogHarness h(m_fixture);
        QCOMPARE(h.dialog->objectName(), QString("frmFind"));
        QCOMPARE(h.dialog->windowTitle(), QString("Find"));
        auto* tabs = h.child<QTabWidget>("tabFind");
        QStringList tabTexts;
        for (int i = 0; i < tabs->count(); ++i)
            tabTexts << tabs->tabText(i);
        QCOMPARE(tabTexts, (QStringList{"Keywords", "Location", "Advanced"}));
        QStringList captions;
        for (const char* name : {"lblKeywords", "lblCabinet", "lblDrawer", "lblFolder",
                                 "lblScanDate", "lblThrough1", "lblDateOnDoc", "lblThrough3",
                                 "lblFileSize", "lblThrough2", "lblAmtFrom", "lblThrough4"})
            captions << h.child<QLabel>(name)->text();
        for (const char* name :
             {"optKeywords(0)", "optKeywords(1)", "cmdFind", "cmdReset", "cmdCancel"})
            captions << h.child<QAbstractButton>(name)->text();
        QCOMPARE(captions,
                 (QStringList{"Keywords:", "Cabinet:", "Drawer:", "Folder:", "Scanned date:",
                              "through", "Date on doc:", "through", "File size (bytes):", "through",
                              "Amount (dollars):", "through", "Match any word", "Match all words",
                              "&Find", "&Reset", "Cancel"}));
        QCOMPARE(h.dialog->timer().interval(), 500);
        QVERIFY(h.dialog->timer().isActive());
        // The defaults of a first search.
        QCOMPARE(h.box("txtKeywords")->text(), QString());
        QVERIFY(h.child<QRadioButton>("optKeywords(0)")->isChecked());
        QCOMPARE(h.tab(), 0);
        // A locked cabinet is not offered.
        QCOMPARE(items(h.combo("cboCabinet")),
                 (QStringList{"(All)", "Empty", "Home Papers", "Office"}));
        QCOMPARE(items(h.combo("cboDrawer")), QStringList{"(All)"});
        QCOMPARE(items(h.combo("cboFolder")), QStringList{"(All)"});
        QVERIFY(!h.combo("cboDrawer")->isEnabled());
        QVERIFY(!h.combo("cboFolder")->isEnabled());
        const QDate first(1901, 1, 1), last(2099, 12, 31);
        QCOMPARE(h.dates(), (QList<QDate>{first, last, first, last}));
        QCOMPARE(h.numbers(), (QStringList{"0", "0", "0.00", "0.00"}));
        QVERIFY(h.child<QPushButton>("cmdFind")->isEnabled());
    }

    void loadsTheLastSearch()
    {
        DialogHarness h(m_fixture, [](FindRecord& r) {
            r.keywords = "tax  bill";
            std::tie(r.matchAny, r.matchAll) = std::pair(0, 1);
            std::tie(r.cabinetName, r.drawerName, r.folderName) =
                std::tuple("Home Papers", "Bank", "Savings");
            std::tie(r.scanFrom, r.docThru) = std::pair(QDate(2004, 1, 1), QDate(2005, 6, 30));
            std::tie(r.fileSizeFrom, r.fileSizeThru) = std::pair(1500, 2000000);
            std::tie(r.amountFrom, r.amountThru) = std::pair(1234.5, 1234567.891);
        });
        QCOMPARE(h.box("txtKeywords")->text(), QString("tax  bill"));
        QVERIFY(h.child<QRadioButton>("optKeywords(1)")->isChecked());
        QCOMPARE(h.combo("cboCabinet")->currentText(), QString("Home Papers"));
        QCOMPARE(h.combo("cboDrawer")->currentText(), QString("Bank"));
        QCOMPARE(h.combo("cboFolder")->currentText(), QString("Savings"));
        QCOMPARE(items(h.combo("cboFolder")), (QStringList{"(All)", "Checking", "Savings"}));
        QCOMPARE(h.dialog->combos().idsText(), QString("1:1:2"));
        // Loading does not run the From helper: Thru keeps its own date.
        QCOMPARE(h.dates(), (QList<QDate>{QDate(2004, 1, 1), QDate(2099, 12, 31), QDate(1901, 1, 1),
                                          QDate(2005, 6, 30)}));
        QCOMPARE(h.numbers(), (QStringList{"1500", "2000000", "1,234.50", "1,234,567.89"}));

        // Cancel leaves the criteria as they were.
        h.child<QPushButton>("cmdCancel")->click();
        QCOMPARE(h.dialog->result(), int(QDialog::Rejected));
        QCOMPARE(h.state.findRecord().keywords, QString("tax  bill"));
        QCOMPARE(h.state.findRecord().amountThru, 1234567.891);
        QVERIFY(h.results.calls.isEmpty());
    }

    void placesThatAreGone()
    {
        // A saved place that is not offered (locked, or gone) leaves "(All)".
        DialogHarness h(m_fixture, [](FindRecord& r) {
            std::tie(r.cabinetName, r.drawerName, r.folderName) =
                std::tuple("Private", "Health", "Doctor");
        });
        QCOMPARE(h.combo("cboCabinet")->currentText(), QString("(All)"));
        QCOMPARE(h.combo("cboDrawer")->currentText(), QString("(All)"));
        QCOMPARE(h.dialog->combos().idsText(), QString("0:0:0"));
        QVERIFY(h.prompter.verify());
    }

    void reset()
    {
        DialogHarness h(m_fixture, [](FindRecord& r) {
            r.keywords = "tax";
            r.cabinetName = "Office";
            r.amountFrom = 5;
        });
        h.child<QTabWidget>("tabFind")->setCurrentIndex(2);
        h.prompter.expect("Reset find parameters?", Prompter::Answer::No);
        h.child<QPushButton>("cmdReset")->click();
        QCOMPARE(h.box("txtKeywords")->text(), QString("tax"));
        QCOMPARE(h.state.findRecord().keywords, QString("tax"));
        QCOMPARE(h.tab(), 2);

        h.prompter.expect("Reset find parameters?", Prompter::Answer::Yes);
        h.child<QPushButton>("cmdReset")->click();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.box("txtKeywords")->text(), QString());
        QCOMPARE(h.state.findRecord().keywords, QString());
        QCOMPARE(h.state.findRecord().cabinetName, QString("(All)"));
        QCOMPARE(h.combo("cboCabinet")->currentText(), QString("(All)"));
        QCOMPARE(h.box("txtAmtFrom")->text(), QString("0.00"));
        QCOMPARE(h.tab(), 0);
        QVERIFY(h.dialog->timer().isActive());
    }

    void searchWritesTheCriteria()
    {
        DialogHarness h(m_fixture);
        h.box("txtKeywords")->setText("  statement  ");
        h.child<QRadioButton>("optKeywords(1)")->setChecked(true);
        h.select("cboCabinet", "Home Papers", true);
        h.select("cboDrawer", "Bank", true);
        h.date("dtScanFrom")->setDate(QDate(2026, 1, 1));
        h.date("dtScanThru")->setDate(QDate(2026, 12, 31));
        h.date("dtDocFrom")->setDate(QDate(2026, 3, 1));
        h.date("dtDocThru")->setDate(QDate(2026, 3, 31));
        h.box("txtFileSizeFrom")->setText("1,000");
        h.box("txtFileSizeThru")->setText("5000.6");
        h.box("txtAmtFrom")->setText("1,234.50");
        h.box("txtAmtThru")->setText("2000");
        h.child<QPushButton>("cmdFind")->click();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.dialog->result(), int(QDialog::Accepted));
        QCOMPARE(h.results.calls, (QStringList{"clear", "show 1"}));
        const FindRecord& r = h.state.findRecord();
        QCOMPARE(r.keywords, QString("statement"));
        QCOMPARE(r.matchAny, 0);
        QCOMPARE(r.matchAll, 1);
        QCOMPARE(r.cabinetName, QString("Home Papers"));
        QCOMPARE(r.drawerName, QString("Bank"));
        QCOMPARE(r.folderName, QString("(All)"));
        QCOMPARE(r.scanFrom, QDate(2026, 1, 1));
        QCOMPARE(r.docThru, QDate(2026, 3, 31));
        QCOMPARE(r.fileSizeFrom, 1000);
        QCOMPARE(r.fileSizeThru, 5001); // rounded to a whole number
        QCOMPARE(r.amountFrom, 1234.5); // not 1: a group separator does not stop the number
        QCOMPARE(r.amountThru, 2000.0);
        const PageFilter& pages = h.state.foundSet().pageFilter;
        QVERIFY(pages.scanDate == (ValueRange<QDate>{QDate(2026, 1, 1), QDate(2026, 12, 31)}));
        QVERIFY(pages.fileSize == (ValueRange<qint64>{1000, 5001}));
    }

    // Words on the pages are something to look for: no question about empty keywords, and
    // the document whose page holds them is found.
    void wordsOnThePages()
    {
        DialogHarness h(m_fixture);
        TextIndex index(m_fixture.home.path());
        index.open();
        const Recordset fees = h.session.db().openRecordset(
            "SELECT PageId, Page.DocumentId FROM Page JOIN Document ON Document.DocumentId = "
            "Page.DocumentId WHERE Document.Name = 'Checking fees'");
        const qint32 page = fees.value(0, 0).toInt();
        index.put(page, {1, 1},
                  {{"Overdraft", QRect(1, 1, 9, 9)}, {"charges", QRect(11, 1, 9, 9)}});
        index.attachTo(h.session.db());
        h.box("txtPageWords")->setText(" overdraft ");
        h.child<QPushButton>("cmdFind")->click();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.results.calls, (QStringList{"clear", "show " + fees.value(0, 1).toString()}));
        QCOMPARE(h.state.findRecord().pageWords, QString("overdraft"));
    }

    // A search the dialog refuses leaves it open at the box to mend, with nothing written;
    // searching without keywords is asked first, and "Yes" finds every document in scope.
    void refusedSearches_data()
    {
        columns<QString, QString, QString, QString, int>(
            {"keywords", "box", "text", "message", "answer"});
        QTest::addColumn<int>("tab"); // where a refusal leaves the dialog; -1 when it searches
        const QString none = "No keywords entered.  Search without keywords?";
        const QString amount = "The amount must be a number.";
        const QString size = "The file size must be a number of bytes.";
        const int ok = int(Prompter::Answer::Ok);
        row("no keywords, no", "   ", "txtAmtFrom", "3", none, int(Prompter::Answer::No), 0);
        row("no keywords, cancel", "   ", "txtAmtFrom", "3", none, int(Prompter::Answer::Cancel),
            0);
        row("no keywords, yes", "   ", "txtAmtFrom", "3", none, int(Prompter::Answer::Yes), -1);
        row("amount from", "tax", "txtAmtFrom", "12abc", amount, ok, 2);
        row("amount thru", "tax", "txtAmtThru", "5 euros", amount, ok, 2);
        row("size from", "tax", "txtFileSizeFrom", "1 KB", size, ok, 2);
        row("size too large", "tax", "txtFileSizeThru", "3000000000", size, ok, 2);
    }
    void refusedSearches()
    {
        const auto [keywords, box, text, message, answer, tab] =
            test::fetch<QString, QString, QString, QString, int, int>("keywords", "box", "text",
                                                                      "message", "answer", "tab");
        DialogHarness h(m_fixture, [](FindRecord& r) { r.cabinetName = "Office"; });
        h.box("txtKeywords")->setText(keywords);
        h.child<QTabWidget>("tabFind")->setCurrentIndex(tab == 2 ? 0 : 2);
        h.box(qPrintable(box))->setText(text);
        h.prompter.expect(message, Prompter::Answer(answer));
        h.child<QPushButton>("cmdFind")->click();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.box("txtKeywords")->text(), keywords.trimmed()); // trimmed in any case
        if (tab >= 0) {
            QCOMPARE(h.dialog->result(), int(QDialog::Rejected)); // still open
            QCOMPARE(h.tab(), tab);
            QCOMPARE(h.dialog->focusWidget(), h.box(tab == 0 ? "txtKeywords" : qPrintable(box)));
            QCOMPARE(h.state.findRecord().keywords, QString()); // nothing written
            QCOMPARE(h.state.findRecord().amountFrom, 0.0);
            QVERIFY(h.results.calls.isEmpty());
            if (tab == 0)
                return;
            // An empty box is 0.
            h.box(qPrintable(box))->clear();
            h.child<QPushButton>("cmdFind")->click();
        }
        // Without keywords every folder of the cabinet matches: all its documents come.
        QCOMPARE(h.dialog->result(), int(QDialog::Accepted));
        QCOMPARE(h.results.calls, (QStringList{"clear", "show 6"}));
        QCOMPARE(h.state.findRecord().amountFrom, tab < 0 ? 3.0 : 0.0);
        QCOMPARE(h.state.findRecord().cabinetName, QString("Office"));
    }

    // The dialog closes after every search, the old result gone first. A combo changed since
    // the last poll is not seen: the search uses the old id. A drawer with "(All)" folders
    // searches its whole cabinet.
    void searches_data()
    {
        columns<QString, QString, QString, bool, QString, QStringList>(
            {"keywords", "cabinet", "drawer", "poll", "message", "calls"});
        row("nothing found", "zebra", "", "", false, "Nothing found.", QStringList{"clear"});
        row("an empty folder", "rainy", "", "", false, "", QStringList{"clear", "show "});
        row("cabinet not polled", "statement bill", "Office", "", false, "",
            QStringList{"clear", "show 1,6"});
        row("cabinet polled", "statement bill", "Office", "", true, "",
            QStringList{"clear", "show 6"});
        // "March statement" lies in the drawer Bank, and comes all the same.
        row("drawer, folder (All)", "statement return", "Home Papers", "Taxes", true, "",
            QStringList{"clear", "show 1,3"});
    }
    void searches()
    {
        const auto [keywords, cabinet, drawer, poll, message, calls] =
            test::fetch<QString, QString, QString, bool, QString, QStringList>(
                "keywords", "cabinet", "drawer", "poll", "message", "calls");
        DialogHarness h(m_fixture);
        h.box("txtKeywords")->setText(keywords);
        if (!cabinet.isEmpty())
            h.select("cboCabinet", cabinet, poll);
        if (!drawer.isEmpty())
            h.select("cboDrawer", drawer, poll);
        if (!message.isEmpty())
            h.prompter.expect(message);
        h.child<QPushButton>("cmdFind")->click();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.dialog->result(), int(QDialog::Accepted));
        QCOMPARE(h.results.calls, calls);
        if (!cabinet.isEmpty())
            QCOMPARE(h.state.findRecord().cabinetName, cabinet);
    }

    void comboPoll()
    {
        DialogHarness h(m_fixture);
        LocationCombos& c = h.dialog->combos();
        QCOMPARE(c.idsText(), QString("0:0:0"));
        // Nothing changed: a poll does nothing.
        h.dialog->pollCombos();
        QCOMPARE(h.child<QLabel>("lblDebug")->text(), QString("0:0:0"));

        h.select("cboCabinet", "Home Papers", true);
        QCOMPARE(c.idsText(), QString("1:0:0"));
        QCOMPARE(items(h.combo("cboDrawer")), (QStringList{"(All)", "Bank", "Taxes"}));
        QVERIFY(h.combo("cboDrawer")->isEnabled());
        QVERIFY(!h.combo("cboFolder")->isEnabled());

        h.select("cboDrawer", "Bank", true);
        QCOMPARE(c.idsText(), QString("1:1:0"));
        QCOMPARE(items(h.combo("cboFolder")), (QStringList{"(All)", "Checking", "Savings"}));
        QVERIFY(h.combo("cboFolder")->isEnabled());
        h.select("cboFolder", "Savings", true);
        QCOMPARE(h.child<QLabel>("lblDebug")->text(), QString("1:1:2"));
        // The drawer back to "(All)": the folder follows, disabled; then the drawer again.
        h.select("cboDrawer", "(All)", true);
        QCOMPARE(items(h.combo("cboFolder")), QStringList{"(All)"});
        QVERIFY(!h.combo("cboFolder")->isEnabled());
        h.select("cboDrawer", "Bank", true);
        h.select("cboFolder", "Savings", true);
        QCOMPARE(h.child<QLabel>("lblDebug")->text(), QString("1:1:2"));

        // Another cabinet: one level per poll, so the drawer and folder ids follow later.
        h.select("cboCabinet", "Office", true);
        QCOMPARE(c.idsText(), QString("3:1:2"));
        QCOMPARE(items(h.combo("cboDrawer")), (QStringList{"(All)", "Archive", "Clients"}));
        QCOMPARE(items(h.combo("cboFolder")), QStringList{"(All)"});
        QVERIFY(!h.combo("cboFolder")->isEnabled());
        h.dialog->pollCombos();
        QCOMPARE(c.idsText(), QString("3:0:2"));
        h.dialog->pollCombos();
        QCOMPARE(c.idsText(), QString("3:0:0"));
        h.dialog->pollCombos();
        QCOMPARE(h.child<QLabel>("lblDebug")->text(), QString("3:0:0"));

        // Two levels changed between polls: the cabinet's level first, then the drawer's.
        h.select("cboDrawer", "Clients");
        h.select("cboCabinet", "Home Papers", true);
        QCOMPARE(c.idsText(), QString("1:0:0"));
        QCOMPARE(h.combo("cboDrawer")->currentText(), QString("(All)"));

        // A drawer with no folders, a cabinet with no drawers: "(All)" alone, disabled.
        h.select("cboCabinet", "Office", true);
        h.select("cboDrawer", "Archive", true);
        QCOMPARE(items(h.combo("cboFolder")), QStringList{"(All)"});
        QVERIFY(!h.combo("cboFolder")->isEnabled());
        h.select("cboCabinet", "Empty", true);
        QCOMPARE(items(h.combo("cboDrawer")), QStringList{"(All)"});
        QVERIFY(!h.combo("cboDrawer")->isEnabled());

        // Back to "(All)": everything below goes back to "(All)" and is disabled.
        h.select("cboCabinet", "(All)", true);
        QCOMPARE(c.cabinetId(), 0);
        QVERIFY(!h.combo("cboDrawer")->isEnabled());
        QVERIFY(!h.combo("cboFolder")->isEnabled());
    }

    void timerPolls()
    {
        DialogHarness h(m_fixture);
        h.select("cboCabinet", "Office");
        QCOMPARE(h.dialog->combos().cabinetId(), 0);
        QTRY_COMPARE_WITH_TIMEOUT(h.dialog->combos().cabinetId(), 3, 2000);
        QCOMPARE(h.child<QLabel>("lblDebug")->text(), QString("3:0:0"));
    }

    void storeFailureWhilePolling()
    {
        DialogHarness h(m_fixture);
        h.select("cboCabinet", "Office");
        h.session.db().close();
        h.prompter.expect("The store is not open.");
        QTRY_VERIFY_WITH_TIMEOUT(!h.prompter.seen().isEmpty(), 2000);
        // Said once: the poll stops rather than repeat it, so no later tick can say it again.
        QVERIFY(!h.dialog->timer().isActive());
        QCoreApplication::processEvents();
        QVERIFY2(h.prompter.verify(), qPrintable(h.prompter.report()));
        QCOMPARE(h.dialog->combos().cabinetId(), 0);
    }

    // On a shown, active dialog: the keys that change tabs, then the helpers that fill Thru
    // from From.
    void tabKeysAndHelpers()
    {
        DialogHarness h(m_fixture);
        h.dialog->show();
        QVERIFY(QTest::qWaitForWindowExposed(h.dialog.get()));
        QApplication::setActiveWindow(h.dialog.get());
        QVERIFY(QTest::qWaitForWindowActive(h.dialog.get()));
        h.box("txtKeywords")->setFocus();
        QTest::keyClick(h.box("txtKeywords"), Qt::Key_PageUp, Qt::ControlModifier);
        QCOMPARE(h.tab(), 2);
        QVERIFY(QApplication::focusWidget());
        for (const int next : {0, 1, 2}) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_PageDown, Qt::ControlModifier);
            QCOMPARE(h.tab(), next);
        }
        // From a date picker too.
        h.date("dtScanFrom")->setFocus();
        QTest::keyClick(h.date("dtScanFrom"), Qt::Key_PageDown, Qt::ControlModifier);
        QCOMPARE(h.tab(), 0);

        QDateEdit* from = h.date("dtScanFrom");
        QDateEdit* thru = h.date("dtScanThru");
        from->setDate(QDate(2004, 1, 1));
        QCOMPARE(thru->date(), QDate(2004, 1, 1));
        // Stepping on through From takes Thru along while the user has not set it.
        from->setDate(QDate(2004, 2, 1));
        QCOMPARE(thru->date(), QDate(2004, 2, 1));
        thru->setDate(QDate(2004, 12, 31));
        from->setDate(QDate(2004, 3, 1));
        QCOMPARE(thru->date(), QDate(2004, 12, 31));
        // The document dates have the same helper of their own.
        QCOMPARE(h.date("dtDocThru")->date(), QDate(2099, 12, 31));
        h.date("dtDocFrom")->setDate(QDate(2010, 5, 5));
        QCOMPARE(h.date("dtDocThru")->date(), QDate(2010, 5, 5));
        QCOMPARE(thru->date(), QDate(2004, 12, 31));

        h.child<QTabWidget>("tabFind")->setCurrentIndex(2);
        QLineEdit* amountFrom = h.box("txtAmtFrom");
        QLineEdit* amountThru = h.box("txtAmtThru");
        amountFrom->setFocus();
        amountFrom->setText("12.50");
        h.box("txtFileSizeFrom")->setFocus();
        QCOMPARE(amountThru->text(), QString("12.50"));
        // A Thru amount of its own stays.
        amountThru->setText("99");
        amountFrom->setFocus();
        amountFrom->setText("20");
        h.box("txtFileSizeFrom")->setFocus();
        QCOMPARE(amountThru->text(), QString("99"));
        // The size boxes have no such helper.
        h.box("txtFileSizeFrom")->setText("100");
        amountFrom->setFocus();
        QCOMPARE(h.box("txtFileSizeThru")->text(), QString("0"));
        h.dialog->reject();
    }

    void emptyStore()
    {
        test::FindFixture bare; // never built: its store is made empty when opened
        DialogHarness h(bare, {}, false);
        QCOMPARE(items(h.combo("cboCabinet")), QStringList{"No file cabinets to find"});
        QVERIFY(!h.combo("cboCabinet")->isEnabled());
        QVERIFY(!h.child<QPushButton>("cmdFind")->isEnabled());
        h.dialog->pollCombos();
        QCOMPARE(h.dialog->combos().idsText(), QString("0:0:0"));
        QVERIFY(h.prompter.verify());
    }
};

QMR_TEST(TestFindDialog)
#include "testfinddialog.moc"
