#pragma once

#include <QCoreApplication>
#include <QStringList>

#include "core/apphome.h"
#include "core/navigatorcallbacks.h"
#include "templates/outlinefile.h"

namespace qmr {

class Database;
class NavigatorCallbacks;

// Ready-made cabinet outlines in Sample.txt; a built-in default is written when it is missing.
class SampleCabinets
{
    Q_DECLARE_TR_FUNCTIONS(qmr::SampleCabinets)

public:
    SampleCabinets(AppHome home, Database& db, NavigatorCallbacks* navigator)
        : m_home(std::move(home)), m_db(db), m_navigator(navigator)
    {
    }

    Database& db() { return m_db; }
    QString filePath() const { return m_home.file(QStringLiteral("Sample.txt")); }
    static QStringList defaultText();
    bool writeDefaultSample() const;
    // Writes the default when the file is missing; false when it is still missing.
    bool ensureFile() const;
    // The names of the samples, in file order.
    QStringList sampleNames() const;
    // Makes the cabinet and its outline in one transaction, then shows it in the navigator.
    // Returns the new cabinet's id. A line that cannot be used is passed over; unusedLines()
    // tells which.
    qint32 createSampleCabinet(const QString& name);
    // The lines the last createSampleCabinet() passed over, and why.
    const QVector<UnusedLine>& unusedLines() const { return m_unused; }
    // The message that names them, "" when there were none.
    QString unusedLinesMessage(const QString& name) const;

    // Lines listed one by one in the message; more are counted.
    static constexpr int kListedLines = 15;

private:
    QVector<CreatedItem> fillSampleCabinet(const QString& name, qint32 cabinetId);

    AppHome m_home;
    Database& m_db;
    NavigatorCallbacks* m_navigator;
    QVector<UnusedLine> m_unused;
};

} // namespace qmr
