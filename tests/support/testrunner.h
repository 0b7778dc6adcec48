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
