#include "store/cabinetlock.h"

#include "core/choosers.h"
#include "core/navigatorcallbacks.h"
#include "core/prompter.h"
#include "store/cipher.h"
#include "store/database.h"

namespace qmr {

bool CabinetLock::isCabinetOpen(qint32 cabinetId) const
{
    if (inOpenList(cabinetId))
        return true;
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT Password FROM Cabinet WHERE CabinetId = ?"), {cabinetId});
    if (rs.recordCount() < 1)
        return true;
    // A Null written outside the program counts as no password.
    return decryptText(rs.text(0, QStringLiteral("Password")), Cipher::key()).isEmpty();
}

bool CabinetLock::openCabinet(qint32 cabinetId, Choosers& choosers, Prompter& prompter,
                              NavigatorCallbacks* navigator)
{
    if (inOpenList(cabinetId))
        return true;
    const Recordset rs = m_db.openRecordset(
        QStringLiteral("SELECT Password, Name FROM Cabinet WHERE CabinetId = ?"), {cabinetId});
    QString clear;
    QString name;
    if (rs.recordCount() > 0) {
        clear = decryptText(rs.text(0, QStringLiteral("Password")), Cipher::key());
        name = rs.text(0, QStringLiteral("Name"));
    }
    if (!clear.isEmpty()) {
        const std::optional<QString> typed = choosers.askPassword();
        if (!typed)
            return false;
        if (*typed != clear) {
            prompter.tell(QStringLiteral("Access Denied"));
            return false;
        }
    }
    // A full list keeps the cabinet unlisted: it is asked for again next time.
    if (m_open.size() < kSlots)
        m_open << cabinetId;
    if (navigator)
        navigator->RebuildCabinetNode(cabinetId, name);
    return true;
}

} // namespace qmr
