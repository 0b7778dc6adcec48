#include "store/itemrules.h"

#include <QCoreApplication>
#include <QStringList>

namespace qmr {

namespace {
const QString kNameSet = QStringLiteral("\\/:*?\"<>|.");
// A page's file name is a path: its separator "/" is allowed, the other name characters that
// a file system path can hold too.
const QString kPathSet = QStringLiteral("\\*?\"<>|");

bool containsAny(const QString& text, const QString& set)
{
    for (const QChar c : text)
        if (set.contains(c))
            return true;
    return false;
}

QString strip(const QString& text, const QString& set)
{
    QString out;
    for (const QChar c : text)
        if (!set.contains(c))
            out += c;
    return out;
}
} // namespace

bool ItemRules::containsBadCharacters(const QString& text)
{
    return containsAny(text, kNameSet);
}

bool ItemRules::containsBadPathCharacters(const QString& text)
{
    return containsAny(text, kPathSet);
}

QString ItemRules::stripBadCharacters(const QString& text)
{
    return strip(text, kNameSet);
}

QString ItemRules::stripBadPathCharacters(const QString& text)
{
    return strip(text, kPathSet);
}

QString ItemRules::badCharactersMessage()
{
    return QCoreApplication::translate(
        "qmr::ItemRules", "The following characters are not allowed:\n\\ / : * ? \" < > | .");
}

bool ItemRules::isBlank(const QString& text)
{
    return text.trimmed().isEmpty();
}

QDate ItemRules::parseDate(const QString& text)
{
    const QString t = text.trimmed();
    static const QStringList forms = {QStringLiteral("M/d/yyyy"), QStringLiteral("M/d/yy"),
                                      QStringLiteral("yyyy-MM-dd"), QStringLiteral("M-d-yyyy")};
    for (const QString& form : forms) {
        QDate d = QDate::fromString(t, form);
        if (d.isValid()) {
            if (form == QLatin1String("M/d/yy") && d.year() < 1930)
                d = d.addYears(100); // two-digit years: 30..99 are 19xx, 00..29 are 20xx
            return d;
        }
    }
    return QDate();
}

bool ItemRules::isValidDate(const QString& text)
{
    return isBlank(text) || parseDate(text).isValid();
}

QDate ItemRules::dateOrZero(const QString& text)
{
    if (isBlank(text))
        return QDate();
    return parseDate(text);
}

QString ItemRules::displayDate(const QDate& date)
{
    return date.isValid() ? date.toString(QStringLiteral("MM/dd/yyyy")) : QString();
}

double ItemRules::leadingNumber(const QString& text)
{
    const QString t = text.trimmed();
    int end = 0;
    if (end < t.size() && (t.at(end) == QLatin1Char('-') || t.at(end) == QLatin1Char('+')))
        ++end;
    bool point = false;
    while (end < t.size()) {
        const QChar c = t.at(end);
        if (c.isDigit() && c.unicode() < 128) {
            ++end;
        } else if (c == QLatin1Char('.') && !point) {
            point = true;
            ++end;
        } else {
            break;
        }
    }
    bool ok = false;
    const double value = t.left(end).toDouble(&ok);
    return ok ? value : 0.0;
}

bool ItemRules::isPictureFile(const QString& fileName)
{
    const QString name = fileName.toLower();
    if (name.endsWith(QLatin1String(".jpg")) || name.endsWith(QLatin1String(".jpeg")) ||
        name.endsWith(QLatin1String(".bmp")))
        return true;
    // Names that lost their dot ("scanjpg") still count.
    return name.right(3) == QLatin1String("jpg") || name.right(3) == QLatin1String("bmp") ||
           name.right(4) == QLatin1String("jpeg");
}

} // namespace qmr
