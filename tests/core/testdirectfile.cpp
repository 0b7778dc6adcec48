#include <QDir>
#include <QFile>
#include <QRandomGenerator>
#include <QTemporaryDir>
#include <QTest>
#include <sys/stat.h>

#include "core/directfile.h"
#include "tests/support/testrunner.h"

using namespace qmr;

namespace {

QByteArray noise(qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    QRandomGenerator generator(quint32(size) + 7);
    for (char& c : bytes)
        c = char(generator.bounded(256));
    return bytes;
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile f(path);
    return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray("(unreadable)");
}

} // namespace

class TestDirectFile : public QObject
{
    Q_OBJECT
private slots:
    // Sizes at and around the disk's blocks, where the padding and the cut to size can go
    // wrong by one.
    void copiedByteForByte_data()
    {
        QTest::addColumn<qsizetype>("size");
        QTest::newRow("empty") << qsizetype(0);
        QTest::newRow("one byte") << qsizetype(1);
        QTest::newRow("a block less one") << DirectFile::kBlock - 1;
        QTest::newRow("a block") << DirectFile::kBlock;
        QTest::newRow("a block and one") << DirectFile::kBlock + 1;
        QTest::newRow("a scan") << qsizetype(713 * 1024 + 17);
    }
    void copiedByteForByte()
    {
        QFETCH(qsizetype, size);
        QTemporaryDir dir;
        const QByteArray bytes = noise(size);
        const QString source = dir.filePath("Bob's scan.jpg");
        QVERIFY(writeFile(source, bytes));
        const QString target = dir.filePath("page.jpg");
        // An older file under the page's name is replaced whole.
        QVERIFY(writeFile(target, noise(3 * DirectFile::kBlock + 5)));

        QFile in(source);
        QVERIFY(in.open(QIODevice::ReadOnly));
        QString error;
        const std::optional<DirectFile> whole = DirectFile::read(in, &error);
        QVERIFY2(whole, qPrintable(error));
        QCOMPARE(whole->bytes(), bytes);
        // The contents start on a block, as the disk takes them.
        QCOMPARE(quintptr(whole->bytes().constData()) % DirectFile::kBlock, quintptr(0));
        const DirectFile copy = *whole; // shares the contents, which stay valid
        // Made as any other file is, under the umask (one that lets the group write, here).
        const mode_t umaskWas = ::umask(0002);
        const DirectFile::Outcome outcome = copy.writeTo(target, &error);
        ::umask(umaskWas);
        QCOMPARE(outcome, DirectFile::Outcome::Written);
        QCOMPARE(readFile(target), bytes);
        QCOMPARE(QFile::permissions(target) & QFile::WriteGroup, QFile::WriteGroup);
        QCOMPARE(copy.bytes(), bytes);
        // Nothing aside is left.
        QCOMPARE(QDir(dir.path()).entryList(QDir::Files).size(), 2);
    }

    void aFailedWriteLeavesNothingAndSaysWhy()
    {
        QTemporaryDir dir;
        const QString source = dir.filePath("scan.jpg");
        QVERIFY(writeFile(source, noise(5000)));
        QFile in(source);
        QVERIFY(in.open(QIODevice::ReadOnly));
        const std::optional<DirectFile> whole = DirectFile::read(in, nullptr);
        QVERIFY(whole);
        QString error;
        QCOMPARE(whole->writeTo(dir.filePath("gone/page.jpg"), &error),
                 DirectFile::Outcome::Failed);
        QCOMPARE(error, QString::fromLocal8Bit(std::strerror(ENOENT)));
        QVERIFY(!QFile::exists(dir.filePath("gone")));
    }

    // Read through its open handle when its name no longer leads to it.
    void aFileGoneAfterItsOpeningIsReadAllTheSame()
    {
        QTemporaryDir dir;
        const QByteArray bytes = noise(2 * DirectFile::kBlock + 9);
        const QString source = dir.filePath("scan.jpg");
        QVERIFY(writeFile(source, bytes));
        QFile in(source);
        QVERIFY(in.open(QIODevice::ReadOnly));
        QVERIFY(QFile::remove(source));
        QString error;
        const std::optional<DirectFile> whole = DirectFile::read(in, &error);
        QVERIFY2(whole, qPrintable(error));
        QCOMPARE(whole->bytes(), bytes);
        const QString target = dir.filePath("page.jpg");
        QCOMPARE(whole->writeTo(target, &error), DirectFile::Outcome::Written);
        QCOMPARE(readFile(target), bytes);
    }

    void aFileThatCannotBeReadIsRefused()
    {
        QTemporaryDir dir;
        QFile notOpen(dir.filePath("never.jpg"));
        QString error;
        QVERIFY(!DirectFile::read(notOpen, &error));
        QVERIFY(!error.isEmpty());
    }
};

QMR_TEST(TestDirectFile)
#include "testdirectfile.moc"
