#include "text/textfind.h"

#include <QHash>

#include "core/pagewords.h"
#include "store/cabinetlock.h"
#include "store/pagestore.h"
#include "store/textindex.h"

namespace qmr {

QList<TextFind::Document> TextFind::documents(Database& db, TextIndex& index,
                                              const PageWords& words, const CabinetLock& locks)
{
    QList<Document> found;
    const QList<int> pages = index.pagesWith(words);
    if (pages.isEmpty())
        return found;
    QHash<qint32, bool> open;
    for (const FiledPage& page : PageStore(db).locations(pages)) {
        auto known = open.constFind(page.cabinetId);
        if (known == open.cend())
            known = open.insert(page.cabinetId, locks.isCabinetOpen(page.cabinetId));
        if (!*known)
            continue;
        // The locations come ordered by document, so a document's pages are together.
        if (found.isEmpty() || found.last().documentId != page.documentId)
            found << Document{page.documentId, page.names, {}, {}};
        found.last().pageIds << page.pageId;
        found.last().pageNumbers << page.pageNumber;
    }
    return found;
}

} // namespace qmr
