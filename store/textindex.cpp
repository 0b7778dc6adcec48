#include "store/textindex.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#include "core/pagewords.h"
#include "store/storeerror.h"
#include "store/storelog.h"

namespace qmr {

namespace {

// The words' boxes in reading order, packed and compressed. Words follow each other along a
// line, so each box is kept as its distance from the one before (zigzag varints: small numbers
// take one byte), which makes them a third of four plain numbers before compression.
void putNumber(QByteArray& out, qint64 value)
{
    quint64 zigzag = (quint64(value) << 1) ^ quint64(value >> 63);
    while (zigzag >= 0x80) {
        out += char(zigzag | 0x80);
        zigzag >>= 7;
    }
    out += char(zigzag);
}

bool takeNumber(const QByteArray& in, qsizetype& at, qint64& value)
{
    quint64 zigzag = 0;
    for (int shift = 0; shift < 64; shift += 7) {
        if (at >= in.size())
            return false;
        const auto byte = quint8(in.at(at++));
        zigzag |= quint64(byte & 0x7f) << shift;
        if (!(byte & 0x80)) {
            value = qint64(zigzag >> 1) ^ -qint64(zigzag & 1);
            return true;
        }
    }
    return false;
}

QByteArray packBoxes(const QList<TextIndex::Word>& words)
{
    QByteArray packed;
    QRect before;
    for (const TextIndex::Word& word : words) {
        const QRect& box = word.box;
        putNumber(packed, qint64(box.x()) - (before.x() + before.width()));
        putNumber(packed, qint64(box.y()) - before.y());
        putNumber(packed, box.width());
        putNumber(packed, qint64(box.height()) - before.height());
        before = box;
    }
    return qCompress(packed);
}

QList<QRect> unpackBoxes(const QByteArray& stored)
{
    const QByteArray packed = qUncompress(stored);
    QList<QRect> boxes;
    QRect before;
    qsizetype at = 0;
    qint64 dx, dy, w, dh;
    while (takeNumber(packed, at, dx) && takeNumber(packed, at, dy) && takeNumber(packed, at, w) &&
           takeNumber(packed, at, dh)) {
        const QRect box(int(before.x() + before.width() + dx), int(before.y() + dy), int(w),
                        int(before.height() + dh));
        boxes << box;
        before = box;
    }
    return boxes;
}

} // namespace

QString TextIndex::matchExpression(const PageWords& words)
{
    QStringList parts;
    for (const PageWords::Term& term : words.terms()) {
        QString phrase = term.words.join(QLatin1Char(' '));
        phrase.replace(QLatin1Char('"'), QLatin1String("\"\""));
        parts << QLatin1Char('"') + phrase + QLatin1Char('"') +
                     (term.prefix ? QStringLiteral("*") : QString());
    }
    return parts.join(QLatin1String(" AND "));
}

void TextIndex::attachTo(Database& store)
{
    if (!isAttached(store))
        store.execute(QStringLiteral("ATTACH DATABASE ? AS ") + attachedName(), {m_path});
}

bool TextIndex::isAttached(Database& store)
{
    return !store
                .scalar(QStringLiteral("SELECT 1 FROM pragma_database_list WHERE name = ?"),
                        {attachedName()})
                .isNull();
}

TextIndex::Stamp TextIndex::Stamp::of(const QString& path)
{
    const QFileInfo info(path);
    if (!info.exists())
        return {};
    return {info.size(), info.lastModified().toMSecsSinceEpoch()};
}

TextIndex::TextIndex(const QString& home) : m_path(QDir(home).filePath(fileName()))
{
}

void TextIndex::open()
{
    try {
        m_db.open(m_path);
        makeTables();
        return;
    } catch (const StoreError& error) {
        m_db.close();
        const QString aside = m_path + QStringLiteral(".damaged");
        qCWarning(lcStore).noquote()
            << "The page text index" << m_path << "could not be used (" << error.message()
            << "); it is set aside as" << aside << "and made anew";
        // The journal goes with its file: left behind, it would be played into the new one.
        for (const QString& suffix : {QString(), QStringLiteral("-journal")}) {
            QFile::remove(aside + suffix);
            if (QFile::exists(m_path + suffix) && !QFile::rename(m_path + suffix, aside + suffix))
                QFile::remove(m_path + suffix);
        }
    }
    m_db.open(m_path);
    makeTables();
}

void TextIndex::openAsItIs()
{
    m_db.open(m_path);
    makeTables();
}

void TextIndex::makeTables()
{
    // Pages of text are a few kilobytes a row: on small database pages each row would leave
    // much of its page empty. Only a new file takes it.
    m_db.execute(QStringLiteral("PRAGMA page_size = 16384"));
    Database::Transaction group(m_db);
    m_db.execute(QStringLiteral(
        "CREATE TABLE IF NOT EXISTS PageText (PageID INTEGER PRIMARY KEY, FileSize INTEGER NOT "
        "NULL, FileTime INTEGER NOT NULL, State INTEGER NOT NULL DEFAULT 0, WorkerEnds INTEGER "
        "NOT NULL DEFAULT 0, Body TEXT NOT NULL DEFAULT '', Boxes BLOB)"));
    // The words are kept once, in PageText; the full-text table holds only its index of them.
    m_db.execute(QStringLiteral(
        "CREATE VIRTUAL TABLE IF NOT EXISTS PageTextWords USING fts5(Body, content='PageText', "
        "content_rowid='PageID', tokenize='unicode61 remove_diacritics 2')"));
    m_db.execute(QStringLiteral(
        "CREATE TRIGGER IF NOT EXISTS PageText_Add AFTER INSERT ON PageText BEGIN INSERT INTO "
        "PageTextWords (rowid, Body) VALUES (new.PageID, new.Body); END"));
    m_db.execute(QStringLiteral(
        "CREATE TRIGGER IF NOT EXISTS PageText_Remove AFTER DELETE ON PageText BEGIN INSERT "
        "INTO PageTextWords (PageTextWords, rowid, Body) VALUES ('delete', old.PageID, "
        "old.Body); END"));
    m_db.execute(QStringLiteral(
        "CREATE TRIGGER IF NOT EXISTS PageText_Change AFTER UPDATE OF Body ON PageText BEGIN "
        "INSERT INTO PageTextWords (PageTextWords, rowid, Body) VALUES ('delete', old.PageID, "
        "old.Body); INSERT INTO PageTextWords (rowid, Body) VALUES (new.PageID, new.Body); END"));
    group.commit();
}

void TextIndex::together(const std::function<void()>& work)
{
    Database::Transaction group(m_db);
    work();
    group.commit();
}

void TextIndex::put(int pageId, const Stamp& stamp, const QList<Word>& words)
{
    QStringList texts;
    texts.reserve(words.size());
    for (const Word& word : words)
        // Composed as the index compares them ("ﬁ" is "fi"), and one word stays one word.
        texts << word.text.normalized(QString::NormalizationForm_KC)
                     .replace(QLatin1Char(' '), QChar(0xA0));
    Database::Transaction group(m_db);
    m_db.execute(QStringLiteral("DELETE FROM PageText WHERE PageID = ?"), {pageId});
    m_db.execute(
        QStringLiteral("INSERT INTO PageText (PageID, FileSize, FileTime, State, Body, "
                       "Boxes) VALUES (?, ?, ?, 0, ?, ?)"),
        {pageId, stamp.size, stamp.modified, texts.join(QLatin1Char(' ')), packBoxes(words)});
    group.commit();
}

void TextIndex::markUnreadable(int pageId, const Stamp& stamp)
{
    Database::Transaction group(m_db);
    const QVariant ends =
        m_db.scalar(QStringLiteral("SELECT WorkerEnds FROM PageText WHERE PageID = ?"), {pageId});
    m_db.execute(QStringLiteral("DELETE FROM PageText WHERE PageID = ?"), {pageId});
    m_db.execute(QStringLiteral("INSERT INTO PageText (PageID, FileSize, FileTime, State, "
                                "WorkerEnds) VALUES (?, ?, ?, 1, ?)"),
                 {pageId, stamp.size, stamp.modified, ends.isNull() ? 0 : ends.toInt()});
    group.commit();
}

int TextIndex::countWorkerEnd(int pageId, const Stamp& stamp)
{
    Database::Transaction group(m_db);
    const std::optional<Entry> before = entry(pageId);
    const int ends = before && before->state == State::Interrupted && before->stamp == stamp
                         ? before->workerEnds + 1
                         : 1;
    m_db.execute(QStringLiteral("DELETE FROM PageText WHERE PageID = ?"), {pageId});
    m_db.execute(QStringLiteral("INSERT INTO PageText (PageID, FileSize, FileTime, State, "
                                "WorkerEnds) VALUES (?, ?, ?, 2, ?)"),
                 {pageId, stamp.size, stamp.modified, ends});
    group.commit();
    return ends;
}

void TextIndex::drop(int pageId)
{
    m_db.execute(QStringLiteral("DELETE FROM PageText WHERE PageID = ?"), {pageId});
}

std::optional<TextIndex::Entry> TextIndex::entry(int pageId)
{
    const QHash<int, Entry> found = entries(m_db, pageId - 1, 1);
    if (const auto at = found.constFind(pageId); at != found.constEnd())
        return *at;
    return std::nullopt;
}

QList<int> TextIndex::pages()
{
    QList<int> ids;
    m_db.forEachRow(QStringLiteral("SELECT PageID FROM PageText ORDER BY PageID"), {},
                    [&](const Database::Row& row) { ids << int(row.integer(0)); });
    return ids;
}

QHash<int, TextIndex::Entry> TextIndex::entries()
{
    return entries(m_db, -1, -1);
}

QHash<int, TextIndex::Entry> TextIndex::entries(Database& db, int afterId, int count)
{
    QHash<int, Entry> found;
    db.forEachRow(QStringLiteral("SELECT PageID, FileSize, FileTime, State, WorkerEnds FROM "
                                 "PageText WHERE PageID > ? ORDER BY PageID LIMIT ?"),
                  {afterId, count}, [&](const Database::Row& row) {
                      found.insert(int(row.integer(0)), Entry{{row.integer(1), row.integer(2)},
                                                              State(row.integer(3)),
                                                              int(row.integer(4))});
                  });
    return found;
}

QList<int> TextIndex::pagesWith(const PageWords& words)
{
    QList<int> ids;
    if (words.isEmpty())
        return ids;
    m_db.forEachRow(QStringLiteral("SELECT rowid FROM PageTextWords WHERE PageTextWords MATCH ? "
                                   "ORDER BY rowid"),
                    {matchExpression(words)},
                    [&](const Database::Row& row) { ids << int(row.integer(0)); });
    return ids;
}

QList<TextIndex::Word> TextIndex::wordsOf(Database& db, const QString& table, int pageId)
{
    const Recordset rows = db.openRecordset(
        QStringLiteral("SELECT Body, Boxes FROM %1 WHERE PageID = ?").arg(table), {pageId});
    QList<Word> words;
    if (rows.isEmpty())
        return words;
    const QString body = rows.value(0, 0).toString();
    const QStringList texts = body.isEmpty() ? QStringList() : body.split(QLatin1Char(' '));
    const QList<QRect> boxes = unpackBoxes(rows.value(0, 1).toByteArray());
    for (qsizetype i = 0; i < texts.size(); ++i)
        words << Word{texts.at(i), i < boxes.size() ? boxes.at(i) : QRect()};
    return words;
}

QList<QRect> TextIndex::boxesOf(const QList<Word>& read, const PageWords& words)
{
    // A word as read may hold several index words ("e-mail,"): each stands for its box.
    QStringList folded;
    QList<int> owner;
    for (int i = 0; i < read.size(); ++i)
        for (const QString& piece : PageWords::wordsOf(read.at(i).text)) {
            folded << PageWords::fold(piece);
            owner << i;
        }
    QList<QRect> boxes;
    int last = -1;
    for (const int at : words.matchedWords(folded))
        if (owner.at(at) != last) {
            last = owner.at(at);
            boxes << read.at(last).box;
        }
    return boxes;
}

QList<TextIndex::Word> TextIndex::wordsOf(int pageId)
{
    return wordsOf(m_db, QStringLiteral("PageText"), pageId);
}

QList<QRect> TextIndex::boxesOf(int pageId, const PageWords& words)
{
    return boxesOf(wordsOf(m_db, QStringLiteral("PageText"), pageId), words);
}

QList<QRect> TextIndex::boxesOf(Database& store, int pageId, const QString& file,
                                const PageWords& words)
{
    if (words.isEmpty() || !isAttached(store))
        return {};
    const QString table = attachedName() + QStringLiteral(".PageText");
    // A picture changed since it was read (turned and saved) would get boxes that miss.
    const Recordset read = store.openRecordset(
        QStringLiteral("SELECT FileSize, FileTime FROM %1 WHERE PageID = ?").arg(table), {pageId});
    if (read.isEmpty() ||
        Stamp{read.value(0, 0).toLongLong(), read.value(0, 1).toLongLong()} != Stamp::of(file))
        return {};
    return boxesOf(wordsOf(store, table, pageId), words);
}

QList<qint32> TextIndex::pagesWith(Database& store, qint32 documentId, const PageWords& words)
{
    QList<qint32> ids;
    if (words.isEmpty() || !isAttached(store))
        return ids;
    store.forEachRow(
        QStringLiteral("SELECT PageId FROM Page WHERE DocumentId = ? AND PageId IN (SELECT rowid "
                       "FROM %1.PageTextWords WHERE PageTextWords MATCH ?) ORDER BY PageId")
            .arg(attachedName()),
        {documentId, matchExpression(words)},
        [&](const Database::Row& row) { ids << qint32(row.integer(0)); });
    return ids;
}

QString TextIndex::textOf(int pageId)
{
    return m_db.scalar(QStringLiteral("SELECT Body FROM PageText WHERE PageID = ?"), {pageId})
        .toString();
}

} // namespace qmr
