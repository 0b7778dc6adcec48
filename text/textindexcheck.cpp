#include "text/textindexcheck.h"

#include "store/pagepaths.h"
#include "store/pagestore.h"
#include "store/textindex.h"
#include "text/unreadpages.h"

namespace qmr {

TextIndexCheck::Result TextIndexCheck::run(Database& db, const PagePaths& paths, TextIndex& index,
                                           bool repair, const Report& report)
{
    QList<TextReader::Page> pages;
    for (const auto& [id, stored] : PageStore(db).pageFiles())
        pages << TextReader::Page{id, paths.pagePath(id, stored)};
    const QHash<int, TextIndex::Entry> entries = index.entries();
    const UnreadPages::Sweep sweep = UnreadPages::of(pages, entries);
    Result result;
    const auto found = [&](const QString& problem, int pageId) {
        ++result.problems;
        if (repair) {
            index.drop(pageId);
            ++result.repaired;
        }
        report(problem, repair);
    };
    for (const int gone : sweep.gone)
        found(tr("Page text of page %1: the page is gone").arg(gone), gone);
    for (const TextReader::Page& page : sweep.toRead) {
        const auto entry = entries.constFind(page.id);
        if (entry == entries.constEnd() || entry->state == TextIndex::State::Interrupted)
            ++result.waiting;
        else if (TextIndex::Stamp::of(page.path).size < 0)
            continue; // a file that is missing is the store check's to report; its text stays
        else
            found(tr("Page %1: its text was read from an earlier version of its file").arg(page.id),
                  page.id);
    }
    return result;
}

} // namespace qmr
