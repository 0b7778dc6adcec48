#include "scan/sanelibrary.h"

#include <cerrno>
#include <pthread.h>

// SANE's thread helper makes the reader thread of a backend cancellable at any instruction and
// cancels it whenever a pass ends. A cancel that lands inside malloc or free leaves the
// allocator's lock taken for good: the reader never finishes ending, and the next allocation
// in the program, the window's included, waits forever. So every thread here stays
// cancellable only where the C library allows it by default (a read, a write, a sleep), where
// a cancel is safe. This definition stands in for the C library's; programs that use SANE
// export it (see CMakeLists.txt), so that the backends loaded at run time call it.
extern "C" int pthread_setcanceltype(int type, int* oldtype)
{
    if (type != PTHREAD_CANCEL_DEFERRED && type != PTHREAD_CANCEL_ASYNCHRONOUS)
        return EINVAL;
    if (oldtype)
        *oldtype = PTHREAD_CANCEL_DEFERRED;
    return 0;
}

namespace qmr {

namespace {

class SystemSane : public SaneLibrary
{
public:
    SANE_Status init() override
    {
        SANE_Int version = 0;
        return sane_init(&version, nullptr);
    }
    void exit() override { sane_exit(); }
    SANE_Status devices(const SANE_Device*** list) override
    {
        return sane_get_devices(list, SANE_FALSE);
    }
    SANE_Status open(SANE_String_Const name, SANE_Handle* handle) override
    {
        return sane_open(name, handle);
    }
    void close(SANE_Handle handle) override { sane_close(handle); }
    const SANE_Option_Descriptor* descriptor(SANE_Handle handle, SANE_Int option) override
    {
        return sane_get_option_descriptor(handle, option);
    }
    SANE_Status control(SANE_Handle handle, SANE_Int option, SANE_Action action, void* value,
                        SANE_Int* info) override
    {
        return sane_control_option(handle, option, action, value, info);
    }
    SANE_Status start(SANE_Handle handle) override { return sane_start(handle); }
    SANE_Status parameters(SANE_Handle handle, SANE_Parameters* parameters) override
    {
        return sane_get_parameters(handle, parameters);
    }
    SANE_Status read(SANE_Handle handle, SANE_Byte* data, SANE_Int size, SANE_Int* length) override
    {
        return sane_read(handle, data, size, length);
    }
    void cancel(SANE_Handle handle) override { sane_cancel(handle); }
};

} // namespace

std::shared_ptr<SaneLibrary> SaneLibrary::system()
{
    return std::make_shared<SystemSane>();
}

} // namespace qmr
