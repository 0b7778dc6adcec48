#include "find/findquery.h"

#include <QLocale>
#include <QRegularExpression>

#include "core/findrecord.h"
#include "store/sqltext.h"

namespace qmr {

namespace {

const QString kPlainDocuments = QStringLiteral(
    "SELECT Document.* FROM (Cabinet INNER JOIN Drawer ON Cabinet.CabinetId = "
    "Drawer.CabinetId) INNER JOIN (Document INNER JOIN Folder ON Document.FolderId = "
    "Folder.FolderId) ON Drawer.DrawerId = Folder.DrawerId ");

const QString kDocumentsWithPages = QStringLiteral(
    "SELECT DISTINCT Document.DocumentId, Document.* FROM ((Cabinet INNER JOIN Drawer ON "
    "Cabinet.CabinetId = Drawer.CabinetId) INNER JOIN (Document INNER JOIN Folder ON "
    "Document.FolderId = Folder.FolderId) ON Drawer.DrawerId = Folder.DrawerId) INNER JOIN "
    "Page ON Document.DocumentId = Page.DocumentId ");

const QString kFolders =
    QStringLiteral("SELECT Folder.* FROM (Cabinet INNER JOIN Drawer ON Cabinet.CabinetId = "
                   "Drawer.CabinetId) INNER JOIN Folder ON Drawer.DrawerId = Folder.DrawerId ");

const QString kFolderDocuments = QStringLiteral(
    "SELECT Document.DocumentId, Document.FolderId, Document.Name FROM ((Cabinet INNER JOIN "
    "Drawer ON Cabinet.CabinetId = Drawer.CabinetId) INNER JOIN Folder ON Drawer.DrawerId = "
    "Folder.DrawerId) INNER JOIN Document ON Folder.FolderId = Document.FolderId ");

// Appends each clause that is set, in order: " AND " between them, a blank before each.
QString joinClauses(std::initializer_list<QString> clauses)
{
    QString where;
    for (const QString& clause : clauses) {
        if (clause.isEmpty())
            continue;
        if (!where.isEmpty())
            where += QStringLiteral(" AND ");
        where += QLatin1Char(' ') + clause;
    }
    return where;
}

QString dateRange(const QString& column, const QDate& from, const QDate& thru,
                  const FindRecord& criteria)
{
    if (from > thru || (from == criteria.defaultFrom && thru == criteria.defaultThru))
        return QString();
    return QStringLiteral("(%1 BETWEEN %2 AND %3)")
        .arg(column, FindQuery::dateLiteral(from), FindQuery::dateLiteral(thru));
}

QString cabinetWhere(qint32 cabinetId, const QString& where)
{
    QString text = QStringLiteral(" WHERE Cabinet.CabinetId = ") + QString::number(cabinetId);
    if (!where.isEmpty())
        text += QStringLiteral(" AND ") + where;
    return text;
}

} // namespace

QString FindQuery::buildAnyWordClause(const QString& keywords, const QString& prefix)
{
    QString result;
    const auto addWord = [&](const QString& word) {
        if (word.isEmpty())
            return; // a run of blanks
        const QString quoted = quoteSql(word);
        if (!result.isEmpty())
            result += QStringLiteral(" OR ");
        result +=
            QStringLiteral(" %1Name LIKE '%%2%' OR %1Description LIKE '%%2%'").arg(prefix, quoted);
    };
    QString word;
    for (const QChar c : keywords.trimmed()) {
        if (c == QLatin1Char(' ')) {
            addWord(word);
            word.clear();
        } else {
            word += c;
        }
    }
    addWord(word);
    return result;
}

QString FindQuery::buildKeywordClause(const FindRecord& criteria, const QString& prefix)
{
    QString body;
    if (criteria.matchAny != 0) {
        body = buildAnyWordClause(criteria.keywords, prefix);
    } else if (!criteria.keywords.isEmpty()) {
        // All words: the whole text, blanks and all, as one piece; Description first.
        const QString quoted = quoteSql(criteria.keywords);
        body =
            QStringLiteral("%1Description LIKE '%%2%' OR %1Name LIKE '%%2%'").arg(prefix, quoted);
    }
    return body.isEmpty() ? QString() : QLatin1Char('(') + body + QLatin1Char(')');
}

QString FindQuery::buildFolderClause(qint32 folderId)
{
    if (folderId == 0)
        return QString();
    return QStringLiteral("(Folder.FolderId = %1)").arg(folderId);
}

QString FindQuery::buildScanDateClause(const FindRecord& criteria)
{
    return dateRange(QStringLiteral("Page.ScanDate"), criteria.scanFrom, criteria.scanThru,
                     criteria);
}

QString FindQuery::buildDocDateClause(const FindRecord& criteria)
{
    return dateRange(QStringLiteral("Document.DateOnDocument"), criteria.docFrom, criteria.docThru,
                     criteria);
}

QString FindQuery::buildAmountClause(const FindRecord& criteria)
{
    const double from = criteria.amountFrom;
    const double thru = criteria.amountThru;
    if (from > thru || (from == 0 && thru == 0))
        return QString();
    return QStringLiteral("(Document.Amount >= %1 AND Document.Amount <= %2)")
        .arg(numberText(from), numberText(thru));
}

QString FindQuery::buildFileSizeClause(const FindRecord& criteria)
{
    const qint32 from = criteria.fileSizeFrom;
    const qint32 thru = criteria.fileSizeThru;
    if (from > thru || (from == 0 && thru == 0))
        return QString();
    return QStringLiteral("(Page.FileSize BETWEEN %1 AND %2)").arg(from).arg(thru);
}

bool FindQuery::documentPassJoinsPages(const FindRecord& criteria)
{
    return !buildScanDateClause(criteria).isEmpty() || !buildDocDateClause(criteria).isEmpty() ||
           !buildAmountClause(criteria).isEmpty() || !buildFileSizeClause(criteria).isEmpty();
}

QString FindQuery::documentStatement(const FindRecord& criteria, qint32 cabinetId, qint32 folderId)
{
    QString where = joinClauses({buildKeywordClause(criteria, QStringLiteral("Document.")),
                                 buildFolderClause(folderId), buildScanDateClause(criteria),
                                 buildDocDateClause(criteria), buildAmountClause(criteria),
                                 buildFileSizeClause(criteria)});
    if (!documentPassJoinsPages(criteria))
        return kPlainDocuments + cabinetWhere(cabinetId, where);
    // Any of the four criteria reaches the pages, so a document without pages is not found.
    if (!where.isEmpty())
        where += QStringLiteral(" AND ");
    where += QStringLiteral(" (Page.DocumentId = Document.DocumentId) ");
    return kDocumentsWithPages + cabinetWhere(cabinetId, where);
}

QString FindQuery::folderStatement(const FindRecord& criteria, qint32 cabinetId, qint32 folderId)
{
    const QString where = joinClauses(
        {buildKeywordClause(criteria, QStringLiteral("Folder.")), buildFolderClause(folderId)});
    return kFolders + cabinetWhere(cabinetId, where);
}

QString FindQuery::folderDocumentsStatement(const FindRecord& criteria, qint32 cabinetId,
                                            qint32 folderId)
{
    const QString where = joinClauses(
        {buildKeywordClause(criteria, QStringLiteral("Folder.")), buildFolderClause(folderId)});
    return kFolderDocuments + cabinetWhere(cabinetId, where);
}

QString FindQuery::dateLiteral(const QDate& date)
{
    return QLatin1Char('#') + date.toString(QStringLiteral("M/d/yyyy")) + QLatin1Char('#');
}

QString FindQuery::numberText(double value)
{
    return QLocale::c().toString(value, 'g', QLocale::FloatingPointShortest);
}

QString FindQuery::forStore(const QString& statement)
{
    static const QRegularExpression dateRe(QStringLiteral("#(\\d{1,2})/(\\d{1,2})/(\\d{4})#"));
    static const QRegularExpression topRe(
        QStringLiteral("^(\\s*SELECT\\s+(?:DISTINCT\\s+)?)TOP\\s+(\\d+)\\s+"),
        QRegularExpression::CaseInsensitiveOption);

    QString text = statement;
    QString limit;
    if (const QRegularExpressionMatch top = topRe.match(text); top.hasMatch()) {
        limit = QStringLiteral(" LIMIT ") + top.captured(2);
        text = top.captured(1) + text.mid(top.capturedEnd());
    }

    QString result;
    result.reserve(text.size() + 32);
    bool quoted = false;
    for (qsizetype i = 0; i < text.size();) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\'')) {
            quoted = !quoted; // a doubled quote inside a text toggles twice
        } else if (!quoted && c == QLatin1Char('#')) {
            const QRegularExpressionMatch m =
                dateRe.match(text, i, QRegularExpression::NormalMatch,
                             QRegularExpression::AnchorAtOffsetMatchOption);
            const QDate date = m.hasMatch() ? QDate(m.captured(3).toInt(), m.captured(1).toInt(),
                                                    m.captured(2).toInt())
                                            : QDate();
            if (date.isValid()) {
                // Stored dates are ISO texts; a day means its midnight, as the literal did.
                result +=
                    QLatin1Char('\'') + date.toString(Qt::ISODate) + QStringLiteral(" 00:00:00'");
                i = m.capturedEnd();
                continue;
            }
        }
        result += c;
        ++i;
    }
    return result + limit;
}

} // namespace qmr
