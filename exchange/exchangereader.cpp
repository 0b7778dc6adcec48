#include "exchange/exchangereader.h"

#include <cmath>

#include "store/itemrules.h"

namespace qmr {

namespace {

const QString kMarker = QStringLiteral("qmr.txt");
const QString kCabinet = QStringLiteral("cabinet.txt");
const QString kDrawer = QStringLiteral("drawer.txt");
const QString kFolder = QStringLiteral("folder.txt");
const QString kDocument = QStringLiteral("document.txt");

QString normalName(const QString& fileName)
{
    return fileName.trimmed().toLower();
}

} // namespace

QString ExchangeReader::decodeDescription(const QString& text)
{
    QString decoded = text;
    decoded.replace(QLatin1Char('|'), QStringLiteral("\r\n"));
    return decoded;
}

QString ExchangeReader::parseDescription(const QStringList& lines)
{
    bool wanted = false;
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (!wanted) {
            wanted = line.toLower() == QLatin1String("[description]");
        } else if (!line.isEmpty()) {
            return decodeDescription(line);
        }
    }
    return QString();
}

DocumentValues ExchangeReader::parseDocument(const QStringList& lines)
{
    DocumentValues values;
    QString* wanted = nullptr;
    for (const QString& raw : lines) {
        const QString line = raw.trimmed();
        if (line.isEmpty()) {
            wanted = nullptr;
        } else if (wanted) {
            *wanted = line;
            wanted = nullptr;
        } else {
            const QString key = line.toLower();
            if (key == QLatin1String("[dateondocument]"))
                wanted = &values.date;
            else if (key == QLatin1String("[description]"))
                wanted = &values.description;
            else if (key == QLatin1String("[amount]"))
                wanted = &values.amount;
        }
    }
    values.description = decodeDescription(values.description);
    return values;
}

bool ExchangeReader::isExchangeFile(const QString& fileName)
{
    const QString name = normalName(fileName);
    return name == kMarker || name == kCabinet || name == kDrawer || name == kFolder ||
           name == kDocument;
}

bool ExchangeReader::isLooseFile(const QString& fileName)
{
    const QString name = normalName(fileName);
    return name != kMarker && name != kCabinet && name != kDrawer && name != kFolder;
}

std::optional<qint32> ExchangeReader::pageNumberOf(const QString& fileName)
{
    if (fileName.left(5).toLower() != QLatin1String("page "))
        return std::nullopt;
    const double number = std::round(ItemRules::leadingNumber(fileName.mid(5)));
    return qint32(qBound(-2147483647.0, number, 2147483647.0));
}

QString ExchangeReader::findIn(const QStringList& names, const QString& name)
{
    for (const QString& file : names)
        if (file.compare(name, Qt::CaseInsensitive) == 0)
            return file;
    return QString();
}

QString ExchangeReader::findFile(const QString& dir, const QString& name) const
{
    return findIn(m_fs.fileNames(dir), name);
}

bool ExchangeReader::hasMarker(const QString& dir) const
{
    return !findFile(dir, kMarker).isEmpty();
}

std::optional<QString> ExchangeReader::readDescription(const QString& path) const
{
    const std::optional<QStringList> lines = m_fs.readLines(path);
    if (!lines)
        return std::nullopt;
    return parseDescription(*lines);
}

std::optional<DocumentValues> ExchangeReader::readDocument(const QString& path) const
{
    const std::optional<QStringList> lines = m_fs.readLines(path);
    if (!lines)
        return std::nullopt;
    return parseDocument(*lines);
}

} // namespace qmr
