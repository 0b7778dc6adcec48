#pragma once

#include <QString>
#include <QVector>

namespace qmr {

class Choosers;
class Database;
class NavigatorCallbacks;
class Prompter;

// Which cabinets are open in this run. A cabinet with a password stays locked, and its
// content out of sight, until its password has been given once; it stays open until exit.
class CabinetLock
{
public:
    static constexpr int kSlots = 100;

    explicit CabinetLock(Database& db) : m_db(db) {}

    // Asks nobody: in the open list, or no password.
    bool isCabinetOpen(qint32 cabinetId) const;
    // Asks for the password if need be; on success enters the list and has the navigator
    // rebuild the cabinet's node (when `navigator` is given).
    bool openCabinet(qint32 cabinetId, Choosers& choosers, Prompter& prompter,
                     NavigatorCallbacks* navigator);
    bool inOpenList(qint32 cabinetId) const { return m_open.contains(cabinetId); }

private:
    Database& m_db;
    QVector<qint32> m_open;
};

} // namespace qmr
