#include "core/localenumber.h"

#include <QCoreApplication>

#include <cmath>

namespace qmr {

namespace {

// Takes `affix` off either end of `text`, with the blanks that stood next to it.
QString withoutAffix(QString text, const QString& affix)
{
    if (affix.isEmpty())
        return text;
    if (text.startsWith(affix, Qt::CaseInsensitive))
        text = text.mid(affix.size()).trimmed();
    else if (text.endsWith(affix, Qt::CaseInsensitive))
        text = text.chopped(affix.size()).trimmed();
    return text;
}

bool isSpace(const QString& separator)
{
    return separator.size() == 1 && separator.at(0).isSpace();
}

} // namespace

std::optional<double> LocaleNumber::read(const QString& text) const
{
    QString t = text.trimmed();
    t = withoutAffix(t, m_locale.currencySymbol(QLocale::CurrencySymbol));
    t = withoutAffix(t, m_locale.currencySymbol(QLocale::CurrencyIsoCode));
    if (t.isEmpty())
        return std::nullopt;
    // Where thousands are grouped by a (narrow, non-breaking) space, people type a plain one.
    const QString group = m_locale.groupSeparator();
    if (isSpace(group))
        t.replace(QLatin1Char(' '), group);
    bool ok = false;
    const double value = m_locale.toDouble(t, &ok);
    if (!ok || !std::isfinite(value))
        return std::nullopt;
    return value;
}

QString LocaleNumber::write(double value, int decimals) const
{
    return m_locale.toString(value, 'f', decimals);
}

QString LocaleNumber::notANumberMessage(const QString& fieldName) const
{
    return QCoreApplication::translate("qmr::LocaleNumber", "%1 must be a number, such as %2.")
        .arg(fieldName, write(1234.5, 2));
}

} // namespace qmr
