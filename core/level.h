#pragma once

#include <QString>
#include <optional>

namespace qmr {

// The fixed filing hierarchy. The order is the depth.
enum class Level { Cabinet = 0, Drawer = 1, Folder = 2, Document = 3, Page = 4 };

struct LevelInfo
{
    Level level;
    const char* prefix;      // node key prefix in the filing tree
    const char* foundPrefix; // node key prefix in the found branch ("" where none)
    const char* icon;        // image key
    const char* word;        // the level's name in messages
};

const LevelInfo& levelInfo(Level level);
std::optional<Level> levelOfPrefix(const QString& prefix);
std::optional<Level> levelOfFoundPrefix(const QString& prefix);
std::optional<Level> parentLevel(Level level);
std::optional<Level> childLevel(Level level);

} // namespace qmr
