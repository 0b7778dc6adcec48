#include "mail/mailaddress.h"

namespace qmr {

bool MailAddress::holdsControl(const QString& address)
{
    for (const QChar c : address) {
        switch (c.category()) {
        case QChar::Other_Control:
        case QChar::Separator_Line:
        case QChar::Separator_Paragraph:
            return true;
        default:
            break;
        }
    }
    return false;
}

Attempt<> MailAddress::check(const QStringList& addresses, const QString& field)
{
    for (const QString& address : addresses)
        if (holdsControl(address))
            return Failure(tr("The address in %1 holds a line break or another "
                              "control character.")
                               .arg(field));
    return {};
}

} // namespace qmr
