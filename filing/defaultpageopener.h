#pragma once

#include "core/pageopener.h"

namespace qmr {

class Choosers;
class Prompter;
class Session;

// Opens a page with the desktop's program for its file: what a shortcut page always does,
// and what a page image does until the page viewer takes over.
class DefaultPageOpener : public PageOpener
{
public:
    DefaultPageOpener(Session& session, Prompter& prompter, Choosers& choosers)
        : m_session(session), m_prompter(prompter), m_choosers(choosers)
    {
    }

    // A page that is gone from the store is passed over; a missing file is told.
    void openPage(qint32 pageId) override;

private:
    Session& m_session;
    Prompter& m_prompter;
    Choosers& m_choosers;
};

} // namespace qmr
