#include "store/cabinetlock.h"

#include "store/cipher.h"
#include "store/database.h"
#include "store/sqltext.h"

namespace qmr {

QString CabinetLock::password(qint32 cabinetId) const
{
    const QVariant stored = m_db.scalar(
        QStringLiteral("SELECT Password FROM Cabinet WHERE CabinetId = ?"), {cabinetId});
    // A Null written outside the program counts as no password.
    return decryptText(nullToString(stored), Cipher::key());
}

bool CabinetLock::isCabinetOpen(qint32 cabinetId) const
{
    return inOpenList(cabinetId) || password(cabinetId).isEmpty();
}

bool CabinetLock::passwordMatches(qint32 cabinetId, const QString& typed) const
{
    return typed == password(cabinetId);
}

void CabinetLock::recordOpen(qint32 cabinetId)
{
    if (!m_open.contains(cabinetId) && m_open.size() < kSlots)
        m_open << cabinetId;
}

} // namespace qmr
