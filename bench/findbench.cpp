// Times searches on a large store, from the criteria to the found branch standing in the
// main window's tree: keywords by any word (one and two words), all words, and a date range
// with an amount and no keywords (which brings every document through the folder pass).
//
//   build/bench/bench_find [--documents N] [--only TEXT] [--runs N]
//                          [cabinets drawers folders documents pages]
//
// Defaults: 10 cabinets x 5 drawers x 20 folders x 20 documents x 5 pages: 20,000 documents
// and 100,000 pages. "words on the pages" has every page's text in the text index (180 to 320
// words a page, as in bench_text) and looks for a word on a page of 200 documents. --documents N
// keeps the cabinets, drawers and folders and puts N documents in all into the folders (--documents
// 100000: 100 a folder, 500,000 pages).
// --only runs the searches whose name holds TEXT.
//
// Each search runs five times (--runs N: N times, for a profiler), each time after the result
// of the one before, after one run that is not counted; the figures are of the median run. "clear"
// takes that result away, "query" is the search in the store, "branch" the found branch built,
// sorted and laid out; "cpu" is the thread's own processor time for both, which is what the wall
// clock shows on an idle machine. "LIKE" is SQLite's own LIKE over the same columns for the same
// keywords, on a connection of its own with the same page cache, reading the matching rows of
// Document and Folder: the one pass that a search by keywords cannot do without; "x LIKE" is the
// query's time over it.

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QSet>
#include <algorithm>
#include <cstdio>
#include <functional>
#include <sqlite3.h>

#include "benchsupport.h"
#include "core/findcriteria.h"
#include "core/findrecord.h"
#include "core/progress.h"
#include "core/runstate.h"
#include "core/viewsettings.h"
#include "find/findsearch.h"
#include "navigator/foundbranch.h"
#include "navigator/navtree.h"
#include "navigator/navwindow.h"
#include "resources/navicons.h"
#include "store/schema.h"
#include "store/session.h"
#include "store/textindex.h"
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

// SQLite's own LIKE: the rows of Document and of Folder whose name or description holds any
// of the pieces, each field of them read. Milliseconds, the median of five runs.
double sqliteLikeMs(sqlite3* db, const QStringList& pieces)
{
    QStringList tests;
    for (int i = 1; i <= pieces.size(); ++i)
        tests << QString("Name LIKE ?%1 OR Description LIKE ?%1").arg(i);
    const QString where = " WHERE " + tests.join(" OR ");
    QVector<double> runs;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer timer;
        timer.start();
        for (const QString& sql : {"SELECT DocumentId, FolderId, Name FROM Document" + where,
                                   "SELECT FolderId, DrawerId, Name FROM Folder" + where}) {
            sqlite3_stmt* stmt = nullptr;
            sqlite3_prepare_v2(db, sql.toUtf8().constData(), -1, &stmt, nullptr);
            for (int i = 0; i < pieces.size(); ++i)
                sqlite3_bind_text(stmt, i + 1, ('%' + pieces.at(i) + '%').toUtf8().constData(), -1,
                                  SQLITE_TRANSIENT);
            while (sqlite3_step(stmt) == SQLITE_ROW) {
                sqlite3_column_int(stmt, 0);
                sqlite3_column_int(stmt, 1);
                sqlite3_column_text(stmt, 2);
            }
            sqlite3_finalize(stmt);
        }
        runs << timer.nsecsElapsed() / 1e6;
    }
    std::sort(runs.begin(), runs.end());
    return runs.at(runs.size() / 2);
}

// The text of every page in the home's text index, attached to the store's connection as the
// running program attaches it; `rare` stands on one page of each of `documents` documents.
void fillPageText(Session& session, const QString& rare, int documents)
{
    TextIndex index(session.paths().home().path());
    index.open();
    QRandomGenerator random(23);
    const QStringList vocabulary = bench::textVocabulary(random);
    const int documentCount = session.db().scalar("SELECT count(*) FROM Document").toInt();
    QSet<int> marked;
    while (marked.size() < std::min(documents, documentCount)) {
        const int document = 1 + int(random.bounded(documentCount));
        marked.insert(session.db()
                          .scalar("SELECT min(PageId) FROM Page WHERE DocumentId = ?", {document})
                          .toInt());
    }
    const int pageCount = session.db().scalar("SELECT max(PageId) FROM Page").toInt();
    constexpr int kBatch = 5000;
    for (int first = 1; first <= pageCount; first += kBatch)
        index.together([&] {
            for (int id = first; id < first + kBatch && id <= pageCount; ++id) {
                index.put(
                    id, TextIndex::Stamp{1, 1},
                    bench::pageWords(random, vocabulary, marked.contains(id) ? rare : QString()));
            }
        });
    index.attachTo(session.db());
}

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption documentsOption("documents", "Documents in all.", "N");
    const QCommandLineOption onlyOption("only", "Only the searches whose name holds TEXT.", "TEXT");
    const QCommandLineOption runsOption("runs", "Runs of each search (5); more for a profiler.",
                                        "N");
    parser.addOptions({documentsOption, onlyOption, runsOption});
    parser.addPositionalArgument("sizes", "cabinets drawers folders documents pages");
    parser.process(app);
    const int runCount =
        parser.isSet(runsOption) ? std::max(1, parser.value(runsOption).toInt()) : 5;
    int n[5] = {10, 5, 20, 20, 5};
    const QStringList sizes = parser.positionalArguments();
    for (int i = 0; i < sizes.size() && i < 5; ++i)
        n[i] = sizes.at(i).toInt();
    if (parser.isSet(documentsOption))
        n[3] = std::max(1, parser.value(documentsOption).toInt() / (n[0] * n[1] * n[2]));

    test::TestHome home;
    Session session(home.home(), home.settings());
    RunState state;
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
    NavWindow window(CommandContext{session, state, prompter, choosers, progress, view}, templates);
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
    FindRecord pageWords;
    pageWords.pageWords = QStringLiteral("zephyrquill");
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
        {"words on the pages", pageWords},
    };
    if (QString("words on the pages").contains(parser.value(onlyOption))) {
        timer.restart();
        fillPageText(session, pageWords.pageWords, 200);
        std::printf("page text:     %lld ms (one word on a page of 200 documents)\n",
                    static_cast<long long>(timer.restart()));
    }
    // SQLite's own LIKE, on a connection of its own with a page cache as large as the
    // session's.
    sqlite3* plain = nullptr;
    sqlite3_open_v2(session.db().path().toUtf8().constData(), &plain, SQLITE_OPEN_READONLY,
                    nullptr);
    const QString cacheSize = session.db().scalar("PRAGMA cache_size").toString();
    sqlite3_exec(plain, ("PRAGMA cache_size = " + cacheSize).toUtf8().constData(), nullptr, nullptr,
                 nullptr);

    // The found branch's own nodes: the filing tree's are there before.
    const int filingNodes = window.tree()->nodeCount();
    std::printf("%-24s %8s %8s %8s %8s %8s %10s %8s %8s %7s\n", "search", "clear", "query",
                "branch", "total", "cpu", "documents", "nodes", "LIKE", "x LIKE");
    for (const auto& [name, criteria] : searches) {
        if (!QString(name).contains(parser.value(onlyOption)))
            continue;
        std::vector<Figures> runs;
        // Run -1 is not counted: it takes away the result of the search before, so that each
        // counted run clears a result of its own kind.
        for (int run = -1; run < runCount; ++run) {
            Figures f;
            const qint64 cpu = cpuMicroseconds();
            timer.restart();
            branch.clear();
            f.clear = timer.nsecsElapsed() / 1000;
            const FindOutcome outcome = FindSearch(session, state.foundSet()).run(criteria, 0, 0);
            f.search = timer.nsecsElapsed() / 1000 - f.clear;
            branch.show(outcome.documents);
            QCoreApplication::processEvents(); // the tree sorts and lays out
            f.branch = timer.nsecsElapsed() / 1000 - f.clear - f.search;
            f.cpu = cpuMicroseconds() - cpu;
            f.documents = int(outcome.documents.size());
            f.nodes = window.tree()->nodeCount() - filingNodes;
            if (run >= 0)
                runs.push_back(f);
        }
        std::sort(runs.begin(), runs.end(), [](const Figures& a, const Figures& b) {
            return a.clear + a.search + a.branch < b.clear + b.search + b.branch;
        });
        const Figures& m = runs.at(runs.size() / 2);
        std::printf("%-24s %5.1f ms %5.1f ms %5.1f ms %5.1f ms %5.1f ms %10d %8d", name,
                    m.clear / 1000.0, m.search / 1000.0, m.branch / 1000.0,
                    (m.clear + m.search + m.branch) / 1000.0, m.cpu / 1000.0, m.documents, m.nodes);
        const QStringList pieces = FindCriteria::fromRecord(criteria, 0).keywordPieces();
        if (!pieces.isEmpty()) {
            const double like = sqliteLikeMs(plain, pieces);
            std::printf(" %5.1f ms %6.2f", like, m.search / 1000.0 / like);
        }
        std::printf("\n");
    }
    sqlite3_close(plain);
    return prompter.verify() ? 0 : 1;
}
