#include "store/database.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QStringDecoder>
#include <cstring>
#include <sqlite3.h>

#include "core/nameorder.h"
#include "store/storecolumns.h"
#include "store/storeerror.h"

namespace qmr {

namespace {

// Stored text as it was written. QString::fromUtf8 drops a byte-order mark at the start,
// which would turn a name that begins with U+FEFF into another name.
QString storedText(const void* data, int size)
{
    QStringDecoder utf8(QStringDecoder::Utf8,
                        QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    return utf8.decode(QByteArrayView(static_cast<const char*>(data), size));
}

// Text compares without regard to case, beyond ASCII too: the schema asks for NOCASE and
// this connection supplies a Unicode-aware one under that name.
int compareNoCase(void*, int len1, const void* s1, int len2, const void* s2)
{
    return compareNames(storedText(s1, len1), storedText(s2, len2));
}

// LIKE with % and _, an optional escape character, and letters compared without regard to
// case beyond ASCII too, as names are: "müller" finds "Müller".
bool likeMatches(const QList<uint>& pattern, const QList<uint>& text, uint escape)
{
    qsizetype p = 0, t = 0;
    qsizetype starP = -1, starT = 0; // where the last % stood, and the text it had reached
    while (t < text.size()) {
        if (p < pattern.size() && pattern.at(p) == '%') {
            starP = ++p;
            starT = t;
            continue;
        }
        if (p < pattern.size()) {
            uint c = pattern.at(p);
            bool literal = false;
            if (escape && c == escape && p + 1 < pattern.size()) {
                c = pattern.at(++p);
                literal = true;
            }
            if ((!literal && c == '_') || c == text.at(t)) {
                ++p;
                ++t;
                continue;
            }
        }
        if (starP < 0)
            return false;
        p = starP; // let the last % take one more character
        t = ++starT;
    }
    while (p < pattern.size() && pattern.at(p) == '%')
        ++p;
    return p == pattern.size();
}

bool isAscii(const unsigned char* text)
{
    for (; *text; ++text)
        if (*text >= 0x80)
            return false;
    return true;
}

// A pattern of the form %piece% whose piece is plain ASCII without wildcards: what a search
// for a word binds. It is looked for as it is, read once per statement rather than once per
// row, which makes a search over many rows several times faster than the general matching.
class PiecePattern
{
public:
    enum class Match { Yes, No, Unknown };

    // Null when the pattern has another form.
    static PiecePattern* compile(const unsigned char* pattern, int size)
    {
        if (!pattern || size < 2 || pattern[0] != '%' || pattern[size - 1] != '%')
            return nullptr;
        auto* compiled = new PiecePattern;
        for (int i = 1; i < size - 1; ++i) {
            const unsigned char c = pattern[i];
            if (c == 0 || c >= 0x80 || c == '%' || c == '_') {
                delete compiled;
                return nullptr;
            }
            compiled->m_piece += char(lower(c));
        }
        if (!compiled->m_piece.isEmpty()) {
            const char first = compiled->m_piece.at(0);
            compiled->m_first += first;
            if (first >= 'a' && first <= 'z')
                compiled->m_first += char(first - 32);
        }
        return compiled;
    }
    static void destroy(void* pattern) { delete static_cast<PiecePattern*>(pattern); }

    // Found without regard to ASCII case is a match under any folding of case. Not found in
    // a text that is not all ASCII is for the general matching to decide: folding beyond
    // ASCII may yet make it match. `text` ends with a zero byte after `size` bytes, as the
    // engine gives it.
    Match find(const unsigned char* text, int size) const
    {
        const qsizetype length = m_piece.size();
        if (length == 0)
            return Match::Yes;
        const char* start = reinterpret_cast<const char*>(text);
        const char* piece = m_piece.constData();
        const char* first = m_first.constData();
        // The first letter in either case is looked for by the C library, many bytes at once.
        for (qsizetype at = qsizetype(std::strcspn(start, first)); at + length <= size;
             at += 1 + qsizetype(std::strcspn(start + at + 1, first))) {
            qsizetype k = 0;
            while (k < length && lower(start[at + k]) == piece[k])
                ++k;
            if (k == length)
                return Match::Yes;
        }
        return isAscii(text, size) ? Match::No : Match::Unknown;
    }

private:
    static char lower(char c) { return c >= 'A' && c <= 'Z' ? char(c + 32) : c; }
    static bool isAscii(const unsigned char* text, int size)
    {
        quint64 seen = 0;
        int i = 0;
        for (; i + 8 <= size; i += 8) {
            quint64 word;
            std::memcpy(&word, text + i, 8);
            seen |= word;
        }
        for (; i < size; ++i)
            seen |= text[i];
        return (seen & 0x8080808080808080ULL) == 0;
    }

    QByteArray m_piece; // in lower case
    QByteArray m_first; // its first character in either case
};

// The pattern of a call as compiled for its statement, compiled at the first row; null when
// it has another form.
const PiecePattern* piecePattern(sqlite3_context* context, sqlite3_value* pattern)
{
    // A pattern of another form is remembered as such, so as not to be read at every row.
    static char otherForm;
    void* known = sqlite3_get_auxdata(context, 0);
    if (!known) {
        PiecePattern* compiled =
            PiecePattern::compile(sqlite3_value_text(pattern), sqlite3_value_bytes(pattern));
        if (compiled)
            sqlite3_set_auxdata(context, 0, compiled, PiecePattern::destroy);
        else
            sqlite3_set_auxdata(context, 0, &otherForm, nullptr);
        // Setting may fail and free it at once; asking again is the safe answer.
        known = sqlite3_get_auxdata(context, 0);
    }
    return known == &otherForm ? nullptr : static_cast<const PiecePattern*>(known);
}

void likeFunction(sqlite3_context* context, int argc, sqlite3_value** argv)
{
    for (int i = 0; i < argc; ++i)
        if (sqlite3_value_type(argv[i]) == SQLITE_NULL) {
            sqlite3_result_null(context);
            return;
        }
    if (argc == 2) {
        if (const PiecePattern* piece = piecePattern(context, argv[0])) {
            const auto* text = sqlite3_value_text(argv[1]);
            const PiecePattern::Match match = text ? piece->find(text, sqlite3_value_bytes(argv[1]))
                                                   : PiecePattern::Match::Unknown;
            if (match != PiecePattern::Match::Unknown) {
                sqlite3_result_int(context, match == PiecePattern::Match::Yes);
                return;
            }
        }
    }
    const auto* pattern = sqlite3_value_text(argv[0]);
    const auto* text = sqlite3_value_text(argv[1]);
    const auto* escapeText = argc == 3 ? sqlite3_value_text(argv[2]) : nullptr;
    if (!pattern || !text) {
        sqlite3_result_null(context);
        return;
    }
    const QString escape =
        escapeText ? QString::fromUtf8(reinterpret_cast<const char*>(escapeText)) : QString();
    if (escapeText && escape.toUcs4().size() != 1) {
        sqlite3_result_error(context, "ESCAPE expression must be a single character", -1);
        return;
    }
    // Plain ASCII, by far the most common, is the engine's own business.
    if (isAscii(pattern) && isAscii(text) && (!escapeText || isAscii(escapeText))) {
        const unsigned int esc = escapeText ? escapeText[0] : 0;
        sqlite3_result_int(context, sqlite3_strlike(reinterpret_cast<const char*>(pattern),
                                                    reinterpret_cast<const char*>(text), esc) == 0);
        return;
    }
    const auto folded = [](const unsigned char* utf8) {
        return QString::fromUtf8(reinterpret_cast<const char*>(utf8)).toCaseFolded().toUcs4();
    };
    const uint esc = escapeText ? escape.toCaseFolded().toUcs4().value(0) : 0;
    sqlite3_result_int(context, likeMatches(folded(pattern), folded(text), esc));
}

void bindValue(sqlite3_stmt* stmt, int index, const QVariant& value)
{
    if (value.isNull()) {
        sqlite3_bind_null(stmt, index);
        return;
    }
    switch (value.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Bool:
        sqlite3_bind_int64(stmt, index, value.toLongLong());
        return;
    case QMetaType::Double:
    case QMetaType::Float:
        sqlite3_bind_double(stmt, index, value.toDouble());
        return;
    case QMetaType::QDate: {
        const QByteArray t =
            value.toDate().toString(QStringLiteral("yyyy-MM-dd 00:00:00")).toUtf8();
        sqlite3_bind_text(stmt, index, t.constData(), int(t.size()), SQLITE_TRANSIENT);
    }
        return;
    case QMetaType::QDateTime: {
        const QByteArray t =
            value.toDateTime().toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")).toUtf8();
        sqlite3_bind_text(stmt, index, t.constData(), int(t.size()), SQLITE_TRANSIENT);
        return;
    }
    case QMetaType::QByteArray: {
        const QByteArray b = value.toByteArray();
        sqlite3_bind_blob(stmt, index, b.constData(), int(b.size()), SQLITE_TRANSIENT);
        return;
    }
    default: {
        const QByteArray t = value.toString().toUtf8();
        sqlite3_bind_text(stmt, index, t.constData(), int(t.size()), SQLITE_TRANSIENT);
        return;
    }
    }
}

QVariant columnValue(sqlite3_stmt* stmt, int column)
{
    switch (sqlite3_column_type(stmt, column)) {
    case SQLITE_INTEGER:
        return QVariant(qlonglong(sqlite3_column_int64(stmt, column)));
    case SQLITE_FLOAT:
        return QVariant(sqlite3_column_double(stmt, column));
    case SQLITE_TEXT:
        return QVariant(
            storedText(sqlite3_column_text(stmt, column), sqlite3_column_bytes(stmt, column)));
    case SQLITE_BLOB:
        return QVariant(QByteArray(static_cast<const char*>(sqlite3_column_blob(stmt, column)),
                                   sqlite3_column_bytes(stmt, column)));
    default:
        return QVariant();
    }
}

} // namespace

Database::~Database()
{
    close();
}

void Database::open(const QString& path)
{
    close();
    sqlite3* db = nullptr;
    const int rc = sqlite3_open_v2(path.toUtf8().constData(), &db,
                                   SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, nullptr);
    if (rc != SQLITE_OK) {
        const QString message =
            db ? QString::fromUtf8(sqlite3_errmsg(db)) : QString::fromUtf8(sqlite3_errstr(rc));
        sqlite3_close(db);
        throw StoreError(
            QCoreApplication::translate("qmr::Database", "Cannot open the store %1: %2")
                .arg(path, message));
    }
    m_db = db;
    m_path = path;
    sqlite3_busy_timeout(m_db, 2000);
    sqlite3_extended_result_codes(m_db, 1);
    sqlite3_create_collation(m_db, "NOCASE", SQLITE_UTF8, nullptr, compareNoCase);
    for (const int args : {2, 3})
        sqlite3_create_function(m_db, "like", args, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr,
                                likeFunction, nullptr, nullptr);
    // Reading the schema proves that the file is a store at all.
    try {
        run(QStringLiteral("SELECT count(*) FROM sqlite_master"), {});
        // A rollback journal, not a write-ahead log: the home may lie on a shared disk, where
        // the log's shared memory does not work. With synchronous=FULL the journal is on the
        // disk before the store is changed, and the store before a commit returns. So a
        // transaction that has committed survives the program being killed and the machine
        // losing power, and one that has not is rolled back whole (from the journal) by the
        // next open: the store is always as the last committed command left it.
        run(QStringLiteral("PRAGMA journal_mode=DELETE"), {});
        run(QStringLiteral("PRAGMA synchronous=FULL"), {});
    } catch (const StoreError&) {
        const QString message = QString::fromUtf8(sqlite3_errmsg(m_db));
        close();
        throw StoreError(
            QCoreApplication::translate("qmr::Database", "Cannot open the store %1: %2")
                .arg(path, message));
    }
}

void Database::close()
{
    finalizeAll();
    if (m_db) {
        sqlite3_close_v2(m_db);
        m_db = nullptr;
    }
}

void Database::fail() const
{
    const int code = sqlite3_extended_errcode(m_db);
    const QString engine = QString::fromUtf8(sqlite3_errmsg(m_db));
    if (code == SQLITE_CONSTRAINT_CHECK)
        if (const std::optional<StoreError> width = StoreColumns::constraintError(engine))
            throw *width;
    if (code == SQLITE_FULL)
        throw StoreError(
            QCoreApplication::translate("qmr::Database", "The disk is full: %1").arg(engine));
    throw StoreError(QCoreApplication::translate("qmr::Database",
                                                 "The store could not carry out the command: %1")
                         .arg(engine));
}

void Database::finalizeAll()
{
    for (sqlite3_stmt* stmt : std::as_const(m_statements))
        sqlite3_finalize(stmt);
    m_statements.clear();
}

sqlite3_stmt* Database::prepare(const QString& sql)
{
    const QByteArray text = sql.toUtf8();
    if (sqlite3_stmt* cached = m_statements.value(text)) {
        sqlite3_reset(cached);
        sqlite3_clear_bindings(cached);
        return cached;
    }
    sqlite3_stmt* stmt = nullptr;
    if (sqlite3_prepare_v2(m_db, text.constData(), int(text.size()), &stmt, nullptr) != SQLITE_OK)
        fail();
    if (!stmt) // only white space or a comment
        return nullptr;
    // Built statements (the find queries) differ every time; they are not worth keeping.
    if (m_statements.size() >= 256)
        finalizeAll();
    m_statements.insert(text, stmt);
    return stmt;
}

sqlite3_stmt* Database::start(const QString& sql, const QVariantList& binds)
{
    if (!m_db)
        throw StoreError(QCoreApplication::translate("qmr::Database", "The store is not open."));
    sqlite3_stmt* stmt = prepare(sql);
    if (!stmt)
        return nullptr;
    for (int i = 0; i < binds.size(); ++i)
        bindValue(stmt, i + 1, binds.at(i));
    return stmt;
}

namespace {

// Resets a statement at the end, so that a kept statement holds no read lock between
// commands.
struct Resetter
{
    sqlite3_stmt* s;
    ~Resetter() { sqlite3_reset(s); }
};

} // namespace

Recordset Database::run(const QString& sql, const QVariantList& binds)
{
    sqlite3_stmt* stmt = start(sql, binds);
    if (!stmt)
        return Recordset();
    const Resetter resetter{stmt};

    QVector<QVector<QVariant>> rows;
    int rc = sqlite3_step(stmt);
    // The shape is read after the first step: a kept statement is prepared anew there when
    // the schema has changed since.
    QStringList columns;
    const int count = sqlite3_column_count(stmt);
    for (int c = 0; c < count; ++c)
        columns << QString::fromUtf8(sqlite3_column_name(stmt, c));
    for (; rc != SQLITE_DONE; rc = sqlite3_step(stmt)) {
        if (rc != SQLITE_ROW)
            fail();
        QVector<QVariant> row;
        row.reserve(count);
        for (int c = 0; c < count; ++c)
            row << columnValue(stmt, c);
        rows << row;
    }
    return Recordset(columns, rows);
}

void Database::forEachRow(const QString& sql, const QVariantList& binds,
                          const std::function<void(const Row&)>& visit)
{
    sqlite3_stmt* stmt = start(sql, binds);
    if (!stmt)
        return;
    const Resetter resetter{stmt};
    const Row row(stmt);
    for (int rc = sqlite3_step(stmt); rc != SQLITE_DONE; rc = sqlite3_step(stmt)) {
        if (rc != SQLITE_ROW)
            fail();
        visit(row);
    }
}

bool Database::Row::isNull(int column) const
{
    return sqlite3_column_type(m_stmt, column) == SQLITE_NULL;
}

qint64 Database::Row::integer(int column) const
{
    return sqlite3_column_int64(m_stmt, column);
}

QString Database::Row::text(int column) const
{
    const unsigned char* text = sqlite3_column_text(m_stmt, column);
    return text ? storedText(text, sqlite3_column_bytes(m_stmt, column)) : QString();
}

void Database::execute(const QString& sql, const QVariantList& binds)
{
    run(sql, binds);
}

Recordset Database::openRecordset(const QString& sql, const QVariantList& binds)
{
    return run(sql, binds);
}

QVariant Database::scalar(const QString& sql, const QVariantList& binds)
{
    const Recordset rs = run(sql, binds);
    if (rs.recordCount() < 1 || rs.columns().isEmpty())
        return QVariant();
    return rs.value(0, 0);
}

qint32 Database::lastInsertId() const
{
    return m_db ? static_cast<qint32>(sqlite3_last_insert_rowid(m_db)) : -1;
}

bool Database::hasColumn(const QString& table, const QString& column)
{
    const Recordset rs = run(QStringLiteral("SELECT name FROM pragma_table_info(?)"), {table});
    for (int i = 0; i < rs.recordCount(); ++i)
        if (rs.text(i, QStringLiteral("name")).compare(column, Qt::CaseInsensitive) == 0)
            return true;
    return false;
}

int Database::runtimeVersion()
{
    return sqlite3_libversion_number();
}

Database::Transaction::Transaction(Database& db)
    : m_db(db), m_name(QStringLiteral("qmr%1").arg(db.m_depth))
{
    // A savepoint outside any transaction begins one; inside it marks a point to return to.
    m_db.execute(QStringLiteral("SAVEPOINT ") + m_name);
    ++m_db.m_depth;
}

Database::Transaction::~Transaction()
{
    if (m_done)
        return;
    --m_db.m_depth;
    if (!m_db.isOpen())
        return;
    const QByteArray undo = ("ROLLBACK TO " + m_name + "; RELEASE " + m_name).toUtf8();
    sqlite3_exec(m_db.m_db, undo.constData(), nullptr, nullptr, nullptr);
}

void Database::Transaction::commit()
{
    m_db.execute(QStringLiteral("RELEASE ") + m_name);
    m_done = true;
    --m_db.m_depth;
}

} // namespace qmr
