#include "filing/cabinetopener.h"

#include <QCoreApplication>

#include "core/choosers.h"
#include "core/navigatorcallbacks.h"
#include "core/prompter.h"
#include "store/commandcontext.h"
#include "store/session.h"

namespace qmr {

bool CabinetOpener::openCabinet(const CommandContext& context, qint32 cabinetId)
{
    CabinetLock& locks = context.session.locks();
    if (locks.inOpenList(cabinetId))
        return true;
    if (!locks.isCabinetOpen(cabinetId)) {
        const std::optional<QString> typed = context.choosers.askPassword();
        if (!typed)
            return false;
        if (!locks.passwordMatches(cabinetId, *typed)) {
            context.prompter.tell(
                QCoreApplication::translate("qmr::CabinetOpener", "Access Denied"));
            return false;
        }
    }
    // A cabinet without a password enters the list too, and its node is rebuilt once.
    locks.recordOpen(cabinetId);
    if (context.navigator)
        context.navigator->cabinetOpened(cabinetId);
    return true;
}

} // namespace qmr
