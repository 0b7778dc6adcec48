#pragma once

#include <QDate>
#include <QString>
#include <QtGlobal>

namespace qmr {

struct FindRecord;

// The texts of the search statements, built from the criteria as plain text. The texts use
// the written forms of the search's own rules (dates as #m/d/yyyy#); forStore() is the one
// place that turns them into what the store understands.
class FindQuery
{
public:
    // The keyword condition on Name and Description for a column prefix ("Document." or
    // "Folder."), in parentheses, or "" when there are no keywords.
    static QString buildKeywordClause(const FindRecord& criteria, const QString& prefix);
    // "Match any word": each word of the text, split at blanks, against Name then
    // Description, all joined by OR.
    static QString buildAnyWordClause(const QString& keywords, const QString& prefix);
    // "" for folder 0 ("(All)").
    static QString buildFolderClause(qint32 folderId);
    // Each "" when its pair of limits says so: From past Thru, the default dates, or both
    // numbers 0.
    static QString buildScanDateClause(const FindRecord& criteria);
    static QString buildDocDateClause(const FindRecord& criteria);
    static QString buildAmountClause(const FindRecord& criteria);
    static QString buildFileSizeClause(const FindRecord& criteria);

    // Whether the document pass reaches the pages: any of the scan date, date on document,
    // amount and file size conditions is set.
    static bool documentPassJoinsPages(const FindRecord& criteria);
    // The document pass for one cabinet, and the folder pass.
    static QString documentStatement(const FindRecord& criteria, qint32 cabinetId, qint32 folderId);
    static QString folderStatement(const FindRecord& criteria, qint32 cabinetId, qint32 folderId);
    // The documents of the folders that the folder pass finds, in one statement instead of one
    // per folder.
    static QString folderDocumentsStatement(const FindRecord& criteria, qint32 cabinetId,
                                            qint32 folderId);

    // #m/d/yyyy#, a date as the statements write it.
    static QString dateLiteral(const QDate& date);
    // A number as the statements write it: no group separator, a point, no needless digits.
    static QString numberText(double value);

    // The statement in the store's own dialect: date literals become quoted ISO texts and a
    // leading "SELECT [DISTINCT] TOP n" becomes a LIMIT. Quoted texts (keywords) are left
    // exactly as they are.
    static QString forStore(const QString& statement);
};

} // namespace qmr
