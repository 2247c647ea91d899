// What the labels of a scale say, and which of them have room.
#pragma once

#include <zel/ZelRules.h>
#include <zel/platform/Geometry.h>

#include <cstddef>
#include <string>
#include <vector>

namespace zel {

// Each value with up to `digits` significant digits in its shortest form, with a decimal point whatever the
// locale. With exact rules with as many digits as tell neighbours apart.
std::vector<std::string> LabelTexts(const std::vector<double>& values, int digits, ZelRules rules);
// The same as percentages with one decimal, or more where exact rules need them.
std::vector<std::string> PercentTexts(const std::vector<double>& values, ZelRules rules);

// A label along its scale: its middle, and how much of the scale it takes. Logical units.
struct LabelPlace {
    double middle = 0;
    double room = 0;
};

// What a label whose lines have this extent, turned by `angle` tenths of a degree, takes of a horizontal
// scale beside others like it, with a gap.
double RoomAlong(const CSize& extent, int angle);

// The numbers of the labels to write so that none overlaps another: all of them, or those at multiples of the
// smallest round multiple of their step for which that is so. At least one.
std::vector<std::size_t> LabelsWithRoom(const std::vector<double>& values,
                                        const std::vector<LabelPlace>& places);

}  // namespace zel
