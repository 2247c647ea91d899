#include "scales/TimeZone.h"

#include <zel/Error.h>

#include <algorithm>
#include <chrono>
#include <date/tz.h>
#include <map>
#include <mutex>

namespace zel {
namespace {

using std::chrono::seconds;

// Years in which calendars are still counted without overflow.
constexpr std::int64_t kMostSeconds = 9'000LL * 366 * 86'400;

date::sys_seconds Instant(std::int64_t utc) {
    return date::sys_seconds(seconds(std::clamp(utc, -kMostSeconds, kMostSeconds)));
}

}  // namespace

const TimeZone& TimeZone::Find(const std::string& name) {
    static std::mutex mutex;
    static std::map<std::string, TimeZone> zones;
    const std::lock_guard<std::mutex> lock(mutex);
    const auto known = zones.find(name);
    if (known != zones.end()) return known->second;
    const void* rules = nullptr;
    if (!name.empty() && name != "UTC") {
        try {
            rules = date::locate_zone(name);
        } catch (const std::exception& e) {
            throw Error("Cannot use the time zone \"" + name + "\": " + e.what());
        }
    }
    return zones.emplace(name, TimeZone(rules)).first->second;
}

ZonePeriod TimeZone::PeriodAt(std::int64_t utc) const {
    if (!rules_)
        return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max(), 0, "UTC"};
    const date::sys_info info = static_cast<const date::time_zone*>(rules_)->get_info(Instant(utc));
    return {info.begin.time_since_epoch().count(), info.end.time_since_epoch().count(), info.offset.count(),
            info.abbrev};
}

std::vector<ZonePeriod> TimeZone::PeriodsBetween(std::int64_t begin, std::int64_t end) const {
    std::vector<ZonePeriod> periods{PeriodAt(begin)};
    // A period that does not end after its begin would be asked for again and again.
    while (periods.back().end <= end && periods.back().end > begin) {
        begin = periods.back().end;
        periods.push_back(PeriodAt(begin));
    }
    return periods;
}

std::int64_t TimeZone::ToUtc(std::int64_t local) const {
    if (!rules_) return local;
    constexpr std::int64_t kDay = 86'400;
    // Offsets are below a day, so the instant lies in one of the periods around.
    const std::vector<ZonePeriod> periods = PeriodsBetween(local - kDay, local + kDay);
    for (const ZonePeriod& period : periods) {
        const std::int64_t utc = local - period.offset;
        if (utc < period.begin) return period.begin;  // clocks were put forward over it
        if (utc < period.end) return utc;
    }
    return local - periods.back().offset;
}

}  // namespace zel
