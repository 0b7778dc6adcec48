#pragma once

#include <QCoreApplication>
#include <QString>
#include <functional>

namespace qmr {

class Database;
class PagePaths;
class TextIndex;

// What the index of the pages' text holds that disagrees with the store: entries of pages
// that are gone, and entries read from a file that has changed since. Both are mended by
// dropping the entry (the page is then read again at the next start). Pages whose text is
// still to be read are no problem, only counted.
class TextIndexCheck
{
    Q_DECLARE_TR_FUNCTIONS(qmr::TextIndexCheck)
public:
    struct Result
    {
        int problems = 0;
        int repaired = 0;
        int waiting = 0;
    };
    using Report = std::function<void(const QString& problem, bool repaired)>;

    static Result run(Database& db, const PagePaths& paths, TextIndex& index, bool repair,
                      const Report& report);
};

} // namespace qmr
