#pragma once

#include <QObject>
#include <functional>
#include <memory>
#include <vector>

namespace qmr::test {

// Every test class of a folder registers here, so that one executable runs them all.
// --only=Class runs one class, --skip=Class leaves one out.
using TestFactory = std::function<std::unique_ptr<QObject>()>;

struct TestEntry
{
    const char* name;
    TestFactory make;
};

std::vector<TestEntry>& registry();
int runAll(int argc, char** argv);

struct Registrar
{
    Registrar(const char* name, TestFactory make) { registry().push_back({name, std::move(make)}); }
};

} // namespace qmr::test

#define QMR_TEST(Class)                                                                            \
    static const qmr::test::Registrar registrar##Class(                                            \
        #Class, [] { return std::unique_ptr<QObject>(new Class); });
