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
    // The context is held by reference: a temporary one would be gone before its use.
    MailPageNotifier(CommandContext&& context) = delete;

    void pageAdded(qint32 pageId) override;

private:
    const CommandContext& m_context;
};

} // namespace qmr
