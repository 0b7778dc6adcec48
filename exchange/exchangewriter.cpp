#include "exchange/exchangewriter.h"

#include <QLocale>

#include "core/textfile.h"
#include "store/itemrules.h"
#include "store/pagepaths.h"

namespace qmr {

const QString ExchangeWriter::kMarkerFile = QStringLiteral("QMR.txt");
const QString ExchangeWriter::kCabinetFile = QStringLiteral("Cabinet.txt");
const QString ExchangeWriter::kDrawerFile = QStringLiteral("Drawer.txt");
const QString ExchangeWriter::kFolderFile = QStringLiteral("Folder.txt");
const QString ExchangeWriter::kDocumentFile = QStringLiteral("Document.txt");

namespace {

const QString kEol = QStringLiteral("\r\n");

} // namespace

QString ExchangeWriter::cleanFileName(const QString& name)
{
    static const QString dropped = QStringLiteral("\\/:*?\"<>|.");
    QString clean;
    clean.reserve(name.size());
    for (const QChar c : name)
        if (!dropped.contains(c))
            clean += c;
    return clean;
}

QString ExchangeWriter::stripExtension(const QString& name)
{
    const int dot = name.lastIndexOf(QLatin1Char('.'));
    return dot < 0 ? name : name.left(dot);
}

QString ExchangeWriter::documentDirectoryName(const QString& documentName)
{
    return cleanFileName(stripExtension(documentName));
}

QString ExchangeWriter::encodeDescription(const QString& text)
{
    QString encoded;
    encoded.reserve(text.size());
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        if (c == QLatin1Char('\r'))
            encoded += QLatin1Char('|');
        else if (c != QLatin1Char('\n'))
            encoded += c;
        else if (i == 0 || text.at(i - 1) != QLatin1Char('\r'))
            encoded += QLatin1Char('|'); // a line break of this system: LF alone
    }
    return encoded;
}

QString ExchangeWriter::pageFileName(const QString& storedPath, qint32 pageNumber)
{
    if (storedPath.right(3).toLower() == QLatin1String("jpg"))
        return QStringLiteral("Page %1.jpg").arg(pageNumber);
    return PagePaths::filePart(storedPath);
}

QString ExchangeWriter::distinctName(const QString& name, QSet<QString>& taken)
{
    QString chosen = name;
    const int dot = int(name.lastIndexOf(QLatin1Char('.')));
    const QString stem = dot > 0 ? name.left(dot) : name;
    const QString extension = dot > 0 ? name.mid(dot) : QString();
    for (int n = 2; taken.contains(chosen.toLower()); ++n)
        chosen = stem + QStringLiteral(" (%1)").arg(n) + extension;
    taken.insert(chosen.toLower());
    return chosen;
}

QSet<QString> ExchangeWriter::reservedNames()
{
    return {kMarkerFile.toLower(), kCabinetFile.toLower(), kDrawerFile.toLower(),
            kFolderFile.toLower(), kDocumentFile.toLower()};
}

QString ExchangeWriter::dateText(const QDate& date)
{
    return ItemRules::displayDate(date);
}

QString ExchangeWriter::amountText(double amount)
{
    // The shortest digits that read back as the same number, in the C locale and never with
    // an exponent, which the reader of amounts does not know ("1e-05" would read as 1).
    return QString::number(amount, 'f', QLocale::FloatingPointShortest);
}

QStringList ExchangeWriter::markerLines(const QDateTime& when)
{
    return {QStringLiteral("*** DO NOT DELETE THIS FILE ***"), QStringLiteral("Quillmere"),
            QStringLiteral("Cabinet exported: ") +
                when.toString(QStringLiteral("MM/dd/yyyy hh:mm:ss"))};
}

QStringList ExchangeWriter::descriptionLines(const QString& description)
{
    return {QStringLiteral("[Description]"), encodeDescription(description)};
}

QStringList ExchangeWriter::documentLines(const ItemManifest& document)
{
    return {QStringLiteral("[DateOnDocument]"),
            document.dateOnDocument ? dateText(*document.dateOnDocument) : QString(),
            QString(),
            QStringLiteral("[Description]"),
            encodeDescription(document.description.value_or(QString())),
            QString(),
            QStringLiteral("[Amount]"),
            document.amount ? amountText(*document.amount) : QString()};
}

bool ExchangeWriter::makeDirectoryOf(const QString& path)
{
    const QString dir = PagePaths::directoryPart(path);
    return dir.isEmpty() || m_fs.makePath(dir);
}

FileOutcome ExchangeWriter::writeLines(const QString& path, const QStringList& lines)
{
    if (!makeDirectoryOf(path))
        return FileOutcome::failed(FileOutcome::Kind::NoDirectory,
                                   tr("Cannot make the directory of %1").arg(path));
    return m_fs.writeFile(path, TextFile::encodeLines(lines, kEol));
}

FileOutcome ExchangeWriter::writeMarkerFile(const QString& path, const QDateTime& when)
{
    return writeLines(path, markerLines(when));
}

FileOutcome ExchangeWriter::writeDescriptionFile(const QString& path,
                                                 const std::optional<QString>& description)
{
    if (!description)
        return FileOutcome::done();
    return writeLines(path, descriptionLines(*description));
}

FileOutcome ExchangeWriter::writeDocumentFile(const QString& path, const ItemManifest& document)
{
    if (!document.dateOnDocument && !document.description)
        return FileOutcome::done();
    return writeLines(path, documentLines(document));
}

FileOutcome ExchangeWriter::copyPageFile(const QString& source, const QString& target,
                                         LinkRule links)
{
    if (!makeDirectoryOf(target))
        return FileOutcome::failed(FileOutcome::Kind::NoDirectory,
                                   tr("Cannot make the directory of %1").arg(target));
    return m_fs.copyFile(source, target, links);
}

} // namespace qmr
