#include "platform/graphics/StandardMetrics.h"
#include "platform/graphics/Utf8.h"

#include <zel/platform/MetricsDevice.h>

#include <cmath>

namespace zel {
namespace {

bool IsBold(const LOGFONT& font) {
    return font.lfWeight > (FW_NORMAL + FW_BOLD) / 2;
}

FontSize SizeOf(const GraphicsState& state) {
    return SizeOfFont(state.font.lfHeight, state.map.ScaleY());
}

int ToLogicalX(const GraphicsState& state, double units) {
    return Truncate(std::round(units / state.map.ScaleX()));
}
int ToLogicalY(const GraphicsState& state, double units) {
    return Truncate(std::round(units / state.map.ScaleY()));
}

}  // namespace

MetricsDevice::MetricsDevice(int unitsPerInch, CSize surface)
    : caps_{.unitsPerInch = static_cast<double>(unitsPerInch),
            .units = surface,
            .widthInches = static_cast<double>(surface.cx) / unitsPerInch,
            .heightInches = static_cast<double>(surface.cy) / unitsPerInch} {}

std::vector<int> MetricsDevice::PrefixExtents(const GraphicsState& state, std::string_view text,
                                              std::span<const std::size_t> ends) {
    const FontSize size = SizeOf(state);
    const bool bold = IsBold(state.font);
    std::vector<int> extents;
    extents.reserve(ends.size());
    std::int64_t units = 0;
    std::size_t at = 0;
    for (const std::size_t end : ends) {
        while (at < end) units += size.Scaled(StandardAdvance(NextCodePoint(text, at), bold));
        extents.push_back(ToLogicalX(state, static_cast<double>(units)));
    }
    return extents;
}

CSize MetricsDevice::TextExtent(const GraphicsState& state, std::string_view text) {
    if (text.empty()) return {};
    const std::size_t end = text.size();
    return {PrefixExtents(state, text, {&end, 1}).front(), TextMetrics(state).tmHeight};
}

TEXTMETRIC MetricsDevice::TextMetrics(const GraphicsState& state) {
    const FontSize size = SizeOf(state);
    const double ascent = size.Scaled(kAscent);
    const double descent = size.Scaled(kDescent);
    TEXTMETRIC metrics{};
    metrics.tmAscent = ToLogicalY(state, ascent);
    metrics.tmDescent = ToLogicalY(state, descent);
    metrics.tmHeight = Add(metrics.tmAscent, metrics.tmDescent);
    metrics.tmInternalLeading = ToLogicalY(state, std::max(0.0, ascent + descent - size.em));
    metrics.tmExternalLeading = ToLogicalY(state, size.Scaled(kLineGap));
    metrics.tmAveCharWidth = ToLogicalX(state, size.Scaled(StandardAdvance('x', false)));
    metrics.tmMaxCharWidth = ToLogicalX(state, 2 * size.em);
    metrics.tmWeight = state.font.lfWeight;
    metrics.tmItalic = state.font.lfItalic;
    metrics.tmUnderlined = state.font.lfUnderline;
    metrics.tmStruckOut = state.font.lfStrikeOut;
    return metrics;
}

}  // namespace zel
