// From logical to device units, as the mapping modes of a device context define it.
#pragma once

#include <zel/platform/GdiTypes.h>

namespace zel {

// Window and viewport of one context. Device = (logical - window origin) x viewport extent / window extent +
// viewport origin, for each axis, rounded to the nearest unit, halves towards plus infinity, saturated.
struct CoordinateMap {
    int mode = MM_TEXT;
    CPoint windowOrigin;
    CSize windowExtent{1, 1};
    CPoint viewportOrigin;
    CSize viewportExtent{1, 1};

    bool IsIdentity() const { return windowExtent == viewportExtent && windowOrigin == viewportOrigin; }
    CPoint ToDevice(const CPoint& logical) const { return IsIdentity() ? logical : Scaled(logical); }
    CPoint ToLogical(const CPoint& device) const;
    CRect ToDevice(const CRect& logical) const {
        return {ToDevice(logical.TopLeft()), ToDevice(logical.BottomRight())};
    }
    CRect ToLogical(const CRect& device) const {
        return {ToLogical(device.TopLeft()), ToLogical(device.BottomRight())};
    }
    // Sizes scale by the extents alone: origins play no part, and a negative extent does not change the sign.
    CSize ToDevice(const CSize& logical) const;
    CSize ToLogical(const CSize& device) const;
    // Device units for one logical unit, always positive. Pen widths follow the x scale, font heights the y
    // scale.
    double ScaleX() const;
    double ScaleY() const;

  private:
    CPoint Scaled(const CPoint& logical) const;
};

}  // namespace zel
