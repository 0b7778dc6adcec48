#pragma once

#include <QHash>
#include <QList>
#include <QRect>
#include <QString>
#include <functional>
#include <optional>

#include "store/database.h"

namespace qmr {

class PageWords;

// What is written on the pages and where: a file of its own in the home, apart from the store
// (which keeps its format), made from the page files and so made again when it is lost. Each
// entry remembers the size and time of the file it was read from, so that a page whose file
// has changed since is read again.
class TextIndex
{
public:
    struct Word
    {
        QString text;
        QRect box; // in the picture's pixels
        bool operator==(const Word&) const = default;
    };
    // The page file an entry was read from.
    struct Stamp
    {
        qint64 size = -1;
        qint64 modified = 0;                  // milliseconds since the epoch
        static Stamp of(const QString& path); // size -1 for a file that is not there
        bool operator==(const Stamp&) const = default;
    };
    // Interrupted: a reader ended while reading it; it is read again.
    enum class State { Read, Unreadable, Interrupted };
    struct Entry
    {
        Stamp stamp;
        State state = State::Read;
        int workerEnds = 0; // how often the reader ended while reading this page
    };

    static QString fileName() { return QStringLiteral("qmrtext.db"); }
    // The name the index has on the store's connection once attached to it.
    static QString attachedName() { return QStringLiteral("pagetext"); }
    // The full-text query of the words: each term quoted, a star after a beginning.
    static QString matchExpression(const PageWords& words);

    explicit TextIndex(const QString& home);
    // Opens the file, making it when missing. A file that cannot be read as an index is set
    // aside beside it (its name + ".damaged") and made anew, with a line in the log: what it
    // held is made from the pages again.
    void open();
    // Opens the file as it is, for a command beside the running reader (a search, a PDF, a
    // check): nothing is set aside, and a file that cannot be read fails with a StoreError.
    void openAsItIs();
    const QString& path() const { return m_path; }
    // Makes the index readable on the store's own connection (after open()), so that a search
    // of the documents can ask it within its one statement.
    void attachTo(Database& store);
    static bool isAttached(Database& store);

    // Runs `work` as one change of the file: many pages written at once (a rebuild, a bench)
    // cost one commit.
    void together(const std::function<void()>& work);
    // The page's words in reading order, in place of what it had.
    void put(int pageId, const Stamp& stamp, const QList<Word>& words);
    // The page's text cannot be read; it is skipped until its file changes.
    void markUnreadable(int pageId, const Stamp& stamp);
    // Counts a reader that ended on the page, read from the file `stamp` describes; how many
    // times that has happened to this file (a changed file starts again at one).
    int countWorkerEnd(int pageId, const Stamp& stamp);
    void drop(int pageId);
    std::optional<Entry> entry(int pageId);
    // Every page with an entry, in ascending order.
    QList<int> pages();
    // Every entry, by page, in one reading.
    QHash<int, Entry> entries();
    // The entries of the index file `db` after page `afterId`, at most `count`: a look apart
    // from the reader's connection, a block at a time, so that the reader never waits long.
    static QHash<int, Entry> entries(Database& db, int afterId, int count);
    // The pages whose text holds every term, in ascending order.
    QList<int> pagesWith(const PageWords& words);
    // Where on the page the terms are: the boxes of the words that match, in reading order.
    QList<QRect> boxesOf(int pageId, const PageWords& words);
    // The page's words as read, one space between them; "" for a page without an entry.
    QString textOf(int pageId);
    // The page's words with their boxes, in reading order; none for a page without an entry.
    QList<Word> wordsOf(int pageId);

    // Asked of the index attached to the store's connection (nothing when it is not): the
    // document's pages whose text holds every term, in ascending order, and where on a page
    // the terms are, when its text was read from `file` as it is now.
    static QList<qint32> pagesWith(Database& store, qint32 documentId, const PageWords& words);
    static QList<QRect> boxesOf(Database& store, int pageId, const QString& file,
                                const PageWords& words);

private:
    void makeTables();
    // The page's words with their boxes from the text table `table` of `db`.
    static QList<Word> wordsOf(Database& db, const QString& table, int pageId);
    static QList<QRect> boxesOf(const QList<Word>& read, const PageWords& words);

    QString m_path;
    Database m_db;
};

} // namespace qmr
