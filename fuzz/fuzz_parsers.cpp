// The parsers of typed and read text: dates, amounts, node keys kept in the settings, the
// outline lines of the text files, and the text files' decoding itself.

#include <QByteArray>
#include <cmath>

#include "core/nodekey.h"
#include "core/textfile.h"
#include "fuzzstore.h"
#include "store/itemrules.h"
#include "store/storecolumns.h"
#include "templates/outlinefile.h"

using namespace qmr;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char*>(data), qsizetype(size));
    const QString text = TextFile::decode(bytes);
    const QStringList lines = TextFile::splitLines(text);
    for (const QString& line : lines)
        if (line.contains(QLatin1Char('\n')) || line.contains(QLatin1Char('\r')))
            fuzz::broken("a split line still holds a line end");

    for (const QString& t : lines + QStringList{text}) {
        const QDate date = ItemRules::parseDate(t);
        if (ItemRules::isValidDate(t) != (ItemRules::isBlank(t) || date.isValid()))
            fuzz::broken("isValidDate disagrees with parseDate");
        if (date.isValid() && ItemRules::parseDate(ItemRules::displayDate(date)) != date)
            fuzz::broken("a date shown does not read back as itself");
        if (ItemRules::dateOrZero(t) != (ItemRules::isBlank(t) ? QDate() : date))
            fuzz::broken("dateOrZero disagrees with parseDate");
        if (!std::isfinite(ItemRules::leadingNumber(t)))
            fuzz::broken("an amount read as infinite or not a number");

        const NodeKey key = NodeKey::parse(t);
        if (!key.isEmpty() && !(NodeKey::parse(key.text()) == key))
            fuzz::broken("a node key does not parse back as itself");

        const OutlineLine outline = OutlineFile::parse(t);
        if (outline.key.size() > 3)
            fuzz::broken("an outline key is longer than three characters");
        StoreColumns::constraintError(t);
        ItemRules::stripBadCharacters(t);
        if (ItemRules::containsBadCharacters(ItemRules::stripBadCharacters(t)))
            fuzz::broken("a stripped name still holds a refused character");
    }
    return 0;
}
