#pragma once

namespace qmr {

// A range of values that holds both of its limits.
template <typename T> struct ValueRange
{
    T from{};
    T thru{};

    bool operator==(const ValueRange&) const = default;
};

} // namespace qmr
