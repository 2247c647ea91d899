#include <zel/platform/RecordingDevice.h>

#include <cstdio>

namespace zel {
namespace {

std::string Number(long value) {
    return std::to_string(value);
}
std::string Text(const CPoint& p) {
    return Number(p.x) + "," + Number(p.y);
}
std::string Text(const CRect& r) {
    return Text(r.TopLeft()) + " " + Text(r.BottomRight());
}
std::string Text(const CSize& s) {
    return Number(s.cx) + "," + Number(s.cy);
}

std::string Color(COLORREF color) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", GetRValue(color), GetGValue(color), GetBValue(color));
    return text;
}

// Nothing for opaque ink.
std::string OpacityText(BYTE transparency) {
    return transparency == 0 ? "" : " opacity " + Number(255 - transparency);
}

std::string PenText(const LOGPEN& pen) {
    static constexpr const char* kStyles[] = {"solid",      "dash", "dot",        "dashdot",
                                              "dashdotdot", "null", "insideframe"};
    const char* style = pen.lopnStyle <= PS_INSIDEFRAME ? kStyles[pen.lopnStyle] : "unknown";
    return std::string("pen ") + style + " " + Number(pen.lopnWidth.x) + " " + Color(pen.lopnColor) +
           OpacityText(pen.lopnTransparency) + "\n";
}

std::string BrushText(const LOGBRUSH& brush) {
    if (brush.lbStyle == BS_NULL) return "brush null\n";
    const std::string kind = brush.lbStyle == BS_HATCHED ? "hatch " + Number(brush.lbHatch) + " " : "solid ";
    return "brush " + kind + Color(brush.lbColor) + OpacityText(brush.lbTransparency) + "\n";
}

std::string FontText(const LOGFONT& font) {
    std::string text = std::string("font \"") + font.lfFaceName + "\" " + Number(font.lfHeight);
    if (font.lfWeight) text += " weight " + Number(font.lfWeight);
    if (font.lfItalic) text += " italic";
    if (font.lfUnderline) text += " underline";
    if (font.lfStrikeOut) text += " strikeout";
    if (font.lfEscapement) text += " angle " + Number(font.lfEscapement);
    return text + "\n";
}

std::string MapText(const CoordinateMap& map) {
    if (map.IsIdentity()) return "map none\n";
    return "map window " + Text(map.windowOrigin) + " " + Text(map.windowExtent) + " viewport " +
           Text(map.viewportOrigin) + " " + Text(map.viewportExtent) + "\n";
}

std::string ClipText(const GraphicsState& state) {
    if (!state.clip) return "clip none\n";
    std::string text = "clip";
    for (const CRect& rect : state.clip->Rects()) text += " " + Text(rect);
    return text + "\n";
}

std::string PointsText(std::span<const CPoint> points) {
    std::string text;
    for (const CPoint& point : points) text += " " + Text(point);
    return text;
}

}  // namespace

void RecordingDevice::Clear() {
    text_.clear();
    pen_.clear();
    brush_.clear();
    font_.clear();
    textColor_.clear();
    mode_ = kDefaultMode;
    map_ = kDefaultMap;
    clip_ = kDefaultClip;
}

void RecordingDevice::WriteSetting(std::string& last, const std::string& line) {
    if (line == last) return;
    last = line;
    text_ += line;
}

void RecordingDevice::WriteCommon(const GraphicsState& state) {
    WriteSetting(map_, MapText(state.map));
    WriteSetting(clip_, ClipText(state));
}

void RecordingDevice::WritePen(const GraphicsState& state) {
    WriteCommon(state);
    WriteSetting(mode_, "mode " + Number(state.rasterMode) + "\n");
    WriteSetting(pen_, PenText(state.pen));
}

void RecordingDevice::WriteShape(const GraphicsState& state) {
    WritePen(state);
    WriteSetting(brush_, BrushText(state.brush));
}

void RecordingDevice::Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) {
    WritePen(state);
    text_ += "polyline" + PointsText({points, count}) + "\n";
}

void RecordingDevice::Polygons(const GraphicsState& state, std::span<const CPoint> points,
                               std::span<const int> counts) {
    WriteShape(state);
    text_ += "polygon";
    std::size_t begin = 0;
    for (const int count : counts) {
        if (begin > 0) text_ += " |";
        text_ += PointsText(points.subspan(begin, static_cast<std::size_t>(count)));
        begin += static_cast<std::size_t>(count);
    }
    text_ += "\n";
}

void RecordingDevice::FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                               DWORD operation) {
    WriteCommon(state);
    std::string how = BrushText(brush);
    how = how.substr(how.find(' ') + 1);
    if (how.starts_with("solid ")) how = how.substr(6);
    how.pop_back();
    switch (operation) {
        case PATCOPY:
            break;
        case WHITENESS:
            how = "whiteness";
            break;
        case BLACKNESS:
            how = "blackness";
            break;
        case DSTINVERT:
            how = "invert";
            break;
        case PATINVERT:
            how += " xor";
            break;
        default:
            how += " operation " + Number(operation);
            break;
    }
    text_ += "fill " + zel::Text(rect) + " " + how + "\n";
}

void RecordingDevice::Rectangle(const GraphicsState& state, const CRect& rect) {
    WriteShape(state);
    text_ += "rectangle " + zel::Text(rect) + "\n";
}

void RecordingDevice::RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) {
    WriteShape(state);
    text_ += "roundrect " + zel::Text(rect) + " corner " + zel::Text(corner) + "\n";
}

void RecordingDevice::Ellipse(const GraphicsState& state, const CRect& rect) {
    WriteShape(state);
    text_ += "ellipse " + zel::Text(rect) + "\n";
}

void RecordingDevice::Arc(const GraphicsState& state, const CRect& rect, const CPoint& start,
                          const CPoint& end, ArcKind kind) {
    static constexpr const char* kKinds[] = {"arc ", "chord ", "pie "};
    kind == ArcKind::ARC ? WritePen(state) : WriteShape(state);
    text_ += kKinds[static_cast<int>(kind)] + zel::Text(rect) + " from " + zel::Text(start) + " to " +
             zel::Text(end) + "\n";
}

void RecordingDevice::SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) {
    WriteCommon(state);
    text_ += "pixel " + zel::Text(point) + " " + Color(color) + "\n";
}

void RecordingDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    WriteCommon(state);
    WriteSetting(font_, FontText(state.font));
    WriteSetting(textColor_,
                 "textcolor " + Color(state.textColor) + OpacityText(state.textTransparency) + "\n");
    for (const TextSpan& span : spans) {
        text_ += "text " + zel::Text(span.at) + " \"" + std::string(span.text) + "\"\n";
    }
}

}  // namespace zel
