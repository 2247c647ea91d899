// Zel2Graph's choice of round scales: pure computations on numbers.
#include "graphs/ExactScale.h"

#include <zel/Zel2Graph.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <tuple>

namespace {

constexpr double kStepFactors[] = {2.0, 2.5, 2.0};  // from a power of ten: 1, 2, 5, 10, 20, ...
constexpr double kNearZero = 1e-10;
constexpr int kLinear = 1;

// The exponent of the first step to try. One below the floor for negative whole numbers; the climb makes up
// for it.
double StartExponent(double logarithm) {
    return std::trunc(logarithm >= 0.0 ? logarithm : logarithm - 1.0);
}

// Each position is a multiple of the step, so that a scale through zero has a 0 in it and not a rounding
// error.
void AppendMultiples(double lo, double step, int intervals, std::vector<double>& out) {
    const double first = std::round(lo / step);
    for (int i = 0; i <= intervals; ++i) out.push_back((first + i) * step);
}

int RefuseRange(double value, double& lo, double& hi, double& step, int& count) {
    lo = hi = value;
    step = 1.0;
    count = 1;
    return 0;
}

}  // namespace

int Zel2Graph::AutoInt(double a, double b, int n, double& lo, double& hi, double& step, int& count) {
    double least = a;
    double most = b;
    if (a > b) std::swap(least, most);
    if (most == least || !std::isfinite(most - least)) return RefuseRange(most, lo, hi, step, count);
    if (n < 1) n = 1;
    step = std::pow(10.0, StartExponent(std::log10((most - least) / n)));
    if (step < 1e-300) return RefuseRange(most, lo, hi, step, count);
    for (int next = 0;; next = (next + 1) % 3) {
        const double first = std::floor(least / step);
        const double last = std::ceil(most / step);
        lo = step * first;
        hi = step * last;
        count = zel::Truncate(last - first);
        if (last - first <= n) return 1;
        const double previous = step;
        step *= kStepFactors[next];
        // Values far from zero and close together cannot be told apart by any step: give up rather than climb
        // on.
        if (!std::isfinite(step) || step == previous) return RefuseRange(most, lo, hi, step, count);
    }
}

bool Zel2Graph::AutoCoord(int type, double a, double b, int n, std::vector<double>& out) {
    return AutoCoord(type, a, b, n, out, ZelRules::CLASSIC);
}

bool Zel2Graph::AutoCoord(int type, double a, double b, int n, std::vector<double>& out, ZelRules rules) {
    double lo = 0;
    double hi = 0;
    double step = 0;
    int count = 0;
    if (type != kLinear || !AutoInt(a, b, n, lo, hi, step, count)) return false;
    const int intervals = std::min(n, count);
    if (intervals < 0) throw std::length_error("vector<T> too long");
    out.reserve(out.size() + static_cast<std::size_t>(intervals) + 1);
    if (rules == ZelRules::EXACT) {
        AppendMultiples(lo, step, intervals, out);
        return true;
    }
    // Added up one by one: the rounding of the sum is part of the result.
    double value = lo;
    out.push_back(value);
    for (int i = 0; i < intervals; ++i) out.push_back(value += step);
    if (std::fabs(out.back()) < kNearZero) out.assign({0.0, 0.25, 0.5, 0.75, 1.0});
    return true;
}

int Zel2Graph::Coord(double x, double a, double b, int p0, int p1, int) {
    return zel::Truncate((x - a) / (b - a) * (static_cast<double>(p1) - p0) + p0);
}

void Zel2Graph::AdjustAxis(Range& range, BYTE type, double a, double b, int n, int fit,
                           std::vector<double>& labels, std::vector<double>& lines,
                           std::vector<double>& ticks) {
    labels.clear();
    const bool exact = IsExact();
    if (exact) std::tie(a, b) = zel::MappableRange(a, b);
    range = {a, b};
    if (exact && !fit) {
        labels = zel::PositionsWithin(type, a, b, n);
    } else {
        AutoCoord(type, a, b, n, labels, Rules());
    }
    if (!labels.empty()) {
        const bool backwards = exact && a > b;
        if (fit)
            range = backwards ? Range{labels.back(), labels.front()} : Range{labels.front(), labels.back()};
        lines = labels;
        ticks = labels;
    }
    SetRanges(x_, y_);
}

void Zel2Graph::AdjustXAxis(double a, double b, int n, int fit) {
    AdjustAxis(x_, xType_, a, b, n, fit, xLabels_, xLines_, xTicks_);
}

void Zel2Graph::AdjustYAxis(double a, double b, int n, int fit) {
    AdjustAxis(y_, yType_, a, b, n, fit, yLabels_, yLines_, yTicks_);
}

void Zel2Graph::SetAuxCS(double x0, double y0, double x1, double y1, int nx, int ny) {
    const int xCount = nx >= 1 ? nx : 0;
    const int yCount = ny >= 0 ? ny : xCount;
    auxX_.clear();
    auxY_.clear();
    if (x1 > x0 && nx >= 1) AutoCoord(xType_, x0, x1, xCount, auxX_, Rules());
    if (y1 > y0 && yCount > 0) AutoCoord(yType_, y0, y1, yCount, auxY_, Rules());
}

void Zel2Graph::SetYRLabels(double a, double b) {
    yRightLabels_.clear();
    if (a == b || yTicks_.empty()) return;
    yRightLabels_.resize(yTicks_.size());
    yRightLabels_.front() = a;
    yRightLabels_.back() = b;
    const double step = (b - a) / static_cast<double>(yTicks_.size() - 1);
    for (std::size_t i = 1; i + 1 < yRightLabels_.size(); ++i) yRightLabels_[i] = yRightLabels_[i - 1] + step;
}
