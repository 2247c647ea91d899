#include "graphs/LabelAnchor.h"

#include <zel/platform/GdiTypes.h>

#include <cstdlib>

namespace zel {
namespace {

// `angle` brought into (-1800, 1800].
int Normalized(int angle) {
    const int turned = angle % 3600;
    return turned > 1800 ? turned - 3600 : turned <= -1800 ? turned + 3600 : turned;
}

}  // namespace

unsigned AnchorBelow(int angle) {
    const int turn = Normalized(angle);
    const int steepness = std::abs(turn) <= 900 ? std::abs(turn) : 1800 - std::abs(turn);
    const unsigned vertical = steepness >= 450 ? DT_VCENTER : std::abs(turn) > 900 ? DT_BOTTOM : DT_TOP;
    if (turn == 0 || turn == 1800) return DT_CENTER | vertical;
    return (turn > 0 ? DT_RIGHT : DT_LEFT) | vertical;
}

// Turned by half a circle about its tick, a label above is one below.
unsigned AnchorAbove(int angle) {
    const unsigned below = AnchorBelow(angle);
    const unsigned vertical = below & DT_VCENTER ? DT_VCENTER : below & DT_BOTTOM ? DT_TOP : DT_BOTTOM;
    const unsigned horizontal = below & DT_CENTER ? DT_CENTER : below & DT_RIGHT ? DT_LEFT : DT_RIGHT;
    return horizontal | vertical;
}

unsigned AnchorBeside(int angle, bool left) {
    const bool upright = std::abs(Normalized(angle)) <= 900;
    return (upright == left ? DT_RIGHT : DT_LEFT) | DT_VCENTER;
}

}  // namespace zel
