#pragma once

#include <QString>

namespace qmr {

// A name held for a sort that compares it many times, in the order of compareNames() and
// nameLess(). Whether the name is plain (ASCII letters, digits and blanks alone) is asked once,
// when the name is set: two plain names are ordered by their lower-case letters, which costs a
// fraction of the general order and gives the same answers.
class SortName
{
public:
    SortName() = default;
    explicit SortName(const QString& text);

    const QString& text() const { return m_text; }
    int compare(const SortName& other) const;
    // A strict order: names that compare equal keep a fixed order among themselves.
    bool operator<(const SortName& other) const;

private:
    QString m_text;
    bool m_plain = true;
};

} // namespace qmr
