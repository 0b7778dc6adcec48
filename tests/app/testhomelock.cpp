#include <QCoreApplication>
#include <QDateTime>
#include <QDeadlineTimer>
#include <QDirIterator>
#include <QFileInfo>
#include <QScopeGuard>
#include <QSysInfo>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <linux/capability.h>
#include <optional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "core/homelock.h"
#include "store/schema.h"
#include "tests/app/apprun.h"

using namespace qmr;

namespace {

QString refusal(const test::TestHome& home, qint64 pid, const QString& host)
{
    return QStringLiteral("The home %1 is in use by Quillmere, process %2 on %3. Only one "
                          "Quillmere can work on a home at a time.")
        .arg(home.home().path(), QString::number(pid), host);
}

// Makes a file look last written `ageSeconds` ago.
bool ageFile(const QString& path, qint64 ageSeconds)
{
    QFile file(path);
    return file.open(QIODevice::ReadWrite) &&
           file.setFileTime(QDateTime::currentDateTime().addSecs(-ageSeconds),
                            QFileDevice::FileModificationTime);
}

// A lock file as a run writes it: pid, program, host name, host id, boot id.
bool writeLock(const test::TestHome& home, qint64 pid, const QString& program, const QString& host,
               const QByteArray& hostId, qint64 ageSeconds)
{
    QFile file(home.file(HomeLock::fileName()));
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QByteArray::number(pid) + '\n' + program.toUtf8() + '\n' + host.toUtf8() + '\n' +
               hostId + '\n' + QSysInfo::bootUniqueId() + '\n');
    file.close();
    return ageFile(file.fileName(), ageSeconds);
}

qint64 finishedPid()
{
    QProcess p;
    p.start(QStringLiteral("/bin/true"), {});
    if (!p.waitForStarted())
        return -1;
    const qint64 pid = p.processId();
    p.waitForFinished();
    return pid;
}

qint64 holderPid(const QString& lockPath)
{
    QLockFile reader(lockPath);
    qint64 pid = 0;
    return reader.getLockInfo(&pid, nullptr, nullptr) ? pid : -1;
}

// Root passes every permission check; without CAP_DAC_OVERRIDE in its effective set it meets
// them as the owner of a file does. Capabilities are per thread: this one's are put back.
struct WithoutPermissionOverride
{
    WithoutPermissionOverride()
    {
        if (::syscall(SYS_capget, &header, saved) != 0)
            return;
        __user_cap_data_struct less[2] = {saved[0], saved[1]};
        less[CAP_TO_INDEX(CAP_DAC_OVERRIDE)].effective &= ~CAP_TO_MASK(CAP_DAC_OVERRIDE);
        dropped = ::syscall(SYS_capset, &header, less) == 0;
    }
    ~WithoutPermissionOverride()
    {
        if (dropped)
            ::syscall(SYS_capset, &header, saved);
    }
    __user_cap_header_struct header{_LINUX_CAPABILITY_VERSION_3, 0};
    __user_cap_data_struct saved[2]{};
    bool dropped = false;
};

// No file of this process can grow past 0 bytes while it lives; a write fails with EFBIG
// instead of raising SIGXFSZ.
struct NoFileGrows
{
    NoFileGrows()
    {
        ::getrlimit(RLIMIT_FSIZE, &previous);
        rlimit none = previous;
        none.rlim_cur = 0;
        ::setrlimit(RLIMIT_FSIZE, &none);
    }
    ~NoFileGrows()
    {
        ::setrlimit(RLIMIT_FSIZE, &previous);
        std::signal(SIGXFSZ, previousHandler);
    }
    void (*previousHandler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit previous{};
};

bool canMakeFileIn(const QString& dir)
{
    QFile probe(dir + "/probe");
    const bool made = probe.open(QIODevice::WriteOnly);
    probe.remove();
    return made;
}

// A pipe whose writer stalls at its first write: it is full before the writer starts, and
// takes that write only once drained. What came after the filling is kept.
class FullPipe
{
public:
    explicit FullPipe(const QString& path) : m_path(path)
    {
        if (::mkfifo(QFile::encodeName(path).constData(), 0600) != 0)
            return;
        m_fd = ::open(QFile::encodeName(path).constData(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
        const QByteArray filler(4096, '.');
        while (m_fd >= 0 && ::write(m_fd, filler.constData(), size_t(filler.size())) > 0)
            m_filled += filler.size();
        // A last part smaller than the block, until not one more byte goes in.
        while (m_fd >= 0 && ::write(m_fd, ".", 1) == 1)
            ++m_filled;
    }
    ~FullPipe()
    {
        if (m_fd >= 0)
            ::close(m_fd);
    }
    bool isFull() const { return m_fd >= 0 && m_filled > 0; }
    const QString& path() const { return m_path; }
    // Reads what is there now.
    void drain()
    {
        char buffer[4096];
        ssize_t n;
        while ((n = ::read(m_fd, buffer, sizeof buffer)) > 0)
            m_read.append(buffer, n);
    }
    QString written() const { return QString::fromUtf8(m_read.mid(m_filled)); }

private:
    QString m_path;
    int m_fd = -1;
    qint64 m_filled = 0;
    QByteArray m_read;
};

int pageCount(const AppHome& home)
{
    return test::FixtureStore(home).db().scalar("SELECT COUNT(*) FROM Page").toInt();
}

QStringList partFiles(const QString& dir)
{
    QStringList found;
    QDirIterator it(dir, {"*.part"}, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (it.hasNext())
        found << it.next();
    return found;
}

} // namespace

class TestHomeLock : public QObject
{
    Q_OBJECT
private slots:
    void lockLeftInTheHome_data()
    {
        // holder: "self" (this process stands for a run that holds the lock), "reused" (this
        // process, but the lock names another program: the number was given out again),
        // "gone" (a finished process: a crash or a kill), "empty" (a run killed between making
        // its lock file and writing it), or another machine's pid; host: "this", or another
        // machine's name.
        test::columns<QString, QString, int, bool>({"holder", "host", "ageSeconds", "refused"});
        const int stale =
            int(std::chrono::duration_cast<std::chrono::seconds>(HomeLock::kStaleAfter).count());
        // A run that holds its fresh lock is the program itself, below.
        test::row("running here, refreshed a while ago", "self", "this", stale - 60, true);
        test::row("running here, not refreshed for too long (hung)", "self", "this", stale + 60,
                  false);
        test::row("gone here (crash or kill)", "gone", "this", 0, false);
        test::row("its number now another program's", "reused", "this", 0, false);
        test::row("other machine, refreshed", "4242", "scanner-pc", 30, true);
        test::row("other machine, not refreshed for too long", "4242", "scanner-pc", stale + 60,
                  false);
        test::row("unreadable", "empty", "this", 0, true);
        test::row("unreadable, left alone for too long", "empty", "this", stale + 60, false);
    }
    void lockLeftInTheHome()
    {
        const auto [holder, host, ageSeconds, refused] =
            test::fetch<QString, QString, int, bool>("holder", "host", "ageSeconds", "refused");
        test::AppRun run;
        const QString lock = run.home.file(HomeLock::fileName());
        const bool here = host == "this";
        const QString hostName = here ? QSysInfo::machineHostName() : host;
        qint64 pid = -1; // as an empty lock file reads
        if (holder == "empty") {
            QVERIFY(run.home.writeFile(HomeLock::fileName(), QByteArray()) &&
                    ageFile(lock, ageSeconds));
            if (refused)
                run.prompter.expect(
                    QStringLiteral("The home %1 is in use by another Quillmere, and its lock "
                                   "file %2 cannot be read. If no Quillmere is working on this "
                                   "home, remove that file.")
                        .arg(run.home.home().path(), lock));
        } else {
            pid = holder == "self" || holder == "reused" ? QCoreApplication::applicationPid()
                  : holder == "gone"                     ? finishedPid()
                                                         : holder.toLongLong();
            const QString program =
                holder == "reused" ? QStringLiteral("quillmere")
                                   : QFileInfo(QCoreApplication::applicationFilePath()).fileName();
            QVERIFY(pid > 0);
            QVERIFY(writeLock(run.home, pid, program, hostName,
                              here ? QSysInfo::machineUniqueId() : QByteArray("0badc0ffee0ddf00d"),
                              ageSeconds));
            if (refused)
                run.prompter.expect(refusal(run.home, pid, hostName));
        }
        QCOMPARE(run.start(false), !refused);
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
        QCOMPARE(QFile::exists(StoreSchema::storePath(run.home.home())), !refused);
        // Taken over: the lock names this run now.
        QCOMPARE(holderPid(lock), refused ? pid : QCoreApplication::applicationPid());
    }

    // The program itself, started as another run, holds the home until it ends: a signal ends
    // it as File > Exit does and frees the home; killed, it leaves its lock, which the next
    // run takes over.
    void otherProgramHoldsTheHomeUntilItEnds_data()
    {
        test::columns<int>({"signalNumber"});
        // SIGINT and SIGHUP end a batch run below, through the same watch.
        test::row("SIGTERM (a logout)", SIGTERM);
        test::row("SIGKILL", SIGKILL);
    }
    void otherProgramHoldsTheHomeUntilItEnds()
    {
        QFETCH(int, signalNumber);
        test::AppRun run;
        QTemporaryDir config;
        QProcess other;
        other.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        QVERIFY(test::startProgram(other, config.path(), {"--home", run.home.path()}));
        // It holds the home once its store is open (it listens for signals before it takes it).
        const QString lock = run.home.file(HomeLock::fileName());
        QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(StoreSchema::storePath(run.home.home())) &&
                                     holderPid(lock) == other.processId(),
                                 30000);
        run.prompter.expect(refusal(run.home, other.processId(), QSysInfo::machineHostName()));
        QVERIFY(!run.start(false));
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));

        QCOMPARE(::kill(pid_t(other.processId()), signalNumber), 0);
        QVERIFY(other.waitForFinished(60000));
        if (signalNumber == SIGKILL) {
            QVERIFY(QFile::exists(lock));
        } else {
            QCOMPARE(other.exitStatus(), QProcess::NormalExit);
            QCOMPARE(other.exitCode(), 0);
            // What File > Exit saves: the place in the tree (the first start's sample cabinet)
            // and the window's placement (maximised on a first start).
            Settings saved(config.filePath("QMR/Quillmere.conf"));
            QCOMPARE(saved.getSetting("LastNavTreeNodeKey"), QStringLiteral("CAB1"));
            QCOMPARE(saved.getSetting("frmNavTree.WindowState"), QStringLiteral("2"));
            QVERIFY(!QFile::exists(lock));
        }
        QVERIFY(run.start(false));
        QVERIFY2(run.prompter.verify(), qPrintable(run.prompter.report()));
        QCOMPARE(holderPid(lock), QCoreApplication::applicationPid());
    }

    void homeThatCannotBeWritten_data()
    {
        test::columns<QString>({"kind"});
        test::row("a file in its place", QString("file"));
        test::row("no permission to write", QString("read-only"));
        test::row("no file may grow (as on a full disk)", QString("no growth"));
    }
    void homeThatCannotBeWritten()
    {
        QFETCH(QString, kind);
        QTemporaryDir dir;
        test::AppRun other; // its settings, messages and choosers; the home is this one
        const QString home = dir.filePath("home");
        const int error = kind == "file" ? ENOTDIR : kind == "read-only" ? EACCES : EFBIG;
        const QString reason = QString::fromLocal8Bit(std::strerror(error));
        QString expected;
        if (kind == "file") {
            QVERIFY(QFile(home).open(QIODevice::WriteOnly));
            expected = QString("Cannot create the directory %1: %2.").arg(home, reason);
        } else {
            QVERIFY(QDir().mkpath(home));
            expected = QString("The home %1 cannot be locked for this run: the lock file %2 "
                               "cannot be made: %3.")
                           .arg(home, home + "/" + HomeLock::fileName(), reason);
        }
        const auto writable = qScopeGuard(
            [&] { QFile::setPermissions(home, QFile::permissions(home) | QFile::WriteOwner); });
        std::optional<WithoutPermissionOverride> asOwner;
        std::optional<NoFileGrows> noGrowth;
        if (kind == "read-only") {
            QVERIFY(QFile::setPermissions(home, QFile::ReadOwner | QFile::ExeOwner |
                                                    QFile::ReadGroup | QFile::ExeGroup |
                                                    QFile::ReadOther | QFile::ExeOther));
            if (canMakeFileIn(home))
                asOwner.emplace();
            if (canMakeFileIn(home))
                QSKIP("This test runs with the right to write where permissions forbid it.");
        }
        other.prompter.expect(expected);
        bool started = true;
        {
            if (kind == "no growth")
                noGrowth.emplace();
            Startup run{AppHome(home), other.home.settings(), other.prompter, other.choosers};
            started = run.start(false);
            noGrowth.reset();
        }
        asOwner.reset();
        QVERIFY(!started);
        QVERIFY2(other.prompter.verify(), qPrintable(other.prompter.report()));
        QVERIFY(!QFile::exists(home + "/" + HomeLock::fileName()));
        QVERIFY(!QFile::exists(home + "/qmr.mdb"));
    }

    void signalStopsABatchRun_data()
    {
        test::columns<QString, int>({"command", "signalNumber"});
        test::row("import, SIGINT", "import", SIGINT);
        test::row("export, SIGHUP", "export", SIGHUP);
    }
    void signalStopsABatchRun()
    {
        const auto [command, signalNumber] = test::fetch<QString, int>("command", "signalNumber");
        test::TestHome home;
        QTemporaryDir config, out;
        {
            test::FixtureStore store(home.home());
            store.fillSample();
            store.cabinet("Target");
        }
        const QString exchange = out.filePath("x");
        const int pagesBefore = pageCount(home.home());
        if (command == "import") {
            QProcess exporting;
            QVERIFY(
                test::startProgram(exporting, config.path(),
                                   {"--home", home.path(), "--export", "Home Papers", exchange}));
            QVERIFY(exporting.waitForFinished(60000));
            QCOMPARE(exporting.exitCode(), 0);
        }
        // The run stalls at its first line of progress, with the home taken, until the test
        // reads what it writes; the signal comes while it waits there or before.
        FullPipe progress(out.filePath("progress"));
        QVERIFY(progress.isFull());
        QProcess program;
        program.setStandardErrorFile(progress.path());
        QVERIFY(test::startProgram(
            program, config.path(),
            command == "export"
                ? QStringList{"--home", home.path(), "--export", "Home Papers", out.filePath("y")}
                : QStringList{"--home", home.path(), "--import", exchange + "/Home Papers",
                              "Target"}));
        const QString lock = home.file(HomeLock::fileName());
        QTRY_VERIFY_WITH_TIMEOUT(holderPid(lock) == program.processId(), 30000);
        QCOMPARE(::kill(pid_t(program.processId()), signalNumber), 0);
        QDeadlineTimer deadline(60000);
        while (program.state() != QProcess::NotRunning && !deadline.hasExpired()) {
            progress.drain();
            program.waitForFinished(20);
        }
        progress.drain();
        QCOMPARE(program.state(), QProcess::NotRunning);
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 1);
        const QString err = progress.written();
        QVERIFY2(err.contains("quillmere: The " + command +
                              " was stopped before its end, as the program was asked to quit"),
                 qPrintable(err));
        QVERIFY(!QFile::exists(lock));
        QCOMPARE(partFiles(out.path()), QStringList());
        // Nothing came across: the walk stopped at its first step.
        QCOMPARE(pageCount(home.home()), pagesBefore);
    }
};

QMR_TEST(TestHomeLock)
#include "testhomelock.moc"
