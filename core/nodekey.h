#pragma once

#include <QString>
#include <QtGlobal>
#include <optional>

#include "core/level.h"

namespace qmr {

// A navigator key: three upper-case letters and a decimal id ("CAB12"), or one of the
// whole words ROOT and ROOTFOUND. Parsed once by its first three letters and the rest;
// never compared by substring, so CAB1 and CAB12 stay different.
class NodeKey
{
public:
    NodeKey() = default;
    static NodeKey parse(const QString& text);
    static NodeKey root();
    static NodeKey foundRoot();
    static NodeKey of(Level level, qint32 id);
    static NodeKey found(Level level, qint32 id);

    const QString& text() const { return m_text; }
    QString prefix() const { return m_text.left(3); }
    // The id after the prefix; -1 when there is none or it is not a number.
    qint32 id() const { return m_id; }
    bool isEmpty() const { return m_text.isEmpty(); }
    bool isRoot() const { return m_text == QLatin1String("ROOT"); }
    bool isFoundRoot() const { return m_text == QLatin1String("ROOTFOUND"); }
    // The level of a filing-tree key (CAB, DRW, FLD, DOC, PAG).
    std::optional<Level> level() const;
    // The level of a found-branch key (FCB, FDW, FFD, FDC).
    std::optional<Level> foundLevel() const;

    bool operator==(const NodeKey& other) const { return m_text == other.m_text; }

private:
    QString m_text;
    qint32 m_id = -1;
};

} // namespace qmr
