#pragma once

#include <QString>
#include <QVector>

namespace qmr {

class Database;

// Which cabinets are open in this run. A cabinet with a password stays locked, and its
// content out of sight, until its password has been given once; it stays open until exit.
// Asking for the password is the navigator's business; this only checks and records.
class CabinetLock
{
public:
    static constexpr int kSlots = 100;

    explicit CabinetLock(Database& db) : m_db(db) {}

    // In the open list, or no password (a missing row counts as open).
    bool isCabinetOpen(qint32 cabinetId) const;
    // Whether `typed` is the cabinet's password.
    bool passwordMatches(qint32 cabinetId, const QString& typed) const;
    // Enters the cabinet in the open list. A full list keeps it unlisted: it is asked for
    // again next time.
    void recordOpen(qint32 cabinetId);
    bool inOpenList(qint32 cabinetId) const { return m_open.contains(cabinetId); }

private:
    // The clear password, "" for none or a missing row.
    QString password(qint32 cabinetId) const;

    Database& m_db;
    QVector<qint32> m_open;
};

} // namespace qmr
