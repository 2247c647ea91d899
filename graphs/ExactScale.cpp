#include "graphs/ExactScale.h"

#include <zel/Zel2Graph.h>

#include <algorithm>
#include <cmath>

namespace zel {
namespace {

constexpr double kShareAround = 0.1;  // of a lone value, on each side of it
constexpr double kRounding = 1e-9;    // of the range
constexpr std::size_t kEnough = 3;
constexpr int kMostFiner = 4;  // times as many intervals

}  // namespace

std::pair<double, double> MappableRange(double a, double b) {
    if (a != b || !std::isfinite(a)) return {a, b};
    const double around = a != 0 ? std::fabs(a) * kShareAround : 1.0;
    return {a - around, a + around};
}

std::vector<double> PositionsWithin(int type, double a, double b, int n) {
    const double low = std::min(a, b), high = std::max(a, b), slack = (high - low) * kRounding;
    std::vector<double> within;
    for (int intervals = n; intervals <= kMostFiner * n; ++intervals) {
        std::vector<double> all;
        if (!Zel2Graph::AutoCoord(type, low, high, intervals, all, ZelRules::EXACT)) return {};
        within.clear();
        std::copy_if(all.begin(), all.end(), std::back_inserter(within),
                     [=](double v) { return v >= low - slack && v <= high + slack; });
        if (within.size() >= kEnough) break;
    }
    return within;
}

}  // namespace zel
