// Times searches on a large store, from the criteria to the found branch standing in the
// main window's tree: keywords by any word (one and two words), all words, and a date range
// with an amount and no keywords (which brings every document through the folder pass).
//
//   build/bench/bench_find [cabinets drawers folders documents pages]
//
// Defaults: 10 cabinets x 5 drawers x 20 folders x 20 documents x 5 pages: 20,000 documents
// and 100,000 pages. Each search runs five times, each time after the result of the one
// before; the figures are of the median run. "clear" takes that result away, "query" is the
// search in the store, "branch" the found branch built, sorted and laid out; "cpu" is the
// thread's own processor time for both, which is what the wall clock shows on an idle
// machine.

#include <QApplication>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <algorithm>
#include <cstdio>
#include <functional>

#include "benchsupport.h"
#include "core/findrecord.h"
#include "core/progress.h"
#include "core/viewsettings.h"
#include "find/findsearch.h"
#include "navigator/foundbranch.h"
#include "navigator/navicons.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "store/schema.h"
#include "store/session.h"
#include "templates/drawertemplates.h"
#include "tests/support/scriptedchoosers.h"
#include "tests/support/scriptedprompter.h"
#include "tests/support/testhome.h"

using namespace qmr;

namespace {

const char* const kKinds[] = {"Invoice",  "Receipt", "Statement", "Letter",    "Contract",
                              "Policy",   "Report",  "Notice",    "Warranty",  "Manual",
                              "Bill",     "Memo",    "Quote",     "Order",     "Permit",
                              "Estimate", "Claim",   "Deed",      "Agreement", "Certificate"};

// Words of descriptions: 500 made-up words, so that each stands in about 1% of them.
QStringList vocabulary()
{
    static const char* const starts[] = {"bar", "cor", "del", "fen", "gal",  "hol", "kin",
                                         "lum", "mer", "nor", "pal", "quin", "ros", "sel",
                                         "tor", "val", "wen", "yar", "zel",  "ash"};
    static const char* const ends[] = {"ton",   "ridge", "wick", "mere", "ford",   "by",   "ham",
                                       "stead", "worth", "dale", "holm", "wood",   "gate", "more",
                                       "field", "ley",   "burn", "shaw", "thorpe", "wyn",  "cote",
                                       "hurst", "lock",  "moor", "side"};
    QStringList words;
    for (const char* s : starts)
        for (const char* e : ends)
            words << QString::fromLatin1(s) + QString::fromLatin1(e);
    return words;
}

QString describe(QRandomGenerator& random, const QStringList& words, int count)
{
    QStringList picked;
    for (int i = 0; i < count; ++i)
        picked << words.at(random.bounded(int(words.size())));
    return picked.join(' ');
}

void fill(Database& db, const int n[5])
{
    QRandomGenerator random(42);
    const QStringList words = vocabulary();
    Database::Transaction tx(db);
    int documentNumber = 0;
    for (int c = 0; c < n[0]; ++c) {
        db.execute("INSERT INTO Cabinet (Name, Password) VALUES (?, '')",
                   {QString("Cabinet %1").arg(c + 1)});
        const qint32 cab = db.lastInsertId();
        for (int d = 0; d < n[1]; ++d) {
            db.execute("INSERT INTO Drawer (CabinetId, Name) VALUES (?, ?)",
                       {cab, QString("Drawer %1").arg(d + 1)});
            const qint32 drw = db.lastInsertId();
            for (int f = 0; f < n[2]; ++f) {
                db.execute("INSERT INTO Folder (DrawerId, Name, Description) VALUES (?, ?, ?)",
                           {drw, QString("Folder %1").arg(f + 1), describe(random, words, 4)});
                const qint32 fld = db.lastInsertId();
                for (int o = 0; o < n[3]; ++o) {
                    const QDate date = QDate(2000, 1, 1).addDays(random.bounded(9000));
                    db.execute("INSERT INTO Document (FolderId, Name, Description, "
                               "DateOnDocument, Amount) VALUES (?, ?, ?, ?, ?)",
                               {fld,
                                QString("%1 %2")
                                    .arg(QLatin1String(kKinds[random.bounded(20)]))
                                    .arg(++documentNumber),
                                describe(random, words, 6), date, random.bounded(100000) / 100.0});
                    const qint32 doc = db.lastInsertId();
                    for (int p = 0; p < n[4]; ++p)
                        db.execute("INSERT INTO Page (DocumentId, Name, PageNumber, ScanDate, "
                                   "Filetype, FileSize) VALUES (?, '', ?, ?, 'JPG', ?)",
                                   {doc, p + 1, date.addDays(random.bounded(30)),
                                    50000 + random.bounded(400000)});
                }
            }
        }
    }
    tx.commit();
}

struct Figures
{
    qint64 clear = 0; // microseconds, wall clock
    qint64 search = 0;
    qint64 branch = 0;
    qint64 cpu = 0; // microseconds of this thread's own processor time, search and branch
    int documents = 0;
    int nodes = 0;
};

// The thread's processor time: what the work costs when the machine is busy with others.
qint64 cpuMicroseconds()
{
    return qint64(bench::cpuTimeMs(RUSAGE_THREAD) * 1000);
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int n[5] = {10, 5, 20, 20, 5};
    for (int i = 1; i < argc && i <= 5; ++i)
        n[i - 1] = QString::fromLocal8Bit(argv[i]).toInt();

    test::TestHome home;
    Session session(home.home(), home.settings());
    StoreSchema::openDatabase(session.db(), home.home());
    QElapsedTimer timer;
    timer.start();
    fill(session.db(), n);
    std::printf("store filled:  %lld ms (%d documents, %d pages)\n",
                static_cast<long long>(timer.restart()), n[0] * n[1] * n[2] * n[3],
                n[0] * n[1] * n[2] * n[3] * n[4]);

    test::ScriptedPrompter prompter;
    test::ScriptedChoosers choosers;
    SilentProgress progress;
    DrawerTemplates templates(home.home());
    ViewSettings view(home.settings());
    view.read();
    NavWindow window(CommandContext{session, prompter, choosers, progress, view}, templates);
    window.resize(1000, 700);
    window.load();
    window.show();
    QCoreApplication::processEvents();
    NavIcons icons;
    FoundBranch branch(*window.tree(), icons);

    const QStringList words = vocabulary();
    auto keywords = [](const QString& text, bool any) {
        FindRecord r;
        r.keywords = text;
        r.matchAny = any ? 1 : 0;
        r.matchAll = any ? 0 : 1;
        return r;
    };
    FindRecord datesAndAmount;
    datesAndAmount.scanFrom = QDate(2005, 1, 1);
    datesAndAmount.scanThru = QDate(2005, 12, 31);
    datesAndAmount.amountFrom = 100;
    datesAndAmount.amountThru = 500;
    FindRecord documentDates = datesAndAmount;
    documentDates.scanFrom = documentDates.defaultFrom;
    documentDates.scanThru = documentDates.defaultThru;
    documentDates.docFrom = QDate(2005, 1, 1);
    documentDates.docThru = QDate(2005, 12, 31);
    FindRecord sizeAndWord = keywords("invoice", true);
    sizeAndWord.fileSizeFrom = 100000;
    sizeAndWord.fileSizeThru = 120000;
    const std::pair<const char*, FindRecord> searches[] = {
        {"any word, one word", keywords(words.at(17), true)},
        {"any word, two words", keywords(words.at(17) + " " + words.at(333), true)},
        {"any word, a kind (5%)", keywords("invoice", true)},
        {"all words, two words", keywords("invoice 12", false)},
        {"any word + file size", sizeAndWord},
        {"scan dates + amount", datesAndAmount},
        {"doc dates + amount", documentDates},
    };
    // The found branch's own nodes: the filing tree's are there before.
    const int filingNodes = window.tree()->nodeCount();
    std::printf("%-24s %8s %8s %8s %8s %8s %10s %8s\n", "search", "clear", "query", "branch",
                "total", "cpu", "documents", "nodes");
    for (const auto& [name, criteria] : searches) {
        std::vector<Figures> runs;
        for (int run = 0; run < 5; ++run) {
            Figures f;
            const qint64 cpu = cpuMicroseconds();
            timer.restart();
            branch.clear();
            f.clear = timer.nsecsElapsed() / 1000;
            const FindOutcome outcome = FindSearch(session).run(criteria, 0, 0);
            f.search = timer.nsecsElapsed() / 1000 - f.clear;
            branch.show(outcome.documents);
            QCoreApplication::processEvents(); // the tree sorts and lays out
            f.branch = timer.nsecsElapsed() / 1000 - f.clear - f.search;
            f.cpu = cpuMicroseconds() - cpu;
            f.documents = int(outcome.documents.size());
            f.nodes = window.tree()->nodeCount() - filingNodes;
            runs.push_back(f);
        }
        std::sort(runs.begin(), runs.end(), [](const Figures& a, const Figures& b) {
            return a.clear + a.search + a.branch < b.clear + b.search + b.branch;
        });
        const Figures& m = runs.at(runs.size() / 2);
        std::printf("%-24s %5.1f ms %5.1f ms %5.1f ms %5.1f ms %5.1f ms %10d %8d\n", name,
                    m.clear / 1000.0, m.search / 1000.0, m.branch / 1000.0,
                    (m.clear + m.search + m.branch) / 1000.0, m.cpu / 1000.0, m.documents, m.nodes);
    }
    return prompter.verify() ? 0 : 1;
}
