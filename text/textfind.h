#pragma once

#include <QList>
#include <QStringList>

namespace qmr {

class CabinetLock;
class Database;
class PageWords;
class TextIndex;

// The documents whose pages hold the words: each with the pages that do. A locked cabinet's
// pages are left out until it has been opened.
class TextFind
{
public:
    struct Document
    {
        qint32 documentId = -1;
        QStringList names; // cabinet, drawer, folder, document
        QList<qint32> pageIds;
        QList<qint32> pageNumbers;
    };
    static QList<Document> documents(Database& db, TextIndex& index, const PageWords& words,
                                     const CabinetLock& locks);
};

} // namespace qmr
