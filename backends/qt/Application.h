// The Qt application object that fonts and painting need.
#pragma once

namespace zel::qt {

// Makes sure that there is one. Throws CNotSupportedException* when the host has one without graphics.
void EnsureApplication();

}  // namespace zel::qt
