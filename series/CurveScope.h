// One figure of many lines or symbols.
#pragma once

#include <zel/platform/DC.h>

namespace zel {

// What is drawn while this lives is one figure (GraphicsDevice::BeginCurve), also when an exception ends it.
class CurveScope {
  public:
    // Without a context, or when it is not wanted, nothing begins.
    explicit CurveScope(CDC* dc, bool wanted = true) : dc_(wanted ? dc : nullptr) {
        if (dc_) dc_->BeginCurve();
    }
    ~CurveScope() {
        if (dc_) dc_->EndCurve();
    }
    CurveScope(const CurveScope&) = delete;
    CurveScope& operator=(const CurveScope&) = delete;

  private:
    CDC* dc_;
};

}  // namespace zel
