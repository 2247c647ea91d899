#include "scales/NumberText.h"
#include "scales/TickLayout.h"
#include "scales/TimeZone.h"

#include <zel/Error.h>
#include <zel/Scale.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <mutex>

namespace zel {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kMost = std::numeric_limits<double>::max();

struct FunctionPair {
    Scale::Function forward, inverse;
};
struct KnownFunctions {
    std::mutex mutex;
    std::map<std::string, FunctionPair> pairs;
};
KnownFunctions& Known() {
    static KnownFunctions known;
    return known;
}

class ScaleTransform : public SeriesTransform {
  public:
    explicit ScaleTransform(const Scale& scale) : scale_(scale) {}
    double At(double value) const override { return scale_.Forward(value); }
    void Apply(const double* values, double* places, std::size_t n) const override {
        if (scale_.GetKind() == Scale::Kind::LOGARITHM && scale_.High() > 0) {
            // The case that is drawn most, without asking for the kind at each value. Of the logarithms, that
            // of base 2 is the fastest by far, and all of them lie alike.
            for (std::size_t i = 0; i < n; ++i)
                places[i] = values[i] > 0 ? std::log2(values[i]) : std::numeric_limits<double>::quiet_NaN();
            return;
        }
        for (std::size_t i = 0; i < n; ++i) places[i] = scale_.Forward(values[i]);
    }
    double Bound(double value) const override {
        const double place = scale_.Forward(value);
        if (!std::isnan(place) || std::isnan(value)) return place;
        return scale_.High() > 0 ? -kInfinity : kInfinity;
    }

  private:
    Scale scale_;
};

bool IsUsable(const Scale& scale, double value) {
    return std::isfinite(value) && scale.HasPlace(value);
}

}  // namespace

Scale Scale::Linear(double from, double to) {
    return {Kind::LINEAR, from, to};
}

Scale Scale::Logarithm(double from, double to, double base) {
    Scale scale(Kind::LOGARITHM, from, to);
    if (!(base > 1) || !std::isfinite(base))
        throw Error("Cannot make a logarithmic scale of base " + FixedText(base, 3) +
                    ": the base must be above 1");
    scale.base_ = base;
    return scale;
}

Scale Scale::SymmetricLogarithm(double from, double to, double threshold) {
    Scale scale(Kind::SYMMETRIC_LOGARITHM, from, to);
    if (!(threshold > 0) || !std::isfinite(threshold))
        throw Error("Cannot make a symmetric logarithmic scale: its threshold must be above 0");
    scale.threshold_ = threshold;
    return scale;
}

Scale Scale::SquareRoot(double from, double to) {
    return {Kind::SQUARE_ROOT, from, to};
}

Scale Scale::WithFunction(double from, double to, Function forward, Function inverse, std::string name) {
    Scale scale(Kind::FUNCTION, from, to);
    if (!forward && !name.empty()) {
        const std::lock_guard<std::mutex> lock(Known().mutex);
        const auto pair = Known().pairs.find(name);
        if (pair != Known().pairs.end()) {
            forward = pair->second.forward;
            inverse = pair->second.inverse;
        }
    }
    if (!forward || !inverse)
        throw Error("Cannot make a scale with functions" + (name.empty() ? "" : " \"" + name + "\"") +
                    ": both directions must be given");
    scale.forward_ = std::move(forward);
    scale.inverse_ = std::move(inverse);
    scale.functionName_ = std::move(name);
    return scale;
}

void Scale::RegisterFunction(const std::string& name, Function forward, Function inverse) {
    const std::lock_guard<std::mutex> lock(Known().mutex);
    Known().pairs[name] = {std::move(forward), std::move(inverse)};
}

Scale Scale::Time(double from, double to, const std::string& zone) {
    Scale scale(Kind::TIME, from, to);
    scale.zone_ = &TimeZone::Find(zone);
    scale.zoneName_ = zone;
    return scale;
}

Scale Scale::Duration(double from, double to) {
    return {Kind::DURATION, from, to};
}

Scale Scale::Categories(std::vector<std::string> names) {
    Scale scale(Kind::CATEGORIES, -0.5, std::max(0.5, static_cast<double>(names.size()) - 0.5));
    scale.names_ = std::make_shared<const std::vector<std::string>>(std::move(names));
    return scale;
}

const std::vector<std::string>& Scale::Names() const {
    static const std::vector<std::string> none;
    return names_ ? *names_ : none;
}

Scale Scale::WithEnds(double from, double to) const {
    Scale scale = *this;
    scale.from_ = from;
    scale.to_ = to;
    return scale;
}

Scale Scale::WithOrigin(double origin) const {
    Scale scale = *this;
    scale.origin_ = origin;
    return scale;
}

bool Scale::HasPlace(double value) const {
    return std::isfinite(Forward(value));
}

Scale Scale::WithUsableEnds() const {
    const bool reversed = IsReversed();
    // The difference of the ends of the range of doubles overflows.
    const auto bounded = [](double v) { return std::isfinite(v) ? std::clamp(v, -kMost / 4, kMost / 4) : v; };
    double low = bounded(Low()), high = bounded(High());
    if (!IsUsable(*this, low) || !IsUsable(*this, high)) {
        // A logarithm that begins at 0 or below shows three decades below its upper end.
        const bool oneSided = kind_ == Kind::LOGARITHM || kind_ == Kind::SQUARE_ROOT;
        if (oneSided && IsUsable(*this, high) && high > 0) {
            low = kind_ == Kind::LOGARITHM ? high * 1e-3 : 0;
        } else if (kind_ == Kind::LOGARITHM && std::isfinite(low) && low < 0) {
            high = low * 1e-3;
        } else if (std::isfinite(low) && !std::isfinite(high) && IsUsable(*this, low)) {
            high = low + std::max(1.0, std::fabs(low));
        } else if (std::isfinite(high) && !std::isfinite(low) && IsUsable(*this, high)) {
            low = high - std::max(1.0, std::fabs(high));
        } else {
            low = kind_ == Kind::LOGARITHM ? 1 : 0;
            high = kind_ == Kind::LOGARITHM ? 10 : 1;
        }
    }
    low = bounded(low);
    high = bounded(high);
    if (!(Forward(low) < Forward(high))) {
        const double middle = low;
        if (kind_ == Kind::LOGARITHM) {
            low = middle > 0 ? middle / 2 : middle * 2;
            high = middle > 0 ? middle * 2 : middle / 2;
        } else {
            const double half = kind_ == Kind::TIME ? 0.5 : middle == 0 ? 1 : std::fabs(middle) / 2;
            low = kind_ == Kind::SQUARE_ROOT ? std::max(0.0, middle - half) : middle - half;
            high = middle + half;
        }
        if (!(Forward(low) < Forward(high))) {
            low = kind_ == Kind::LOGARITHM ? 1 : 0;
            high = kind_ == Kind::LOGARITHM ? 10 : 1;
        }
    }
    return reversed ? WithEnds(high, low) : WithEnds(low, high);
}

Scale Scale::WithRoundEnds() const {
    if (kind_ == Kind::TIME || kind_ == Kind::CATEGORIES) return *this;
    double low = Low(), high = High();
    if (kind_ == Kind::LOGARITHM) {
        const auto outwards = [this](double size, bool up) {
            const double exponent = std::log(size) / std::log(base_);
            const double power = std::pow(base_, std::floor(exponent + (up ? -1e-9 : 1e-9)));
            if (base_ != 10) return up ? power * base_ : power;
            // To 1, 2 or 5 of a decade.
            for (const double digit : up ? std::vector{1.0, 2.0, 5.0, 10.0} : std::vector{5.0, 2.0, 1.0})
                if (up ? digit * power >= size * (1 - 1e-12) : digit * power <= size * (1 + 1e-12))
                    return digit * power;
            return size;
        };
        if (low > 0) {
            low = std::min(low, outwards(low, false));
            high = std::max(high, outwards(high, true));
        } else {
            const double oldLow = low;
            low = -std::max(-low, outwards(-oldLow, true));
            high = -std::min(-high, outwards(-high, false));
        }
    } else {
        const double range = high - low;
        if (!(range > 1e-12 * std::max(std::fabs(low), std::fabs(high))) || !(range < kMost / 8))
            return *this;
        const double step = RoundStep(range / 14);
        const double roundLow = std::floor(low / step + 1e-9) * step,
                     roundHigh = std::ceil(high / step - 1e-9) * step;
        low = std::min(low, roundLow);
        high = std::max(high, roundHigh);
    }
    const Scale rounded = IsReversed() ? WithEnds(high, low) : WithEnds(low, high);
    return rounded.HasPlace(low) && rounded.HasPlace(high) ? rounded : *this;
}

double Scale::Forward(double value) const {
    switch (kind_) {
        case Kind::LOGARITHM:
            if (High() > 0) return value > 0 ? std::log2(value) : std::numeric_limits<double>::quiet_NaN();
            return value < 0 ? -std::log2(-value) : std::numeric_limits<double>::quiet_NaN();
        case Kind::SYMMETRIC_LOGARITHM:
            return std::asinh(value / (2 * threshold_));
        case Kind::SQUARE_ROOT:
            return value >= 0 ? std::sqrt(value) : std::numeric_limits<double>::quiet_NaN();
        case Kind::FUNCTION:
            return forward_(value);
        default:
            return value;
    }
}

double Scale::Inverse(double u) const {
    switch (kind_) {
        case Kind::LOGARITHM:
            return High() > 0 ? std::exp2(u) : -std::exp2(-u);
        case Kind::SYMMETRIC_LOGARITHM:
            return 2 * threshold_ * std::sinh(u);
        case Kind::SQUARE_ROOT:
            return u * u;
        case Kind::FUNCTION:
            return inverse_(u);
        default:
            return u;
    }
}

std::optional<double> Scale::PlaceOf(double value) const {
    const double from = Forward(from_), to = Forward(to_);
    const double place = (Forward(value) - from) / (to - from);
    return std::isfinite(place) ? std::optional(place) : std::nullopt;
}

double Scale::ValueAt(double place) const {
    // The ends come back as they were given.
    if (place == 0) return from_;
    if (place == 1) return to_;
    const double from = Forward(from_), to = Forward(to_);
    return Inverse(from + place * (to - from));
}

std::shared_ptr<const SeriesTransform> Scale::Transform() const {
    switch (kind_) {
        case Kind::LOGARITHM:
        case Kind::SYMMETRIC_LOGARITHM:
        case Kind::SQUARE_ROOT:
        case Kind::FUNCTION:
            return std::make_shared<ScaleTransform>(*this);
        default:
            return nullptr;
    }
}

Ticks Scale::MakeTicks(const TickRoom& room, const NumberFormat& format) const {
    const Scale usable = WithUsableEnds();
    switch (kind_) {
        case Kind::LOGARITHM:
            return LogarithmTicks(usable, room, format);
        case Kind::SYMMETRIC_LOGARITHM:
        case Kind::SQUARE_ROOT:
        case Kind::FUNCTION:
            return FunctionTicks(usable, room, format);
        case Kind::TIME:
            return CalendarTicks(usable, room);
        case Kind::DURATION:
            return DurationTicks(usable, room);
        case Kind::CATEGORIES:
            return CategoryTicks(usable, room);
        default:
            return NumberTicks(usable, room, format);
    }
}

std::string Scale::TextOf(double value, double resolution, const NumberFormat& format) const {
    if (kind_ == Kind::TIME) return CalendarText(*this, value, resolution);
    if (kind_ == Kind::DURATION) return DurationText(value, resolution);
    if (kind_ == Kind::CATEGORIES) {
        const double index = std::floor(value + 0.5);
        return index >= 0 && index < static_cast<double>(Names().size())
                   ? Names()[static_cast<std::size_t>(index)]
                   : "";
    }
    if (!std::isfinite(value)) return "";
    const std::vector<double> values{value};
    // To the decimal place that the resolution asks for.
    const double step =
        resolution > 0 ? std::pow(10.0, std::floor(std::log10(resolution))) : std::fabs(value) * 1e-6;
    std::vector<double> rounded{step > 0 ? std::round(value / step) * step : value};
    const NumberTexts texts = TextsOf(rounded, step > 0 ? step : 1, format);
    return texts.texts.front() + texts.factor;
}

}  // namespace zel
