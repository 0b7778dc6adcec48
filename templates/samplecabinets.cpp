#include "templates/samplecabinets.h"

#include <QFile>
#include <QFileInfo>

#include "core/level.h"
#include "core/navigatorcallbacks.h"
#include "core/textfile.h"
#include "store/database.h"
#include "store/itemstore.h"
#include "templates/outlinefile.h"

namespace qmr {

QStringList SampleCabinets::defaultText()
{
    return {
        QStringLiteral("CAB = Generic File Cabinet"),
        QStringLiteral(" DRW = Household Equipment"),
        QStringLiteral("  FLD = Refrigerator"),
        QStringLiteral("  FLD = Stove"),
        QStringLiteral(" DRW = Home"),
        QStringLiteral("  FLD = House Repairs & Improvements"),
        QStringLiteral("  FLD = Mortgage (and Realty Taxes)"),
        QStringLiteral("  FLD = Electricity"),
        QStringLiteral(" DRW = Automobile"),
        QStringLiteral("  FLD = Auto Loan"),
        QStringLiteral("  FLD = Auto Repairs"),
        QStringLiteral(" DRW = Insurance"),
        QStringLiteral("  FLD = Auto"),
        QStringLiteral("  FLD = Life"),
        QStringLiteral("  FLD = Medical"),
        QStringLiteral("  FLD = Home"),
        QStringLiteral(" DRW = Income Tax Returns"),
        QStringLiteral(" DRW = Finances"),
        QStringLiteral("  FLD = Bank Acocunt"),
        QStringLiteral("  FLD = Stocks"),
        QStringLiteral("  FLD = 401k"),
        QStringLiteral("  FLD = Credit Cards"),
    };
}

bool SampleCabinets::writeDefaultSample() const
{
    return TextFile::writeLines(filePath(), defaultText());
}

bool SampleCabinets::ensureFile() const
{
    if (!QFile::exists(filePath()))
        writeDefaultSample();
    return QFile::exists(filePath());
}

QStringList SampleCabinets::sampleNames() const
{
    QStringList names;
    for (const QString& line : TextFile::readLines(filePath()).value_or(QStringList())) {
        const OutlineLine l = OutlineFile::parse(line);
        if (l.key == QLatin1String("CAB"))
            names << l.name;
    }
    return names;
}

QVector<CreatedItem> SampleCabinets::fillSampleCabinet(const QString& name, qint32 cabinetId)
{
    ItemStore items(m_db);
    return OutlineFile::createItems(OutlineFile::section(filePath(), QStringLiteral("CAB"), name),
                                    Level::Cabinet, cabinetId, items, &m_unused);
}

QString SampleCabinets::unusedLinesMessage(const QString& name) const
{
    if (m_unused.isEmpty())
        return QString();
    QStringList lines;
    lines << tr("Some lines of %1 could not be used; the sample cabinet '%2' was made "
                "without them.")
                 .arg(filePath(), name);
    const QString file = QFileInfo(filePath()).fileName();
    for (const UnusedLine& line : m_unused.mid(0, kListedLines))
        lines << QStringLiteral("%1, line %2: %3").arg(file).arg(line.number).arg(line.reason);
    if (m_unused.size() > kListedLines)
        lines
            << (m_unused.size() == kListedLines + 1
                    ? QStringLiteral("... and 1 more line.")
                    : QStringLiteral("... and %1 more lines.").arg(m_unused.size() - kListedLines));
    return lines.join(QLatin1Char('\n'));
}

qint32 SampleCabinets::createSampleCabinet(const QString& name)
{
    m_unused.clear();
    ItemStore items(m_db);
    Database::Transaction tx(m_db);
    const qint32 cabinetId = items.insertItem(Level::Cabinet, -1, name);
    const QVector<CreatedItem> created = fillSampleCabinet(name, cabinetId);
    tx.commit();
    if (!m_navigator)
        return cabinetId;
    m_navigator->itemAdded(CreatedItem{Level::Cabinet, -1, cabinetId, name, {}});
    m_navigator->announce(created);
    m_navigator->showChildren(Level::Cabinet, cabinetId);
    return cabinetId;
}

} // namespace qmr
