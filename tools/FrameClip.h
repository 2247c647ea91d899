// Lines cut at the limits of a graph.
#pragma once

#include <zel/WorldFrame.h>

namespace zel {

// By how much values beyond the limits still count as on them: a rounding with exact rules, else nothing.
struct FrameSlack {
    explicit FrameSlack(const WorldFrame& frame);
    double x = 0;
    double y = 0;
};

// Cuts a line to what lies within the frame, in place; false when nothing does. With exact rules the limits
// belong to the frame: a line along one is kept, and one that ends beyond it ends on it. With classic rules
// they do not (DrawPen::Clip).
bool ClipToFrame(const WorldFrame& frame, double& x1, double& y1, double& x2, double& y2);

}  // namespace zel
