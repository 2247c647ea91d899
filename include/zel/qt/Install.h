// The Qt back end: images, PDF and SVG files.
#pragma once

namespace zel::qt {

// Installs the back end as the program's platform. Safe to call more than once, before drawing begins. A Qt
// application object is made where there is none, when the first device needs it; a host that shows windows
// of its own makes its application object first. Without a display, and with QT_QPA_PLATFORM unset, drawing
// goes offscreen.
void Install();

}  // namespace zel::qt
