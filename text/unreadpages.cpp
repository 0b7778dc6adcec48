#include "text/unreadpages.h"

#include <QSet>
#include <algorithm>

namespace qmr {

UnreadPages::Sweep UnreadPages::of(const QList<TextReader::Page>& pages,
                                   const QHash<int, TextIndex::Entry>& entries,
                                   const std::function<bool()>& stopped)
{
    Sweep sweep;
    QSet<int> present;
    present.reserve(pages.size());
    for (const TextReader::Page& page : pages) {
        // Each page's file is looked at, which may take long on a slow disk.
        if (stopped && stopped())
            return Sweep{};
        present.insert(page.id);
        const auto entry = entries.constFind(page.id);
        if (entry == entries.cend() || entry->state == TextIndex::State::Interrupted ||
            entry->stamp != TextIndex::Stamp::of(page.path))
            sweep.toRead << page;
    }
    for (auto entry = entries.cbegin(); entry != entries.cend(); ++entry)
        if (!present.contains(entry.key()))
            sweep.gone << entry.key();
    std::sort(sweep.gone.begin(), sweep.gone.end());
    return sweep;
}

} // namespace qmr
