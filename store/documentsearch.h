#pragma once

#include <QVector>

#include "core/foundresults.h"

namespace qmr {

class Database;
struct FindCriteria;

// What a search found: every document of every pass in the order found (a document found by
// both passes comes twice), and the sum of the passes' record counts, which counts a folder
// hit even when the folder holds no document.
struct FindOutcome
{
    int foundCount = 0;
    QVector<FoundDocument> documents;
};

// A search of the documents: for each cabinet in scope, the document pass (documents whose
// name or description holds a keyword, in the folder asked for, within the ranges asked for)
// and the folder pass (every document of a folder whose name or description holds a keyword,
// whatever the ranges say). Each pass is one read of its table for all cabinets together, in
// one read transaction with the names of the places above the documents.
class DocumentSearch
{
public:
    explicit DocumentSearch(Database& db) : m_db(db) {}

    // The results of each cabinet of `cabinets` come in that order, the document pass's
    // before the folder pass's; a cabinet not listed is not searched.
    FindOutcome run(const FindCriteria& criteria, const QVector<qint32>& cabinets);

private:
    Database& m_db;
};

} // namespace qmr
