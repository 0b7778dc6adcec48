#pragma once

#include "core/pagenotifier.h"
#include "store/commandcontext.h"

namespace qmr {

// The page notifier of the running program: each page that reaches a document sends its
// folder's notice, when the folder has an address and a mail system is set.
class MailPageNotifier : public PageNotifier
{
public:
    explicit MailPageNotifier(const CommandContext& context) : m_context(context) {}

    void pageAdded(qint32 pageId) override;

private:
    CommandContext m_context;
};

} // namespace qmr
