#include "core/level.h"

#include <array>

namespace qmr {

namespace {
constexpr std::array<LevelInfo, 5> kLevels{{
    {Level::Cabinet, "CAB", "FCB", "cabinet", "Cabinet"},
    {Level::Drawer, "DRW", "FDW", "drawer", "Drawer"},
    {Level::Folder, "FLD", "FFD", "folder", "Folder"},
    {Level::Document, "DOC", "FDC", "document", "Document"},
    {Level::Page, "PAG", "", "page", "Page"},
}};
} // namespace

const LevelInfo& levelInfo(Level level)
{
    return kLevels[static_cast<int>(level)];
}

std::optional<Level> levelOfPrefix(const QString& prefix)
{
    for (const LevelInfo& info : kLevels)
        if (prefix == QLatin1String(info.prefix))
            return info.level;
    return std::nullopt;
}

std::optional<Level> levelOfFoundPrefix(const QString& prefix)
{
    for (const LevelInfo& info : kLevels)
        if (*info.foundPrefix && prefix == QLatin1String(info.foundPrefix))
            return info.level;
    return std::nullopt;
}

std::optional<Level> parentLevel(Level level)
{
    if (level == Level::Cabinet)
        return std::nullopt;
    return static_cast<Level>(static_cast<int>(level) - 1);
}

std::optional<Level> childLevel(Level level)
{
    if (level == Level::Page)
        return std::nullopt;
    return static_cast<Level>(static_cast<int>(level) + 1);
}

} // namespace qmr
