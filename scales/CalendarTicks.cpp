// Ticks of dates and times of day. They stand on the boundaries that clocks and calendars of the zone show,
// also where clocks are put forward or back.
#include "scales/Calendar.h"
#include "scales/NumberText.h"
#include "scales/TickLayout.h"
#include "scales/TimeZone.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zel {
namespace {

constexpr std::array kMonths = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
constexpr std::int64_t kMostTicks = 2000;
constexpr double kSecondsOfMonth = 30.44 * 86'400, kSecondsOfYear = 365.25 * 86'400;
constexpr double kLeastResolution = 1e-9;
// Beyond, calendars mean nothing and numbers of years do.
constexpr double kMostSeconds = 8000.0 * kSecondsOfYear;

enum class Unit { FRACTION, SECOND, DAY, WEEK, MONTH, YEAR };
struct Step {
    Unit unit;
    double count;    // of seconds, days, months or years
    double seconds;  // about as long
};

// From the finest to the coarsest.
std::vector<Step> StepsFor(double range, double wanted) {
    std::vector<Step> steps;
    const double least = range / (4 * wanted);
    if (least < 0.5) {
        for (double step = std::max(RoundStep(least), kLeastResolution); step < 0.9;
             step = RoundStep(step * 1.5))
            steps.push_back({Unit::FRACTION, step, step});
    }
    for (const double unit : {1.0, 60.0})
        for (const double count : {1, 2, 5, 10, 15, 30})
            steps.push_back({Unit::SECOND, count * unit, count * unit});
    for (const double hours : {1, 2, 3, 6, 12}) steps.push_back({Unit::SECOND, hours * kHour, hours * kHour});
    for (const double days : {1, 2}) steps.push_back({Unit::DAY, days, days * kDay});
    steps.push_back({Unit::WEEK, 7, 7 * kDay});
    for (const double months : {1, 3, 6}) steps.push_back({Unit::MONTH, months, months * kSecondsOfMonth});
    for (double years = 1; years <= 5000; years = RoundStep(years * 1.5))
        steps.push_back({Unit::YEAR, years, years * kSecondsOfYear});
    std::erase_if(steps, [=](const Step& step) { return step.seconds < least; });
    return steps;
}

std::string TwoDigits(std::int64_t number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}
std::string YearText(std::int64_t year) {
    return year < 0 ? kMinusSign + std::to_string(-year) : std::to_string(year);
}
std::string MonthText(const CivilTime& t) {
    return std::string(kMonths[static_cast<std::size_t>(t.month - 1)]) + " " + YearText(t.year);
}
std::string DateText(const CivilTime& t) {
    return std::to_string(t.day) + " " + MonthText(t);
}
std::string ClockText(const CivilTime& t, bool seconds) {
    return TwoDigits(t.hour) + ":" + TwoDigits(t.minute) + (seconds ? ":" + TwoDigits(t.second) : "");
}

// A tick and the local time that its texts speak of.
struct Mark {
    double value;
    CivilTime local;
    double fraction = 0;  // of a second
    std::string zone;     // "CET"
    std::string label, context;
};

class Marker {
  public:
    Marker(const Scale& scale, const Step& step)
        : zone_(TimeZone::Find(scale.Zone())),
          step_(step),
          origin_(static_cast<std::int64_t>(scale.Origin())),
          low_(scale.Low()),
          high_(scale.High()) {}

    std::vector<Mark> Run() {
        switch (step_.unit) {
            case Unit::FRACTION:
                AddFractions();
                break;
            case Unit::SECOND:
                AddTimes();
                break;
            case Unit::DAY:
            case Unit::WEEK:
                AddDays();
                break;
            default:
                AddMonths();
        }
        return std::move(marks_);
    }

  private:
    std::int64_t First() const { return origin_ + static_cast<std::int64_t>(std::floor(low_)); }
    std::int64_t Last() const { return origin_ + static_cast<std::int64_t>(std::ceil(high_)); }
    // From seconds since 1970 to a value of the scale.
    double ValueOf(std::int64_t utc) const { return static_cast<double>(utc - origin_); }
    bool Add(double value, std::int64_t local, double fraction, const std::string& zone) {
        if (value < low_ || value > high_) return true;
        marks_.push_back({value, CivilOf(local), fraction, zone, {}, {}});
        return marks_.size() < kMostTicks;
    }

    void AddFractions() {
        const double begin = std::ceil(low_ / step_.count - 1e-6);
        const std::int64_t perSecond = std::llround(1 / step_.count);
        for (double i = begin; i * step_.count <= high_ + 1e-6 * step_.count; i += 1) {
            const auto whole =
                static_cast<std::int64_t>(std::floor(i / static_cast<double>(perSecond) + 1e-12));
            const double part = i - static_cast<double>(whole * perSecond);
            const double fraction = part / static_cast<double>(perSecond);
            const ZonePeriod period = zone_.PeriodAt(origin_ + whole);
            const double value = std::clamp(static_cast<double>(whole) + fraction, low_, high_);
            if (!Add(value, origin_ + whole + period.offset, fraction, period.name)) return;
        }
    }

    // Within a period local times and instants run alike.
    void AddTimes() {
        const auto step = static_cast<std::int64_t>(step_.count);
        std::int64_t newest = std::numeric_limits<std::int64_t>::min();  // local time
        for (const ZonePeriod& period : zone_.PeriodsBetween(First(), Last())) {
            const std::int64_t begin = std::max(period.begin, First()),
                               end = std::min(period.end, Last() + 1);
            for (std::int64_t local = -FloorTo(-(begin + period.offset), step); local - period.offset < end;
                 local += step) {
                // An hour that comes twice is marked twice where hours are, else once.
                const bool again = local <= newest;
                newest = std::max(newest, local);
                if (again && step > kHour) continue;
                if (!Add(ValueOf(local - period.offset), local, 0, period.name)) return;
            }
        }
    }

    void AddDays() {
        const std::int64_t step =
            (step_.unit == Unit::WEEK ? 7 : static_cast<std::int64_t>(step_.count)) * kDay;
        const std::int64_t monday = 4 * kDay;  // 1970-01-05
        std::int64_t local = FloorTo(zone_.ToLocal(First()), kDay);
        for (; zone_.ToUtc(local) <= Last(); local += kDay) {
            const CivilTime day = CivilOf(local);
            // Every second day: the odd ones, without the 31st, which is followed by another odd one.
            const bool wanted = step_.unit == Unit::WEEK
                                    ? FloorTo(local - monday, step) == local - monday
                                    : step == kDay || (day.day % 2 == 1 && day.day != 31);
            if (!wanted) continue;
            if (!Add(ValueOf(zone_.ToUtc(local)), local, 0, {})) return;
        }
    }

    void AddMonths() {
        const std::int64_t step =
            static_cast<std::int64_t>(step_.count) * (step_.unit == Unit::YEAR ? 12 : 1);
        const CivilTime begin = CivilOf(zone_.ToLocal(First()));
        for (std::int64_t month = FloorTo(begin.year * 12 + begin.month - 1, step);; month += step) {
            const std::int64_t local = SecondsOfDate(0, month + 1, 1);
            const std::int64_t utc = zone_.ToUtc(local);
            if (ValueOf(utc) > high_ || !Add(ValueOf(utc), local, 0, {})) return;
        }
    }

    const TimeZone& zone_;
    const Step step_;
    const std::int64_t origin_;
    const double low_, high_;
    std::vector<Mark> marks_;
};

// What changes from tick to tick, and what only now and then.
void WriteTexts(std::vector<Mark>& marks, const Step& step) {
    const int decimals = step.unit == Unit::FRACTION
                             ? std::max(1, static_cast<int>(std::ceil(-std::log10(step.count) - 1e-9)))
                             : 0;
    for (Mark& mark : marks) {
        const CivilTime& t = mark.local;
        switch (step.unit) {
            case Unit::FRACTION:
                mark.label = TwoDigits(t.second) + FixedText(mark.fraction, decimals).substr(1);
                mark.context = DateText(t) + " " + ClockText(t, false);
                break;
            case Unit::SECOND:
                mark.label = ClockText(t, step.count < kMinute);
                mark.context = DateText(t);
                break;
            case Unit::DAY:
            case Unit::WEEK:
                mark.label = std::to_string(t.day);
                mark.context = MonthText(t);
                break;
            case Unit::MONTH:
                mark.label = kMonths[static_cast<std::size_t>(t.month - 1)];
                mark.context = YearText(t.year);
                break;
            case Unit::YEAR:
                mark.label = YearText(t.year);
        }
    }
    // Clocks were put back: the same time comes twice, and both say which.
    for (std::size_t i = 0; i < marks.size(); ++i) {
        for (std::size_t k = i + 1;
             k < marks.size() && marks[k].value - marks[i].value <= 3.0 * kHour && step.unit == Unit::SECOND;
             ++k) {
            if (marks[i].label != marks[k].label || marks[i].zone == marks[k].zone) continue;
            marks[i].label += " " + marks[i].zone;
            marks[k].label += " " + marks[k].zone;
        }
    }
}

// The context stands under the first tick that has it.
std::vector<Tick> TicksOf(const std::vector<Mark>& marks) {
    std::vector<Tick> ticks;
    const std::string* before = nullptr;
    for (const Mark& mark : marks) {
        const bool changes = !before || *before != mark.context;
        ticks.push_back({mark.value, mark.label, changes ? mark.context : std::string()});
        before = &mark.context;
    }
    return ticks;
}

// A context that reaches into the next one is left out: the next says more.
bool FitContexts(const Scale& scale, std::vector<Tick>& ticks, const TickRoom& room) {
    if (!room.extent) return true;
    Tick* before = nullptr;
    double beforeAt = 0, beforeHalf = 0;
    std::size_t left = 0;
    for (Tick& tick : ticks) {
        if (tick.context.empty()) continue;
        const double at = scale.PlaceOf(tick.value).value_or(0) * room.length,
                     half = room.extent(tick.context) / 2;
        if (before && std::fabs(at - beforeAt) < half + beforeHalf + room.gap) {
            if (before != &ticks.front()) return false;
            before->context.clear();
            --left;
        }
        before = &tick;
        beforeAt = at;
        beforeHalf = half;
        ++left;
    }
    return left > 0 || ticks.front().label.size() >= 4;
}

std::vector<double> MinorOf(const Scale& scale, const std::vector<Step>& finer,
                            const std::vector<Tick>& major, double most) {
    for (auto step = finer.rbegin(); step != finer.rend(); ++step) {
        if (step->unit == Unit::WEEK) continue;
        if ((scale.High() - scale.Low()) / step->seconds > most) return {};
        std::vector<double> values;
        std::size_t found = 0;
        for (const Mark& mark : Marker(scale, *step).Run()) {
            const bool isMajor =
                std::any_of(major.begin(), major.end(), [&](const Tick& t) { return t.value == mark.value; });
            found += isMajor ? 1 : 0;
            if (!isMajor) values.push_back(mark.value);
        }
        if (found == major.size()) return values;  // else the labelled ones are not among them
    }
    return {};
}

}  // namespace

Ticks CalendarTicks(const Scale& scale, const TickRoom& room) {
    if (std::max(std::fabs(scale.Low()), std::fabs(scale.High())) + std::fabs(scale.Origin()) > kMostSeconds)
        return NumberTicks(scale, room, {});
    const double wanted = WantedTicks(room);
    const double range = scale.High() - scale.Low();
    const std::vector<Step> steps = StepsFor(range, wanted);
    Ticks fallback;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        if (range / steps[i].seconds > 1.25 * wanted) continue;
        std::vector<Mark> marks = Marker(scale, steps[i]).Run();
        if (marks.empty()) continue;
        WriteTexts(marks, steps[i]);
        Ticks ticks;
        ticks.major = TicksOf(marks);
        if (!LabelsFit(scale, ticks.major, room) || !FitContexts(scale, ticks.major, room)) continue;
        ticks.minor =
            MinorOf(scale, std::vector<Step>(steps.begin(), steps.begin() + static_cast<std::ptrdiff_t>(i)),
                    ticks.major, 6 * wanted);
        if (ticks.major.size() >= 2) return ticks;
        if (fallback.major.empty()) fallback = std::move(ticks);
    }
    return fallback;
}

std::string CalendarText(const Scale& scale, double value, double resolution) {
    if (!std::isfinite(value) || std::fabs(value) > kMostSeconds) return "";
    const auto whole = static_cast<std::int64_t>(std::floor(value));
    const CivilTime t =
        CivilOf(TimeZone::Find(scale.Zone()).ToLocal(static_cast<std::int64_t>(scale.Origin()) + whole));
    if (resolution >= 0.9 * kDay) return DateText(t);
    if (resolution >= kMinute) return DateText(t) + " " + ClockText(t, false);
    std::string text = DateText(t) + " " + ClockText(t, true);
    if (resolution >= 1 || resolution <= 0) return text;
    const int decimals = std::min(9, static_cast<int>(std::ceil(-std::log10(resolution))));
    const double part = std::min(value - static_cast<double>(whole), 1 - std::pow(10.0, -decimals));
    return text + FixedText(part, decimals).substr(1);
}

}  // namespace zel
