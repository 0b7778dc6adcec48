#pragma once

#include <QCoreApplication>
#include <QString>
#include <optional>

namespace qmr {

struct CommandContext;
class Session;

// The short mail that a folder with an address receives whenever a page reaches one of its
// documents (a scan, a move, a dropped file).
class PageNotice
{
    Q_DECLARE_TR_FUNCTIONS(qmr::PageNotice)

public:
    struct Notice
    {
        QString address;
        QString folder; // the folder's name
        QString subject;
        QString body;
    };

    // The notice for a page, or nothing when its folder has no address (blanks are none) or
    // one of the rows on the way is missing.
    static std::optional<Notice> compose(Session& session, qint32 pageId);
    // SendPageNotice: stops silently when no mail system is set or there is nothing to send;
    // otherwise the send routine of the settings' system, to the folder's address, with no
    // attachments. A store failure is passed over: the notice is best effort. An address that
    // holds a line break or another control character leaves the notice out and is logged.
    static void sendPageNotice(const CommandContext& context, qint32 pageId);
};

} // namespace qmr
