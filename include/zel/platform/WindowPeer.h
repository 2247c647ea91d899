// What a window of the framework stands on.
#pragma once

#include <zel/platform/GraphicsDevice.h>

namespace zel {

// A window of the window system, or a stand-in for one in tests.
class WindowPeer {
  public:
    virtual ~WindowPeer() = default;
    // Asks for a part of the window to be painted again; device pixels.
    virtual void Invalidate(const CRect& area, bool erase) = 0;
    // The surface of the client area, for drawing outside of painting. Valid as long as the peer is.
    virtual GraphicsDevice& ClientDevice() = 0;
};

}  // namespace zel
