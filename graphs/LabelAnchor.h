// Where a turned label touches its tick.
#pragma once

namespace zel {

// The anchor flags of a label that hangs from a tick above it and is turned by `angle` tenths of a degree: it
// ends at the tick when it rises to the right and begins there when it falls; steep text is centred on the
// tick.
unsigned AnchorBelow(int angle);
// The same for a label that stands on a tick below it.
unsigned AnchorAbove(int angle);
// The anchor of a label to the left of its tick, or to the right of it.
unsigned AnchorBeside(int angle, bool left);

}  // namespace zel
