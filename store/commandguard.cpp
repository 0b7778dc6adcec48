#include "store/commandguard.h"

#include "core/prompter.h"
#include "store/storeerror.h"

namespace qmr {

bool guarded(Prompter& prompter, const std::function<void()>& command)
{
    try {
        command();
        return true;
    } catch (const StoreError& e) {
        prompter.tell(e.message());
    } catch (const std::exception& e) {
        prompter.tell(QString::fromLocal8Bit(e.what()));
    }
    return false;
}

} // namespace qmr
