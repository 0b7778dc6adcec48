#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

#include "scan/sanelibrary.h"

namespace qmr::test {

// A SANE library with one small grey device whose chosen call stops answering until the test
// lets it go (10 s at most), as a scanner that hangs does. Its sheet never comes: a read
// waits until it is cancelled.
class HangingSane : public SaneLibrary
{
public:
    enum class Call { Devices, Cancel, Close };
    explicit HangingSane(Call hangIn) : m_hangIn(hangIn) {}

    // The call that hangs has been entered; a read is waiting for its sheet.
    bool hanging() const { return flag(m_hanging); }
    bool reading() const { return flag(m_reading); }
    void release() { set(m_released); }

    SANE_Status init() override { return SANE_STATUS_GOOD; }
    void exit() override {}
    SANE_Status devices(const SANE_Device*** list) override
    {
        hangIf(Call::Devices);
        *list = m_list;
        return SANE_STATUS_GOOD;
    }
    SANE_Status open(SANE_String_Const, SANE_Handle* handle) override
    {
        *handle = this;
        return SANE_STATUS_GOOD;
    }
    void close(SANE_Handle) override { hangIf(Call::Close); }
    const SANE_Option_Descriptor* descriptor(SANE_Handle, SANE_Int) override { return nullptr; }
    SANE_Status control(SANE_Handle, SANE_Int option, SANE_Action action, void* value,
                        SANE_Int*) override
    {
        if (option != 0 || action != SANE_ACTION_GET_VALUE)
            return SANE_STATUS_INVAL;
        *static_cast<SANE_Int*>(value) = 1; // the count alone: no options of its own
        return SANE_STATUS_GOOD;
    }
    SANE_Status start(SANE_Handle) override { return SANE_STATUS_GOOD; }
    SANE_Status parameters(SANE_Handle, SANE_Parameters* p) override
    {
        *p = SANE_Parameters{SANE_FRAME_GRAY, SANE_TRUE, 8, 8, 8, 8};
        return SANE_STATUS_GOOD;
    }
    SANE_Status read(SANE_Handle, SANE_Byte*, SANE_Int, SANE_Int* length) override
    {
        *length = 0;
        std::unique_lock lock(m_lock);
        m_reading = true;
        m_changed.wait(lock, [this] { return m_cancelled; });
        m_reading = false;
        return SANE_STATUS_CANCELLED;
    }
    void cancel(SANE_Handle) override
    {
        set(m_cancelled);
        hangIf(Call::Cancel);
    }

private:
    bool flag(const bool& value) const
    {
        std::lock_guard lock(m_lock);
        return value;
    }
    void set(bool& value)
    {
        std::lock_guard lock(m_lock);
        value = true;
        m_changed.notify_all();
    }
    void hangIf(Call call)
    {
        if (call != m_hangIn)
            return;
        std::unique_lock lock(m_lock);
        m_hanging = true;
        m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_released; });
    }

    const Call m_hangIn;
    SANE_Device m_device{"hang:0", "Noname", "hanger", "virtual device"};
    const SANE_Device* m_list[2] = {&m_device, nullptr};
    mutable std::mutex m_lock;
    std::condition_variable m_changed;
    bool m_hanging = false;
    bool m_reading = false;
    bool m_cancelled = false;
    bool m_released = false;
};

} // namespace qmr::test
