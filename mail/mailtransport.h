#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <atomic>
#include <optional>

#include "mail/mimemessage.h"

namespace qmr {

// A way out for a finished message. send() runs on a worker thread, within time limits of its
// own, and gives up soon after `cancel` turns true.
class MailTransport
{
public:
    virtual ~MailTransport() = default;
    // Nothing on success, else what went wrong in the transport's own words.
    virtual std::optional<MailFailure> send(const QByteArray& message, const QString& from,
                                            const QStringList& recipients,
                                            const std::atomic_bool& cancel) = 0;
};

} // namespace qmr
