#pragma once

#include <QCoreApplication>
#include <QString>
#include <QStringList>

#include "core/attempt.h"

namespace qmr {

// The addresses of a send as people type them. Blanks and line ends around an address are
// dropped, as they always were; a line break or another control character inside one would let
// its rest reach the mail server as a command of its own, or the message as a header of its
// own, so such an address never goes out.
class MailAddress
{
    Q_DECLARE_TR_FUNCTIONS(qmr::MailAddress)

public:
    // True when `address` holds a control character or a line or paragraph separator.
    static bool holdsControl(const QString& address);
    // Whether every address of `field` may go; refused with the message naming the field.
    static Attempt<> check(const QStringList& addresses, const QString& field);

    // The fields that addresses come from, as a refusal names them.
    static QString sendToField() { return tr("'Send to'"); }
    static QString senderField() { return tr("'Your email address' of File/Email Settings"); }
    static QString testAddressField() { return tr("'Your email address'"); }
};

} // namespace qmr
