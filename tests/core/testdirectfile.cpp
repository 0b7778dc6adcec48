#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <algorithm>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "core/directfile.h"
#include "coreharness.h"
#include "tests/support/datarow.h"
#include "tests/support/testrunner.h"

using namespace qmr;
using namespace qmr::test;

namespace {

QByteArray noise(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(quint32(size) + 7);
    for (char& c : bytes)
        c = char(generator.bounded(256));
    return bytes;
}

// Writes a file's pages to the disk and asks the cache to let them go, so that the next read
// comes from the disk.
bool evict(const QString& path)
{
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool done = ::fdatasync(fd) == 0 && ::posix_fadvise(fd, 0, 0, POSIX_FADV_DONTNEED) == 0;
    ::close(fd);
    return done;
}

// Whether any page of a file is still in memory: a file system held in memory keeps them
// whatever it is asked.
bool anyCached(const QString& path)
{
    const qint64 size = QFileInfo(path).size();
    if (size == 0)
        return false;
    const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return true;
    void* map = ::mmap(nullptr, size_t(size), PROT_READ, MAP_SHARED, fd, 0);
    ::close(fd);
    if (map == MAP_FAILED)
        return true;
    const long page = ::sysconf(_SC_PAGESIZE);
    std::vector<unsigned char> resident(size_t((size + page - 1) / page));
    const bool known = ::mincore(map, size_t(size), resident.data()) == 0;
    ::munmap(map, size_t(size));
    return !known ||
           std::any_of(resident.begin(), resident.end(), [](unsigned char r) { return r & 1; });
}

} // namespace

class TestDirectFile : public QObject
{
    Q_OBJECT
private slots:
    // Sizes at and around the disk's blocks, where the split between the whole blocks and
    // the rest can go wrong by one; read out of the page cache, and from the disk once the
    // cache has let the file go.
    void copiedByteForByte_data()
    {
        columns<qsizetype, bool>({"size", "fromDisk"});
        const QList<QPair<const char*, qsizetype>> sizes = {
            {"empty", 0},
            {"one byte", 1},
            {"a block less one", DirectFile::kBlock - 1},
            {"a block", DirectFile::kBlock},
            {"a block and one", DirectFile::kBlock + 1},
            {"two blocks less one", 2 * DirectFile::kBlock - 1},
            {"a scan", 713 * 1024 + 17}};
        for (const auto& [name, size] : sizes)
            for (const bool fromDisk : {false, true})
                QTest::addRow("%s, %s", name, fromDisk ? "from the disk" : "cached")
                    << size << fromDisk;
    }
    void copiedByteForByte()
    {
        auto [size, fromDisk] = test::fetch<qsizetype, bool>("size", "fromDisk");
        QTemporaryDir dir;
        const QByteArray bytes = noise(size);
        const QString source = dir.filePath("Bob's scan.jpg");
        QVERIFY(writeFile(source, bytes));
        if (fromDisk) {
            QVERIFY(evict(source));
            if (anyCached(source))
                QSKIP("This file system keeps the file in memory: no read from the disk here");
        }
        const QString target = dir.filePath("page.jpg");
        // An older file under the page's name is replaced whole.
        QVERIFY(writeFile(target, noise(3 * DirectFile::kBlock + 5)));

        QFile in(source);
        QVERIFY(in.open(QIODevice::ReadOnly));
        const Attempt<DirectFile> whole = DirectFile::read(in);
        QVERIFY2(whole, qPrintable(whole ? QString() : whole.why()));
        QCOMPARE(whole.value().bytes(), bytes);
        // The contents start on a block, as the disk takes them.
        QCOMPARE(quintptr(whole.value().bytes().constData()) % DirectFile::kBlock, quintptr(0));
        const DirectFile copy = whole.value(); // shares the contents, which stay valid
        // Made as any other file is, under the umask (one that lets the group write, here).
        const mode_t umaskWas = ::umask(0002);
        const Attempt<DirectFile::Outcome> outcome =
            copy.writeTo(target, PartFile::Placing::Replace);
        ::umask(umaskWas);
        QVERIFY(outcome);
        QCOMPARE(outcome.value(), DirectFile::Outcome::Written);
        QCOMPARE(readFile(target), bytes);
        QCOMPARE(QFile::permissions(target) & QFile::WriteGroup, QFile::WriteGroup);
        QCOMPARE(copy.bytes(), bytes);
        // Nothing aside is left.
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    }

    // Read through its open handle when its name no longer leads to it; a read or a write
    // that fails leaves nothing and says why.
    void aFileGoneIsReadAndAFailureLeavesNothing()
    {
        QTemporaryDir dir;
        const QByteArray bytes = noise(2 * DirectFile::kBlock + 9);
        const QString source = dir.filePath("scan.jpg");
        QVERIFY(writeFile(source, bytes));
        QFile in(source);
        QVERIFY(in.open(QIODevice::ReadOnly));
        QVERIFY(QFile::remove(source));
        const Attempt<DirectFile> whole = DirectFile::read(in);
        QVERIFY2(whole, qPrintable(whole ? QString() : whole.why()));
        QCOMPARE(whole.value().bytes(), bytes);
        const QString target = dir.filePath("page.jpg");
        const auto place = [&](PartFile::Placing placing) {
            const Attempt<DirectFile::Outcome> written = whole.value().writeTo(target, placing);
            return written ? written.value() : DirectFile::Outcome::Unsupported;
        };
        QCOMPARE(place(PartFile::Placing::Replace), DirectFile::Outcome::Written);
        QCOMPARE(readFile(target), bytes);
        // A new page's copy never takes the place of a file that stands there.
        QVERIFY(writeFile(target, "another page"));
        QCOMPARE(place(PartFile::Placing::NoReplace), DirectFile::Outcome::TargetExists);
        QCOMPARE(readFile(target), QByteArray("another page"));
        const Attempt<DirectFile::Outcome> written =
            whole.value().writeTo(dir.filePath("gone/page.jpg"), PartFile::Placing::Replace);
        QVERIFY(!written);
        QCOMPARE(written.why(), QString::fromLocal8Bit(std::strerror(ENOENT)));
        QVERIFY(!QFile::exists(dir.filePath("gone")));
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 1);
        // A file that cannot be read is refused, with a reason.
        QFile notOpen(dir.filePath("never.jpg"));
        const Attempt<DirectFile> read = DirectFile::read(notOpen);
        QVERIFY(!read);
        QVERIFY(!read.why().isEmpty());
    }
};

QMR_TEST(TestDirectFile)
#include "testdirectfile.moc"
