// Crash safety of the store. A child process runs a long, deterministic mix of the store's
// writing commands and reports each one it finished; the parent kills it with SIGKILL at a
// random moment, opens the store with the program's own code and checks that it is sound
// (integrity, no dangling parent, no unnamed item) and that it is exactly the store that the
// commands finished so far left: the same rows, ids and page numbers as a reference store
// that ran the same commands without being killed.
//
//   test_storekill [--runs N] [--seed S]         the parent: N kill runs (default 100)
//   test_storekill --child HOME FIRSTSTEP SEED   the child: commands from FIRSTSTEP on, forever

#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QMap>
#include <QProcess>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QThread>
#include <cstdio>

#include "core/homelock.h"
#include "store/database.h"
#include "store/pagepaths.h"
#include "store/schema.h"
#include "store/storeerror.h"
#include "storecommands.h"

using namespace qmr;
using namespace qmr::crash;

namespace {

void say(const char* line)
{
    std::printf("%s\n", line);
    std::fflush(stdout);
}

int runChild(const QString& homePath, int firstStep, quint32 seed)
{
    const AppHome home(homePath);
    // As the program starts: the home taken (a killed run's lock is taken over), then the store.
    HomeLock lock(home);
    if (!lock.acquire()) {
        std::fprintf(stderr, "%s\n", qPrintable(lock.refusal()));
        return 3;
    }
    say("opening");
    try {
        const std::unique_ptr<CommandStore> store = CommandStore::open(home, seed);
        say("ready");
        for (int step = firstStep;; ++step) {
            if (const QString problem = store->run(step); !problem.isEmpty()) {
                std::fprintf(stderr, "step %d: %s\n", step, qPrintable(problem));
                return 4;
            }
            say(qPrintable(QStringLiteral("done %1").arg(step + 1)));
        }
    } catch (const StoreError& e) {
        std::fprintf(stderr, "%s\n", qPrintable(e.message()));
        return 5;
    }
}

// A fingerprint of every row of every table, rowids and all.
// The word index is left out: it is made from these rows, and soundness() checks it.
QByteArray fingerprint(Database& db)
{
    QCryptographicHash hash(QCryptographicHash::Sha1);
    const Recordset tables = db.openRecordset(
        QStringLiteral("SELECT name FROM sqlite_master WHERE type = 'table' AND name NOT GLOB "
                       "'*Words*' ORDER BY name"));
    for (int t = 0; t < tables.recordCount(); ++t) {
        const QString table = tables.text(t, QStringLiteral("name"));
        hash.addData(table.toUtf8() + '\x1e');
        const Recordset rows = db.openRecordset(
            QStringLiteral("SELECT rowid, * FROM \"%1\" ORDER BY rowid").arg(table));
        for (int r = 0; r < rows.recordCount(); ++r) {
            for (int c = 0; c < rows.columns().size(); ++c) {
                const QVariant v = rows.value(r, c);
                hash.addData(QByteArray::number(v.isNull() ? -1 : v.typeId()) + ':' +
                             v.toString().toUtf8() + '\x1f');
            }
            hash.addData("\x1d");
        }
    }
    return hash.result();
}

// What is wrong with a store on its own terms; "" when nothing is.
QString soundness(Database& db)
{
    const QString integrity = db.scalar(QStringLiteral("PRAGMA integrity_check")).toString();
    if (integrity != QLatin1String("ok"))
        return QStringLiteral("integrity_check: ") + integrity;
    if (StoreSchema::readVersion(db) != StoreSchema::kCurrentVersion ||
        db.scalar(QStringLiteral("SELECT COUNT(*) FROM Version")).toInt() != 1)
        return QStringLiteral("the Version table is not one row of the current version");
    const auto count = [&](const QString& sql) { return db.scalar(sql).toInt(); };
    const QStringList levels{"Cabinet", "Drawer", "Folder", "Document", "Page"};
    for (int i = 1; i < levels.size(); ++i)
        if (const int n = count(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE %2Id NOT IN "
                                               "(SELECT %2Id FROM %2)")
                                    .arg(levels[i], levels[i - 1])))
            return QStringLiteral("%1 rows of %2 have no parent").arg(n).arg(levels[i]);
    for (int i = 0; i + 1 < levels.size(); ++i)
        if (const int n =
                count(QStringLiteral("SELECT COUNT(*) FROM %1 WHERE Name IS NULL OR Name = ''")
                          .arg(levels[i])))
            return QStringLiteral("%1 rows of %2 have no name").arg(n).arg(levels[i]);
    // A word index that lost step with its rows would find too much or too little.
    for (const char* words : {"DocumentWords", "FolderWords"}) {
        try {
            db.execute(QStringLiteral("INSERT INTO %1 (%1) VALUES ('integrity-check')")
                           .arg(QLatin1String(words)));
        } catch (const StoreError& e) {
            return QLatin1String(words) + QStringLiteral(": ") + e.message();
        }
    }
    return QString();
}

// Every page file that the killed run's store points at has the bytes that the same page got
// in the run that was never killed: no file left by an earlier kill stands for a new page.
// A page whose copy the kill cut short has no file, and is found by the sweep; that is no
// failure here. "" when all is well.
QString pageFiles(Database& db, const AppHome& home, const AppHome& reference)
{
    const Recordset rs = db.openRecordset(QStringLiteral(
        "SELECT PageId FROM Page WHERE ShortcutYN IS NOT 'Y' AND (Filename IS NULL OR "
        "Filename = '')"));
    for (int i = 0; i < rs.recordCount(); ++i) {
        const qint32 id = rs.integer(i, QStringLiteral("PageId"));
        QFile found(PagePaths(home).computedPagePath(id));
        if (!found.open(QIODevice::ReadOnly))
            continue;
        QFile expected(PagePaths(reference).computedPagePath(id));
        if (!expected.open(QIODevice::ReadOnly))
            return QStringLiteral("page %1 has a file, and never got one without the kill").arg(id);
        if (found.readAll() != expected.readAll())
            return QStringLiteral("page %1 shows a picture that is not its own").arg(id);
    }
    return QString();
}

// The same commands, never killed: the fingerprint after any number of them.
struct Reference
{
    Reference(const QString& path, quint32 s) : home(path), seed(s) {}

    QByteArray after(int steps)
    {
        if (known.contains(steps))
            return known.value(steps);
        if (!store || steps < step) {
            store.reset();
            QDir(home.path()).removeRecursively();
            prepareHome(home);
            store = CommandStore::open(home, seed);
            step = 0;
        }
        for (; step < steps; ++step)
            if (const QString problem = store->run(step); !problem.isEmpty())
                throw StoreError(QStringLiteral("reference step %1: %2").arg(step).arg(problem));
        return known[steps] = fingerprint(store->db());
    }

    AppHome home; // as it stands after the last after()
    quint32 seed;
    std::unique_ptr<CommandStore> store;
    int step = 0;
    QMap<int, QByteArray> known;
};

// A kill of a child on the long-lived home (it goes on where the last one stopped), or on a
// new home, where the kill falls while the store is being made.
class Parent
{
public:
    Parent(const QString& self, quint32 seed, const QString& work)
        : m_self(self), m_seed(seed), m_work(work), m_longReference(work + "/reference-long", seed),
          m_freshReference(work + "/reference-fresh", seed), m_long(work + "/long")
    {
        prepareHome(m_long);
    }

    int committed = 0; // commands in the store after the last kill
    QString where;     // where the last kill fell, when it left a trace
    // What is wrong with the home after the kill; "" when nothing is.
    QString run(int index, bool fresh, int delayMs)
    {
        const AppHome home =
            fresh ? AppHome(m_work + QStringLiteral("/fresh%1").arg(index)) : m_long;
        const QString problem = killAndCheck(home, fresh, delayMs);
        if (fresh && problem.isEmpty())
            QDir(home.path()).removeRecursively();
        return problem;
    }

private:
    QString killAndCheck(const AppHome& home, bool fresh, int delayMs)
    {
        if (fresh)
            prepareHome(home);
        const int first = fresh ? 0 : m_longSteps;
        QProcess child;
        child.start(m_self, {QStringLiteral("--child"), home.path(), QString::number(first),
                             QString::number(m_seed)});
        if (!child.waitForStarted(30000))
            return QStringLiteral("the child did not start: ") + child.errorString();
        // The moment counts from the child's word that it is about to open the store.
        QByteArray out;
        QElapsedTimer clock;
        clock.start();
        while (!out.contains("opening\n") && clock.elapsed() < 60000 &&
               child.state() == QProcess::Running) {
            child.waitForReadyRead(50);
            out += child.readAllStandardOutput();
        }
        clock.restart();
        while (clock.elapsed() < delayMs && child.state() == QProcess::Running)
            QThread::usleep(500);
        const bool ranToTheKill = child.state() == QProcess::Running;
        child.kill();
        child.waitForFinished(30000);
        out += child.readAllStandardOutput();
        if (!ranToTheKill)
            return QString::asprintf("the child ended by itself (%d): ", child.exitCode()) +
                   QString::fromLocal8Bit(child.readAllStandardError());
        int reported = first;
        for (const QByteArray& line : out.split('\n'))
            if (line.startsWith("done "))
                reported = line.mid(5).toInt();
        const QString store = StoreSchema::storePath(home);
        where = QFile::exists(store + ".new")       ? " (a half-made store)"
                : QFile::exists(store + "-journal") ? " (inside a transaction)"
                                                    : "";

        // Opened as the program opens it: the home taken over from the killed run, the
        // journal of an unfinished command rolled back.
        HomeLock lock(home);
        if (!lock.acquire())
            return "the killed run's lock was not taken over: " + lock.refusal();
        Database db;
        StoreSchema::openDatabase(db, home);
        if (const QString unsound = soundness(db); !unsound.isEmpty())
            return unsound;
        // The kill may fall between a command's commit and its report.
        const QByteArray found = fingerprint(db);
        Reference& reference = fresh ? m_freshReference : m_longReference;
        if (found == reference.after(reported))
            committed = reported;
        else if (found == reference.after(reported + 1))
            committed = reported + 1;
        else
            return QString::asprintf("the store is not what %d finished commands left (nor %d): a "
                                     "command was half written or lost",
                                     reported, reported + 1);
        // Page files are never rewritten, so the reference at or past this step has them.
        reference.after(committed);
        if (!fresh)
            m_longSteps = committed;
        return pageFiles(db, home, reference.home);
    }

    QString m_self;
    quint32 m_seed;
    QString m_work;
    Reference m_longReference;
    Reference m_freshReference;
    AppHome m_long;
    int m_longSteps = 0;
};

int runParent(const QString& self, int runs, quint32 seed)
{
    QTemporaryDir work;
    if (!work.isValid()) {
        std::fprintf(stderr, "No temporary directory.\n");
        return 2;
    }
    std::printf("Seed %u; %d kill runs.\n", seed, runs);
    Parent parent(self, seed, work.path());
    QRandomGenerator moments(seed ^ 0x9e3779b9u);
    int passed = 0, failed = 0;
    for (int i = 0; i < runs; ++i) {
        // Every tenth run starts on a new home and is killed while the store is being made.
        const bool fresh = i % 10 == 9;
        const int delay = fresh ? int(moments.bounded(0, 12)) : int(moments.bounded(20, 201));
        QString problem;
        try {
            problem = parent.run(i, fresh, delay);
        } catch (const StoreError& e) {
            problem = e.message();
        }
        std::printf("run %3d: killed %3d ms after opening%s", i, delay, fresh ? " a new home" : "");
        if (problem.isEmpty())
            std::printf("%s, %d commands in the store\n", qPrintable(parent.where),
                        parent.committed);
        else
            std::printf(": FAILED: %s\n", qPrintable(problem));
        std::fflush(stdout);
        ++(problem.isEmpty() ? passed : failed);
    }
    std::printf("%d passed, %d failed\n", passed, failed);
    return failed == 0 && passed > 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    const QStringList args = QCoreApplication::arguments();
    if (args.value(1) == QLatin1String("--child") && args.size() >= 5)
        return runChild(args.at(2), args.at(3).toInt(), args.at(4).toUInt());
    const auto option = [&](const char* name, const QString& otherwise) {
        const qsizetype at = args.indexOf(QLatin1String(name));
        return at > 0 && at + 1 < args.size() ? args.at(at + 1) : otherwise;
    };
    return runParent(QCoreApplication::applicationFilePath(), option("--runs", "100").toInt(),
                     option("--seed", "20251123").toUInt());
}
