#pragma once

#include <QStringList>
#include <QVariantList>

namespace qmr {

struct PageFilter;

// The conditions of a page filter on the rows of the Page table, as statement text with the
// values it binds.
class PageConditions
{
public:
    // Appends one condition for each part of the filter that is set, and its values.
    static void add(const PageFilter& filter, QStringList& conditions, QVariantList& binds);
};

} // namespace qmr
