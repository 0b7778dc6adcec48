#pragma once

#include <QString>

namespace qmr {

// Long work reports here. `stopped()` is true after the user cancelled or after end().
class Progress
{
public:
    virtual ~Progress() = default;
    virtual void start(const QString& title, int minimum, int maximum) = 0;
    virtual void step(const QString& status) = 0;
    virtual void end() = 0;
    virtual void showCancel() = 0;
    virtual bool stopped() const = 0;
};

// For work that nobody watches (tests, batch runs).
class SilentProgress : public Progress
{
public:
    void start(const QString&, int, int) override { m_stopped = false; }
    void step(const QString&) override {}
    void end() override { m_stopped = true; }
    void showCancel() override {}
    bool stopped() const override { return m_stopped; }

private:
    bool m_stopped = false;
};

} // namespace qmr
