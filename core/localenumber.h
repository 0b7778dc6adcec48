#pragma once

#include <QLocale>
#include <QString>
#include <optional>

namespace qmr {

// Numbers that people type and read (amounts, sizes), with the locale's group and decimal
// separators: in an English locale "1,234.50" is 1234.5, in a German one "1.234,50" is.
// A text that is not a number is refused, never read as some other value.
class LocaleNumber
{
public:
    explicit LocaleNumber(const QLocale& locale = QLocale()) : m_locale(locale) {}

    // The value of a typed text; nothing when it is not a number. Blanks around it and the
    // locale's currency sign or code before or after it are allowed. A blank text gives
    // nothing too: what an empty box means is the caller's decision.
    std::optional<double> read(const QString& text) const;
    // `value` as people of the locale write it, with group separators and `decimals` places.
    QString write(double value, int decimals) const;
    // The message for a text of the field `fieldName` (as its label names it, without the
    // colon) that read() refused.
    QString notANumberMessage(const QString& fieldName) const;

    const QLocale& locale() const { return m_locale; }

private:
    QLocale m_locale;
};

} // namespace qmr
