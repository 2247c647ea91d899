// Texts that are drawn together.
#pragma once

#include "backends/qt/GlyphLine.h"

#include <optional>
#include <vector>

namespace zel::qt {

// Flat texts in one font and colour, held back so that a page describes them in one piece instead of setting
// everything anew for each. Whoever draws something else must first look whether it touches what is held.
// Lengths in device units.
class TextBatch {
  public:
    // Whether texts with these settings can be held at all: turned, decorated and opaque ones cannot, nor
    // those that are not plain (Face::IsPlain).
    static bool CanHold(const GraphicsState& state, std::span<const TextSpan> spans);
    // Whether they go with what is held already.
    bool Matches(const GraphicsState& state) const;
    void Add(const GraphicsState& state, std::span<const TextSpan> spans);
    bool Touches(const QRectF& area) const;
    bool IsEmpty() const { return !line_; }
    // Draws what is held, and holds nothing then.
    void Draw(QPainter& painter);

  private:
    std::optional<GlyphLine> line_;
    struct Box {
        double left, top, right, bottom;
    };

    std::vector<Box> boxes_;
    const Face* face_ = nullptr;
    double em_ = 0;
    COLORREF color_ = 0;
    BYTE transparency_ = 0;
};

}  // namespace zel::qt
