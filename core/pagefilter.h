#pragma once

#include <QDate>
#include <QtGlobal>
#include <optional>

#include "core/valuerange.h"

namespace qmr {

// What a search asks of a document's pages: a scan date and a file size, each a range or
// nothing. A day stands for its midnight, as dates are stored, so a range of dates holds the
// pages stored at the midnights from its first day to its last.
struct PageFilter
{
    std::optional<ValueRange<QDate>> scanDate;
    std::optional<ValueRange<qint64>> fileSize;

    bool isEmpty() const { return !scanDate && !fileSize; }
    bool operator==(const PageFilter&) const = default;
};

} // namespace qmr
