#include "store/sqltext.h"

namespace qmr {

QString quoteSql(const QString& text)
{
    QString result;
    result.reserve(text.size());
    for (const QChar c : text) {
        result += c;
        if (c == QLatin1Char('\''))
            result += c;
    }
    return result;
}

QString nullToString(const QVariant& value)
{
    if (value.isNull() || !value.isValid())
        return QString();
    return value.toString();
}

} // namespace qmr
