// The text files that travel with an exported cabinet, and the help text: whatever they hold,
// reading them ends with sane values, and what an export writes reads back as it was.

#include <QByteArray>
#include <QDate>
#include <cmath>
#include <cstring>

#include "core/textfile.h"
#include "exchange/exchangereader.h"
#include "exchange/exchangewriter.h"
#include "fuzzstore.h"
#include "help/helpfile.h"
#include "store/itemrules.h"

using namespace qmr;

namespace {

const QString kRefused = QStringLiteral("\\/:*?\"<>|.");

bool holdsRefused(const QString& name)
{
    for (const QChar c : name)
        if (kRefused.contains(c))
            return true;
    return false;
}

// The lines of a file written as the export writes it and read as the import reads it.
QStringList throughAFile(const QStringList& written)
{
    return TextFile::splitLines(TextFile::decode(TextFile::encodeLines(written, "\r\n")));
}

void readAsItComes(const QStringList& lines)
{
    if (ExchangeReader::parseDescription(lines).contains(QLatin1Char('|')))
        fuzz::broken("a description read back still holds its line marks");
    if (ExchangeReader::parseDocument(lines).description.contains(QLatin1Char('|')))
        fuzz::broken("a document's description read back still holds its line marks");
    for (const QString& line : lines) {
        if (holdsRefused(ExchangeWriter::cleanFileName(line)) ||
            holdsRefused(ExchangeWriter::documentDirectoryName(line)))
            fuzz::broken("a cleaned name still holds a refused character");
        if (ExchangeReader::pageNumberOf(line) &&
            !line.startsWith(QLatin1String("page "), Qt::CaseInsensitive))
            fuzz::broken("a page number taken from a name that is no page's");
    }

    if (const std::optional<QStringList> toc = HelpFile::readToc(lines))
        if (toc->size() != HelpFile::kLines)
            fuzz::broken("the help's table has other than nine places");
    for (int topic = 1; topic <= 2; ++topic)
        for (int page = 1; page <= 2; ++page) {
            const std::optional<QStringList> text = HelpFile::readPage(lines, topic, page);
            if (!text)
                continue;
            if (text->size() > HelpFile::kLines)
                fuzz::broken("a help page longer than nine lines");
            for (const QString& line : *text)
                if (line.startsWith(QLatin1Char('\'')) ||
                    line.startsWith(QLatin1String("centericon"), Qt::CaseInsensitive) ||
                    line.startsWith(QLatin1String("centerpicture"), Qt::CaseInsensitive))
                    fuzz::broken("a help page shows a line it should leave out");
        }
}

void writtenThenRead(const QByteArray& bytes)
{
    // The input is a description; a date and an amount come from its first bytes.
    const QString description = TextFile::decode(bytes);
    const QString kept = ExchangeWriter::encodeDescription(description).trimmed();
    const QString expected = ExchangeReader::decodeDescription(kept);

    if (ExchangeReader::parseDescription(
            throughAFile(ExchangeWriter::descriptionLines(description))) != expected)
        fuzz::broken("a description does not read back as written");

    ItemManifest document;
    document.description = description;
    quint32 day = 0;
    std::memcpy(&day, bytes.constData(), std::min<size_t>(sizeof day, size_t(bytes.size())));
    document.dateOnDocument = QDate(1900, 1, 1).addDays(day % 80000);
    double amount = 0;
    if (bytes.size() >= qsizetype(sizeof amount))
        std::memcpy(&amount, bytes.constData() + bytes.size() - sizeof amount, sizeof amount);
    if (std::isfinite(amount))
        document.amount = amount;
    const DocumentValues read =
        ExchangeReader::parseDocument(throughAFile(ExchangeWriter::documentLines(document)));
    if (read.description != expected)
        fuzz::broken("a document's description does not read back as written");
    if (ItemRules::parseDate(read.date) != *document.dateOnDocument)
        fuzz::broken("a document's date does not read back as written");
    if (document.amount && ItemRules::leadingNumber(read.amount) != *document.amount)
        fuzz::broken("a document's amount does not read back as written");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    readAsItComes(TextFile::splitLines(TextFile::decode(bytes)));
    writtenThenRead(bytes);
    return 0;
}
