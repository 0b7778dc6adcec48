#pragma once

#include <QList>

#include "core/pagenotifier.h"

namespace qmr {

// Passes each page that reaches a document on to every notifier plugged in: the folder's
// mail notice and the reading of the page's text.
class PageNotifiers : public PageNotifier
{
public:
    void add(PageNotifier& notifier) { m_notifiers << &notifier; }
    void pageAdded(qint32 pageId) override
    {
        for (PageNotifier* notifier : std::as_const(m_notifiers))
            notifier->pageAdded(pageId);
    }
    void pictureSaved(qint32 pageId) override
    {
        for (PageNotifier* notifier : std::as_const(m_notifiers))
            notifier->pictureSaved(pageId);
    }
    void picturesArrived() override
    {
        for (PageNotifier* notifier : std::as_const(m_notifiers))
            notifier->picturesArrived();
    }

private:
    QList<PageNotifier*> m_notifiers;
};

} // namespace qmr
