#pragma once

#include <QString>
#include <optional>

namespace qmr {

// Numbers that people type (amounts, sizes): read with the group and decimal separators of
// the user's locale, and also in the plain C form ("1234.5", "1,234.50"), so that a text
// written either way means what it says. A text that is no number gives nothing, never 0.
class LocaleNumber
{
public:
    static std::optional<double> read(const QString& text);
};

} // namespace qmr
