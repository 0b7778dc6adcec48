#pragma once

#include <QString>
#include <QVariant>

namespace qmr {

// Doubles every single quote, for the few statements whose text is built.
QString quoteSql(const QString& text);
// Null becomes "", anything else its text.
QString nullToString(const QVariant& value);

} // namespace qmr
