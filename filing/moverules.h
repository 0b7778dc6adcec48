#pragma once

#include <QString>

namespace qmr {

// Where a drop comes from: one of the window's three controls, or a file from outside.
enum class DropSource { Tree, List, PageList, Outside };

// What may be dragged and what may be dropped on what, by the keys' first three letters. A
// target is one level up; a page may also go on a folder, which only files from outside use.
// Cabinets never move, and nothing of a search result is a source or a target.
class MoveRules
{
public:
    static bool canDrag(const QString& key);
    // `sourceKey` may be a bare prefix: files from outside come as "PAG".
    static bool canDrop(const QString& sourceKey, const QString& targetKey);
    // "T", "L", "L2" or "W", as a drag's data names its source.
    static QString mark(DropSource source);
};

} // namespace qmr
