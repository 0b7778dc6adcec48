#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

namespace qmr::test {

// Every test class of a folder registers here, so that one executable runs them all.
// --only=Class runs one class, --skip=Class leaves one out. A class registered on demand runs
// only when --only names it (a test starts it in a process of its own).
using TestFactory = std::function<std::unique_ptr<QObject>()>;

struct TestEntry
{
    const char* name;
    TestFactory make;
    bool onDemand = false;
};

std::vector<TestEntry>& registry();
int runAll(int argc, char** argv);

// A helper process of the program (the text reading worker) that the executable becomes when
// started with its option, so that tests start the real helper code in a process of its own.
struct ProgramMode
{
    const char* option;
    int (*run)(int argc, char** argv);
};
std::vector<ProgramMode>& programModes();

struct ModeRegistrar
{
    ModeRegistrar(const char* option, int (*run)(int, char**))
    {
        programModes().push_back({option, run});
    }
};

struct Registrar
{
    Registrar(const char* name, TestFactory make, bool onDemand = false)
    {
        registry().push_back({name, std::move(make), onDemand});
    }
};

} // namespace qmr::test

#define QMR_TEST(Class)                                                                            \
    static const qmr::test::Registrar registrar##Class(                                            \
        #Class, [] { return std::unique_ptr<QObject>(new Class); });

#define QMR_TEST_ON_DEMAND(Class)                                                                  \
    static const qmr::test::Registrar registrar##Class(                                            \
        #Class, [] { return std::unique_ptr<QObject>(new Class); }, true);

#define QMR_TEST_PROGRAM_MODE(Name, option, function)                                              \
    static const qmr::test::ModeRegistrar modeRegistrar##Name(option, function);
