#pragma once

#include <QDir>
#include <QFile>
#include <QImage>
#include <QSet>
#include <QTemporaryDir>
#include <fcntl.h>
#include <functional>
#include <memory>
#include <unistd.h>

#include "exchange/diskfilesystem.h"
#include "store/session.h"
#include "tests/support/commandharness.h"
#include "tests/support/datarow.h"
#include "tests/support/fixturestore.h"
#include "tests/support/scriptedprompter.h"

namespace qmr::test {

// The real file system with failures on order: the n-th copy (counted from 1) fails as the
// test says, files can be made unreadable, and a hook runs after every copy.
class TestFileSystem : public DiskFileSystem
{
public:
    QHash<int, FileOutcome::Kind> failCopy; // copy number -> failure
    QSet<QString> unreadable;
    std::function<void(int)> afterCopy;
    int copies = 0;

    FileOutcome copyFile(const QString& source, const QString& target, LinkRule links) override
    {
        return faulty(source, target,
                      [&] { return DiskFileSystem::copyFile(source, target, links); });
    }
    FileOutcome copyIntoStore(const QString& source, const QString& target,
                              QByteArray* contents = nullptr) override
    {
        return faulty(source, target,
                      [&] { return DiskFileSystem::copyIntoStore(source, target, contents); });
    }
    std::optional<QStringList> readLines(const QString& path) const override
    {
        if (unreadable.contains(path))
            return std::nullopt;
        return DiskFileSystem::readLines(path);
    }

private:
    FileOutcome faulty(const QString& source, const QString& target,
                       const std::function<FileOutcome()>& copy)
    {
        ++copies;
        if (unreadable.contains(source))
            return FileOutcome::failed(FileOutcome::Kind::ReadFailed,
                                       "Cannot read " + source + ": Permission denied");
        if (failCopy.contains(copies))
            return FileOutcome::failed(failCopy.value(copies),
                                       "Cannot write " + target + ": No space left on device");
        const FileOutcome outcome = copy();
        if (afterCopy)
            afterCopy(copies);
        return outcome;
    }
};

// A scripted prompter that also runs a step of the test when a question comes (a new disk
// put in, say) before it answers.
class HookPrompter : public ScriptedPrompter
{
public:
    std::function<void(const QString&)> onAsk;
    Answer ask(const QString& text, Buttons buttons) override
    {
        if (onAsk)
            onAsk(text);
        return ScriptedPrompter::ask(text, buttons);
    }
};

// A home with a store, a second directory outside it, and the seams of a command.
struct ExchangeFixture : CommandHarness<HookPrompter>
{
    QTemporaryDir outside;
    std::unique_ptr<FixtureStore> store;

    ExchangeFixture()
    {
        store = std::make_unique<FixtureStore>(home.home());
        openSession();
    }
    QString outsidePath(const QString& relative) const { return outside.filePath(relative); }

    // Writes a small JPEG (or any bytes) to a path, making its directory.
    static bool writeImage(const QString& path, QColor colour = Qt::darkBlue)
    {
        QDir().mkpath(QFileInfo(path).path());
        QImage image(120, 160, QImage::Format_RGB32);
        image.fill(colour);
        return image.save(path, "JPG");
    }
    static bool writeBytes(const QString& path, const QByteArray& bytes)
    {
        QDir().mkpath(QFileInfo(path).path());
        QFile f(path);
        return f.open(QIODevice::WriteOnly) && f.write(bytes) == bytes.size();
    }
    // A file under a name of raw bytes (one that is not UTF-8, say) in an existing directory.
    static bool writeRaw(const QByteArray& path, const QByteArray& bytes)
    {
        const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_EXCL, 0644);
        const bool written =
            fd >= 0 && ::write(fd, bytes.constData(), size_t(bytes.size())) == bytes.size();
        if (fd >= 0)
            ::close(fd);
        return written;
    }
    static QByteArray readBytes(const QString& path)
    {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }

    // A text with "@home" (and "@HOME", upper-cased) for the home, "@out" for the outside
    // directory, and the further marks given.
    QString placed(QString text, const QList<std::pair<QString, QString>>& marks = {}) const
    {
        for (const auto& [mark, path] : marks)
            text.replace(mark, path);
        return text.replace("@home", home.path())
            .replace("@HOME", home.path().toUpper())
            .replace("@out", outside.path());
    }
    // The prompter expects each text, its marks placed, and gives the answer beside it.
    void expectAll(const QStringList& texts, const QList<int>& answers,
                   const QList<std::pair<QString, QString>>& marks = {})
    {
        for (int i = 0; i < texts.size(); ++i)
            prompter.expect(placed(texts.at(i), marks), Prompter::Answer(answers.at(i)));
    }

    int count(const QString& table) { return db().scalar("SELECT COUNT(*) FROM " + table).toInt(); }
    // Drawers, folders, documents and pages in the store.
    QList<int> counts()
    {
        return {count("Drawer"), count("Folder"), count("Document"), count("Page")};
    }
    // The item at a path of names below a cabinet: a drawer, its folder, then its document.
    qint32 itemAt(qint32 cabinet, const QStringList& names)
    {
        const Level levels[] = {Level::Drawer, Level::Folder, Level::Document};
        qint32 id = cabinet;
        // Deeper than a document there is no item: -1, as for a name not found.
        if (names.size() > 3)
            return -1;
        for (int i = 0; i < names.size(); ++i)
            id = session->items().childNamed(levels[i], id, names.at(i));
        return id;
    }
    QByteArray storedBytes(qint32 page)
    {
        return readBytes(session->paths().computedPagePath(page));
    }
    // One column of a row, by the table's id.
    QVariant fieldOf(const QString& table, const QString& column, qint32 id)
    {
        return field(QString("SELECT %2 FROM %1 WHERE %1Id = ?").arg(table, column), {id});
    }
    QVariant field(const QString& sql, const QVariantList& binds = {})
    {
        return db().scalar(sql, binds);
    }
    // A page row with a stored file of its own: a picture saved elsewhere, or a shortcut.
    qint32 storedPage(qint32 documentId, int number, const QString& filename, bool shortcut)
    {
        db().execute("INSERT INTO Page (DocumentId, PageNumber, Filename, ShortcutYN, Filetype, "
                     "ScanDate, FileSize) VALUES (?, ?, ?, ?, ?, '2020-01-02 00:00:00', ?)",
                     {documentId, number, filename, shortcut ? QVariant("Y") : QVariant(),
                      shortcut ? "PDF" : "JPG", QFileInfo(filename).size()});
        return db().lastInsertId();
    }
    // A cabinet of `documents` documents with `pages` pages each, in one drawer and folder.
    qint32 filledCabinet(const QString& name, int documents, int pages)
    {
        const qint32 cabinet = store->cabinet(name);
        const qint32 folder = store->folder(store->drawer(cabinet, "Drawer"), "Folder");
        for (int d = 1; d <= documents; ++d) {
            const qint32 doc = store->document(folder, QString("Document %1").arg(d));
            for (int p = 1; p <= pages; ++p)
                store->page(doc, p, QSize(160, 200));
        }
        return cabinet;
    }
    void setText(const QString& table, const QString& column, qint32 id, const QVariant& value)
    {
        db().execute(QString("UPDATE %1 SET %2 = ? WHERE %1Id = ?").arg(table, column),
                     {value, id});
    }
};

} // namespace qmr::test
