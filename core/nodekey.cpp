#include "core/nodekey.h"

namespace qmr {

NodeKey NodeKey::parse(const QString& text)
{
    NodeKey key;
    key.m_text = text;
    if (text.size() > 3 && !key.isFoundRoot()) {
        bool ok = false;
        const QString rest = text.mid(3);
        const qint32 id = rest.toInt(&ok);
        // Only plain decimal digits count: no sign, no blanks.
        if (ok && id >= 0 && rest == QString::number(id))
            key.m_id = id;
    }
    return key;
}

NodeKey NodeKey::root()
{
    return parse(QStringLiteral("ROOT"));
}

NodeKey NodeKey::foundRoot()
{
    return parse(QStringLiteral("ROOTFOUND"));
}

NodeKey NodeKey::of(Level level, qint32 id)
{
    return parse(QLatin1String(levelInfo(level).prefix) + QString::number(id));
}

NodeKey NodeKey::found(Level level, qint32 id)
{
    return parse(QLatin1String(levelInfo(level).foundPrefix) + QString::number(id));
}

std::optional<Level> NodeKey::level() const
{
    if (m_id < 0)
        return std::nullopt;
    return levelOfPrefix(prefix());
}

std::optional<Level> NodeKey::foundLevel() const
{
    if (m_id < 0)
        return std::nullopt;
    return levelOfFoundPrefix(prefix());
}

} // namespace qmr
