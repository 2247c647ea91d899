#include "backends/qt/PenStyle.h"

namespace zel::qt {

std::span<const double> DashLengths(UINT style) {
    static constexpr double kDash[] = {18, 6}, kDot[] = {3, 3}, kDashDot[] = {9, 6, 3, 6},
                            kDashDotDot[] = {9, 3, 3, 3, 3, 3};
    switch (style) {
        case PS_DASH:
            return kDash;
        case PS_DOT:
            return kDot;
        case PS_DASHDOT:
            return kDashDot;
        case PS_DASHDOTDOT:
            return kDashDotDot;
        default:
            return {};
    }
}

}  // namespace zel::qt
