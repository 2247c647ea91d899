// Ticks in the middle of categories: all of them, or every n-th where they do not fit.
#include "scales/TickLayout.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace zel {

Ticks CategoryTicks(const Scale& scale, const TickRoom& room) {
    const std::vector<std::string>& names = scale.Names();
    const auto first = static_cast<std::int64_t>(std::max(0.0, std::ceil(scale.Low())));
    const auto last =
        static_cast<std::int64_t>(std::min(static_cast<double>(names.size()) - 1, std::floor(scale.High())));
    Ticks ticks;
    if (last < first) return ticks;
    const double distance = std::max(room.gap, 1e-9);
    // Beyond this many there is no room for even one letter each.
    const auto most = static_cast<std::int64_t>(std::max(1.0, room.length / distance));
    // Growing by quarters keeps the number of tries small.
    for (std::int64_t stride = std::max<std::int64_t>(1, (last - first + 1) / (most + 1));
         stride <= last - first + 1; stride = std::max(stride + 1, stride * 5 / 4)) {
        ticks.major.clear();
        for (std::int64_t i = first; i <= last; i += stride)
            ticks.major.push_back({static_cast<double>(i), names[static_cast<std::size_t>(i)], {}});
        if (LabelsFit(scale, ticks.major, room)) return ticks;
    }
    ticks.major.resize(1);
    return ticks;
}

}  // namespace zel
