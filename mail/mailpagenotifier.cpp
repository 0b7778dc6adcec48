#include "mail/mailpagenotifier.h"

#include "mail/pagenotice.h"

namespace qmr {

void MailPageNotifier::pageAdded(qint32 pageId)
{
    PageNotice::sendPageNotice(m_context, pageId);
}

} // namespace qmr
