// Which labels fit.
#pragma once

#include <zel/Scale.h>

namespace zel {

// Whether no two labels are nearer than the gap of `room`, each standing at the middle of its text.
bool LabelsFit(const Scale& scale, const std::vector<Tick>& ticks, const TickRoom& room);
// How many ticks the room is made for; at least 2.
double WantedTicks(const TickRoom& room);
// Ticks without those outside the ends of the scale and those whose labels say the same as another's.
void KeepWithin(const Scale& scale, std::vector<Tick>& ticks);
// Where nothing else fits: the two ends, as far as their labels fit.
Ticks EndTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format);

// One file for each kind of axis.
Ticks NumberTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format);
Ticks LogarithmTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format);
Ticks FunctionTicks(const Scale& scale, const TickRoom& room, const NumberFormat& format);
Ticks CalendarTicks(const Scale& scale, const TickRoom& room);
Ticks DurationTicks(const Scale& scale, const TickRoom& room);
Ticks CategoryTicks(const Scale& scale, const TickRoom& room);

std::string CalendarText(const Scale& scale, double value, double resolution);
std::string DurationText(double value, double resolution);

// Of the numbers 1, 2 and 5 times a power of ten, the smallest that is at least `step`.
double RoundStep(double step);

}  // namespace zel
