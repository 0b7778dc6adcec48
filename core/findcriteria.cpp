#include "core/findcriteria.h"

#include "core/findrecord.h"

namespace qmr {

namespace {

std::optional<ValueRange<QDate>> dateRange(const QDate& from, const QDate& thru,
                                           const FindRecord& record)
{
    if (!from.isValid() || !thru.isValid() || from > thru ||
        (from == record.defaultFrom && thru == record.defaultThru))
        return std::nullopt;
    return ValueRange<QDate>{from, thru};
}

template <typename T> std::optional<ValueRange<T>> numberRange(T from, T thru)
{
    if (from > thru || (from == 0 && thru == 0))
        return std::nullopt;
    return ValueRange<T>{from, thru};
}

} // namespace

FindCriteria FindCriteria::fromRecord(const FindRecord& record, qint32 folderId)
{
    FindCriteria criteria;
    criteria.keywords = record.keywords;
    criteria.pageWords = PageWords::parse(record.pageWords);
    criteria.match = record.matchAny != 0 ? KeywordMatch::AnyWord : KeywordMatch::AllWords;
    criteria.folderId = folderId;
    criteria.documentDate = dateRange(record.docFrom, record.docThru, record);
    criteria.amount = numberRange(record.amountFrom, record.amountThru);
    criteria.pages.scanDate = dateRange(record.scanFrom, record.scanThru, record);
    criteria.pages.fileSize = numberRange<qint64>(record.fileSizeFrom, record.fileSizeThru);
    return criteria;
}

QStringList FindCriteria::keywordPieces() const
{
    if (match == KeywordMatch::AllWords)
        return keywords.isEmpty() ? QStringList() : QStringList{keywords};
    // Words end at a blank; a run of blanks makes no empty word.
    return keywords.trimmed().split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

} // namespace qmr
