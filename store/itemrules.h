#pragma once

#include <QDate>
#include <QString>

namespace qmr {

// The rules that names, blanks and dates follow everywhere.
class ItemRules
{
public:
    // \ / : * ? " < > | . in names of cabinets, drawers, folders and documents.
    static bool ContainsBadCharacters(const QString& text);
    // / * ? " < > | in a page's file name.
    static bool ContainsBadPathCharacters(const QString& text);
    static QString StripBadCharacters(const QString& text);
    static QString StripBadPathCharacters(const QString& text);
    // The message that goes with a refused name.
    static QString badCharactersMessage();

    static bool IsBlank(const QString& text);
    // Blank, or a date in one of the accepted forms (mm/dd/yyyy, m/d/yy, yyyy-mm-dd).
    static bool IsValidDate(const QString& text);
    // The date, or a null date (the zero date) when blank or invalid.
    static QDate DateOrZero(const QString& text);
    static QDate parseDate(const QString& text);
    // mm/dd/yyyy, the display form of a date.
    static QString displayDate(const QDate& date);

    // The number at the start of a text: a sign, digits and one point; 0 when there is none.
    // "12abc" is 12, "1,234.00" is 1.
    static double leadingNumber(const QString& text);

    // By the name alone: .jpg, .jpeg, .bmp in any case.
    static bool IsPictureFile(const QString& fileName);
};

} // namespace qmr
