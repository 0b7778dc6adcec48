#pragma once

#include <QDate>
#include <QString>

namespace qmr {

// The rules that names, blanks and dates follow everywhere.
class ItemRules
{
public:
    // \ / : * ? " < > | . in names of cabinets, drawers, folders and documents.
    static bool containsBadCharacters(const QString& text);
    // \ * ? " < > | in a page's file name (a path: "/", ":" and "." are allowed).
    static bool containsBadPathCharacters(const QString& text);
    static QString stripBadCharacters(const QString& text);
    static QString stripBadPathCharacters(const QString& text);
    // The message that goes with a refused name.
    static QString badCharactersMessage();

    static bool isBlank(const QString& text);
    // Blank, or a date in one of the accepted forms (mm/dd/yyyy, m/d/yy, yyyy-mm-dd).
    static bool isValidDate(const QString& text);
    // The date, or a null date (the zero date) when blank or invalid.
    static QDate dateOrZero(const QString& text);
    static QDate parseDate(const QString& text);
    // mm/dd/yyyy, the display form of a date.
    static QString displayDate(const QDate& date);

    // The number at the start of a text: a sign, digits and one point; 0 when there is none.
    // "12abc" is 12, "1,234.00" is 1.
    static double leadingNumber(const QString& text);

    // By the name alone: .jpg, .jpeg, .bmp in any case.
    static bool isPictureFile(const QString& fileName);
};

} // namespace qmr
