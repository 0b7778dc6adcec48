#pragma once

#include <QHash>
#include <QList>
#include <functional>

#include "store/textindex.h"
#include "text/textreader.h"

namespace qmr {

// Which pages want their text read and which entries of the index belong to no page now.
// A page is read when it has no entry, its file has changed since (size or time), or a reader
// ended while reading it; a page marked unreadable waits for its file to change.
class UnreadPages
{
public:
    struct Sweep
    {
        QList<TextReader::Page> toRead; // in the order given: oldest first
        QList<int> gone;                // ascending
    };
    // `pages`: every page with the path of its file, oldest first. `stopped` ends the look
    // early, with what it has.
    static Sweep of(const QList<TextReader::Page>& pages,
                    const QHash<int, TextIndex::Entry>& entries,
                    const std::function<bool()>& stopped = {});
};

} // namespace qmr
