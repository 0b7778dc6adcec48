#pragma once

#include <QString>
#include <QStringList>

namespace qmr {

// The first entries of a report's list, one a line, and how many more there are: a message is
// no place for a long list.
QString reportList(const QStringList& entries);

} // namespace qmr
