#include "filing/moverules.h"

#include <QStringList>

namespace qmr {

bool MoveRules::canDrag(const QString& key)
{
    static const QStringList movable = {QStringLiteral("DRW"), QStringLiteral("FLD"),
                                        QStringLiteral("DOC"), QStringLiteral("PAG")};
    return movable.contains(key.left(3));
}

bool MoveRules::canDrop(const QString& sourceKey, const QString& targetKey)
{
    const QString source = sourceKey.left(3);
    const QString target = targetKey.left(3);
    if (source == QLatin1String("DRW"))
        return target == QLatin1String("CAB");
    if (source == QLatin1String("FLD"))
        return target == QLatin1String("DRW");
    if (source == QLatin1String("DOC"))
        return target == QLatin1String("FLD");
    if (source == QLatin1String("PAG"))
        return target == QLatin1String("DOC") || target == QLatin1String("FLD");
    return false;
}

namespace {

const char* const kMarks[] = {"T", "L", "L2", "W"};

} // namespace

QString MoveRules::mark(DropSource source)
{
    return QLatin1String(kMarks[static_cast<int>(source)]);
}

} // namespace qmr
