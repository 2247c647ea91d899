#include "backends/qt/TextBatch.h"

#include "platform/graphics/ComplexText.h"

#include <algorithm>

namespace zel::qt {
namespace {

constexpr double kTolerance = 2;    // device units
constexpr std::size_t kMost = 512;  // texts: each shape on the page is compared with all of them

}  // namespace

bool TextBatch::CanHold(const GraphicsState& state, std::span<const TextSpan> spans) {
    if (state.font.lfEscapement != 0 || state.font.lfUnderline || state.font.lfStrikeOut ||
        state.backgroundMode == OPAQUE)
        return false;
    return FaceOf(state.font).IsPlain(WholeOf(spans));
}

bool TextBatch::Matches(const GraphicsState& state) const {
    return IsEmpty() ||
           (boxes_.size() < kMost && color_ == state.textColor && transparency_ == state.textTransparency &&
            face_ == &FaceOf(state.font) && em_ == EmHeight(state));
}

void TextBatch::Add(const GraphicsState& state, std::span<const TextSpan> spans) {
    Face& face = FaceOf(state.font);
    const double em = EmHeight(state);
    if (!line_) {
        line_.emplace(face, em, std::max(kTolerance, 0.02 * em));
        line_->PlaceOnWholeUnits();
        face_ = &face;
        em_ = em;
        color_ = state.textColor;
        transparency_ = state.textTransparency;
    }
    line_->Break();
    Box box{1e30, 1e30, -1e30, -1e30};
    for (const TextSpan& span : spans) {
        const double width = WidthOf(state, span.text);
        const BaselineOffset offset = OffsetOf(state, width);
        const CPoint at = state.map.ToDevice(span.at);
        const QPointF baseline(at.x + offset.x, at.y + offset.y);
        line_->Add(span.text, baseline);
        box = {std::min(box.left, baseline.x()), std::min(box.top, baseline.y() - face.Ascent() * em),
               std::max(box.right, baseline.x() + width),
               std::max(box.bottom, baseline.y() + face.Descent() * em)};
    }
    boxes_.push_back(box);
}

bool TextBatch::Touches(const QRectF& area) const {
    const Box shape{area.left(), area.top(), area.right(), area.bottom()};
    return std::any_of(boxes_.begin(), boxes_.end(), [&](const Box& box) {
        return box.left < shape.right && shape.left < box.right && box.top < shape.bottom &&
               shape.top < box.bottom;
    });
}

void TextBatch::Draw(QPainter& painter) {
    if (!line_) return;
    line_->Draw(painter, ColorOf(color_, transparency_));
    line_.reset();
    boxes_.clear();
}

}  // namespace zel::qt
