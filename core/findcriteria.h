#pragma once

#include <QDate>
#include <QString>
#include <QStringList>
#include <QtGlobal>
#include <optional>

#include "core/pagefilter.h"
#include "core/pagewords.h"
#include "core/valuerange.h"

namespace qmr {

struct FindRecord;

// How the keywords are matched. Either way a document or folder matches when any piece stands
// in its name or its description; the modes differ only in what a piece is.
enum class KeywordMatch {
    AnyWord,  // each word of the text, split at blanks
    AllWords, // the whole text, blanks included, as one piece
};

// What a search looks for, with the criteria that do not count already left out.
struct FindCriteria
{
    QString keywords;
    KeywordMatch match = KeywordMatch::AnyWord;
    qint32 folderId = 0; // 0: every folder
    std::optional<ValueRange<QDate>> documentDate;
    std::optional<ValueRange<double>> amount;
    PageFilter pages; // scan date and file size
    // Words read on the pages: when any, a document is found only with a page holding them
    // all, whichever pass finds it.
    PageWords pageWords;

    // The criteria that the record of the find dialog means. A range counts unless its From
    // is past its Thru; a date range neither when it is the pair of default dates, nor when
    // a date is not a date; an amount or size range neither when both its numbers are 0.
    static FindCriteria fromRecord(const FindRecord& record, qint32 folderId);

    // The pieces of text that a name or description is searched for, without regard to
    // case and with % and _ standing for any text and any one character; none when the
    // keywords ask for nothing.
    QStringList keywordPieces() const;
    // Whether a document is found only with a page: any of the four ranges is set, even one
    // that is not about pages.
    bool needsPages() const { return documentDate || amount || !pages.isEmpty(); }
};

} // namespace qmr
