// Lines cut at the limits of a graph.
#pragma once

#include <zel/WorldFrame.h>

namespace zel {

struct WorldPoint {
    double x;
    double y;
};

// By how much values beyond the limits still count as on them: a rounding with exact rules, else nothing.
struct FrameSlack {
    explicit FrameSlack(const WorldFrame& frame);
    double x = 0;
    double y = 0;
};

// Cuts a line to what lies within the frame, its limits included, in place; false when nothing does. A line
// along a limit is kept, one that goes on beyond it ends on it.
bool ClipClosed(const WorldFrame& frame, double& x1, double& y1, double& x2, double& y2);

}  // namespace zel
