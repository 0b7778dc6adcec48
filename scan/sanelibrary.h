#pragma once

#include <memory>
#include <sane/sane.h>

namespace qmr {

// The calls the program makes into SANE, behind one interface so that a test can put a device
// of its own there (one that stops answering, for instance). The scan thread makes every call
// but cancel(), which SANE allows from another thread while that one reads.
class SaneLibrary
{
public:
    virtual ~SaneLibrary() = default;

    virtual SANE_Status init() = 0;
    virtual void exit() = 0;
    virtual SANE_Status devices(const SANE_Device*** list) = 0;
    virtual SANE_Status open(SANE_String_Const name, SANE_Handle* handle) = 0;
    virtual void close(SANE_Handle handle) = 0;
    virtual const SANE_Option_Descriptor* descriptor(SANE_Handle handle, SANE_Int option) = 0;
    virtual SANE_Status control(SANE_Handle handle, SANE_Int option, SANE_Action action,
                                void* value, SANE_Int* info) = 0;
    virtual SANE_Status start(SANE_Handle handle) = 0;
    virtual SANE_Status parameters(SANE_Handle handle, SANE_Parameters* parameters) = 0;
    virtual SANE_Status read(SANE_Handle handle, SANE_Byte* data, SANE_Int size,
                             SANE_Int* length) = 0;
    virtual void cancel(SANE_Handle handle) = 0;

    // The system's library with the backends it is configured for.
    static std::shared_ptr<SaneLibrary> system();
};

} // namespace qmr
