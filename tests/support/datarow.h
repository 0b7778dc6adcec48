#pragma once

#include <QTest>
#include <array>
#include <tuple>

namespace qmr::test {

// A data table in few lines: columns<QString, int>({"key", "count"}), then one row() a case,
// its values in the order of the columns.
template <class... T> void columns(const std::array<const char*, sizeof...(T)>& names)
{
    int i = 0;
    (QTest::addColumn<T>(names[i++]), ...);
}
template <class... V> void row(const char* name, const V&... values)
{
    (QTest::newRow(name) << ... << values);
}

// The current row's values of the named columns, in order: auto [a, b] = fetch<A, B>("a", "b").
template <class... T, class... Name> std::tuple<T...> fetch(const Name&... names)
{
    return {*static_cast<T*>(QTest::qData(names, qMetaTypeId<T>()))...};
}

} // namespace qmr::test
