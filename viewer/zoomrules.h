#pragma once

#include <optional>

namespace qmr {

// The viewer's scale, as a percentage (100 is one image pixel to one screen pixel).
class ZoomRules
{
public:
    static constexpr double kMinimum = 10;
    static constexpr double kMaximum = 10000;

    // A quarter more, while below the maximum; nothing at the limit. The test is made before
    // multiplying, so the last step may pass the limit.
    static std::optional<double> zoomIn(double percent);
    // A quarter less, while above the minimum (11 gives 8.25, and then no more).
    static std::optional<double> zoomOut(double percent);
    // The percentage that fits `imagePixels` into a control of `controlPixels`, rounded. A
    // control pixel counts 15 units and an image pixel 16, which leaves room for a scroll bar
    // on the other side; a result outside the limits gives 100.
    static double fit(int controlPixels, int imagePixels);
};

} // namespace qmr
