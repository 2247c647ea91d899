// The rules of time zones, from the system's database.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace zel {

// A stretch of time, in seconds since 1970 (UTC), in which the difference to UTC stays the same.
struct ZonePeriod {
    std::int64_t begin;   // the first second
    std::int64_t end;     // the second after the last
    std::int64_t offset;  // seconds to add to UTC for local time
    std::string name;     // "CET", "CEST", "-03"
};

// A time zone. Local times are counted in seconds as if they were UTC.
class TimeZone {
  public:
    // The zone of a name of the database, kept until the program ends; may be called from several threads.
    // Throws zel::Error when there is no such zone or no database.
    static const TimeZone& Find(const std::string& name);

    ZonePeriod PeriodAt(std::int64_t utc) const;
    // The periods from that of `begin` to that of `end`, one after another.
    std::vector<ZonePeriod> PeriodsBetween(std::int64_t begin, std::int64_t end) const;
    std::int64_t ToLocal(std::int64_t utc) const { return utc + PeriodAt(utc).offset; }
    // The first instant that shows `local` or, where clocks were put forward over it, the one at which they
    // were.
    std::int64_t ToUtc(std::int64_t local) const;

    explicit TimeZone(const void* rules) : rules_(rules) {}

  private:
    const void* rules_;  // null: UTC
};

}  // namespace zel
