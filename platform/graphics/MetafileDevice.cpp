#include "platform/graphics/MetafileDevice.h"

#include "platform/graphics/Utf8.h"

#include <algorithm>
#include <cstring>

namespace zel {
namespace {

// Record functions, MS-WMF section 2.1.1.1.
enum Function : WORD {
    META_EOF = 0x0000,
    META_SAVEDC = 0x001E,
    META_SETBKMODE = 0x0102,
    META_SETMAPMODE = 0x0103,
    META_SETROP2 = 0x0104,
    META_SETPOLYFILLMODE = 0x0106,
    META_RESTOREDC = 0x0127,
    META_SELECTOBJECT = 0x012D,
    META_SETTEXTALIGN = 0x012E,
    META_DELETEOBJECT = 0x01F0,
    META_SETBKCOLOR = 0x0201,
    META_SETTEXTCOLOR = 0x0209,
    META_SETWINDOWORG = 0x020B,
    META_SETWINDOWEXT = 0x020C,
    META_SETVIEWPORTORG = 0x020D,
    META_SETVIEWPORTEXT = 0x020E,
    META_CREATEPENINDIRECT = 0x02FA,
    META_CREATEFONTINDIRECT = 0x02FB,
    META_CREATEBRUSHINDIRECT = 0x02FC,
    META_POLYGON = 0x0324,
    META_POLYLINE = 0x0325,
    META_EXCLUDECLIPRECT = 0x0415,
    META_INTERSECTCLIPRECT = 0x0416,
    META_ELLIPSE = 0x0418,
    META_RECTANGLE = 0x041B,
    META_SETPIXEL = 0x041F,
    META_TEXTOUT = 0x0521,
    META_POLYPOLYGON = 0x0538,
    META_ROUNDRECT = 0x061C,
    META_PATBLT = 0x061D,
    META_ARC = 0x0817,
    META_PIE = 0x081A,
    META_CHORD = 0x0830,
    META_EXTTEXTOUT = 0x0A32,
};

constexpr std::size_t kMostSlots = 64;
constexpr std::size_t kMostPointsInRecord = 8000;
constexpr std::size_t kMostPointsInPolygon = 0x7000;
constexpr std::size_t kHeaderWords = 9;

WORD Word(LONG value) {
    return static_cast<WORD>(static_cast<std::int16_t>(std::clamp<LONG>(value, INT16_MIN, INT16_MAX)));
}
WORD Low(DWORD value) {
    return static_cast<WORD>(value & 0xFFFF);
}
WORD High(DWORD value) {
    return static_cast<WORD>(value >> 16);
}

// The format knows opaque ink only: transparent ink looks as it does on white paper.
COLORREF OnPaper(COLORREF color, BYTE transparency) {
    const auto mixed = [&](int channel) {
        return (channel * (255 - transparency) + 255 * transparency + 127) / 255;
    };
    if (transparency == 0) return color;
    return RGB(mixed(GetRValue(color)), mixed(GetGValue(color)), mixed(GetBValue(color)));
}

void AppendPoints(std::vector<WORD>& words, std::span<const CPoint> points) {
    for (const CPoint& point : points) words.insert(words.end(), {Word(point.x), Word(point.y)});
}

// Windows-1252, whose upper half differs from Latin-1 in 32 places; '?' for what it does not have.
char ToWindows1252(char32_t c) {
    static constexpr char32_t kUpper[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                            0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
    if (c < 0x80 || (c >= 0xA0 && c < 0x100)) return static_cast<char>(c);
    if (c == 0x2212) return '-';     // minus sign
    if (c == 0x03BC) return '\xB5';  // Greek mu as the micro sign
    for (int i = 0; i < 32; ++i) {
        if (kUpper[i] == c) return static_cast<char>(0x80 + i);
    }
    return '?';
}

// Combining marks have no place in an 8-bit text: their letter stands for the whole character.
std::string Encoded(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size();) {
        const char32_t c = NextCodePoint(text, at);
        const bool mark = (c >= 0x300 && c <= 0x36F) || c == 0x200D || (c >= 0xFE00 && c <= 0xFE0F);
        if (!mark || bytes.empty()) bytes += ToWindows1252(c);
    }
    return bytes;
}

void AppendBytes(std::vector<WORD>& words, const std::string& bytes) {
    for (std::size_t i = 0; i < bytes.size(); i += 2) {
        const auto low = static_cast<unsigned char>(bytes[i]);
        const auto high = i + 1 < bytes.size() ? static_cast<unsigned char>(bytes[i + 1]) : 0;
        words.push_back(static_cast<WORD>(low | high << 8));
    }
}

bool IsFree(int mode) {
    return mode == MM_ISOTROPIC || mode == MM_ANISOTROPIC;
}

bool Same(const CoordinateMap& a, const CoordinateMap& b) {
    return a.mode == b.mode && a.windowOrigin == b.windowOrigin && a.windowExtent == b.windowExtent &&
           a.viewportOrigin == b.viewportOrigin && a.viewportExtent == b.viewportExtent;
}

}  // namespace

void MetafileDevice::Record(WORD function, const Words& parameters) {
    const auto size = static_cast<DWORD>(parameters.size() + 3);
    body_.insert(body_.end(), {Low(size), High(size), function});
    body_.insert(body_.end(), parameters.begin(), parameters.end());
    largestRecord_ = std::max(largestRecord_, size);
}

std::vector<std::uint8_t> MetafileDevice::Finish() {
    if (clip_) Record(META_RESTOREDC, {Word(-1)});
    Record(META_EOF, {});
    const auto size = static_cast<DWORD>(kHeaderWords + body_.size());
    Words file{1,
               kHeaderWords,
               0x0300,
               Low(size),
               High(size),
               static_cast<WORD>(slots_.size()),
               Low(largestRecord_),
               High(largestRecord_),
               0};
    file.insert(file.end(), body_.begin(), body_.end());
    std::vector<std::uint8_t> bytes(file.size() * 2);
    std::memcpy(bytes.data(), file.data(), bytes.size());
    return bytes;
}

// Settings

void MetafileDevice::WriteMap(const CoordinateMap& map) {
    Written& w = written_;
    if (Same(map, w.map)) return;
    const bool entersFreeMode = map.mode != w.map.mode && IsFree(map.mode);
    if (map.mode != w.map.mode) Record(META_SETMAPMODE, {Word(map.mode)});
    if (entersFreeMode || !(map.windowOrigin == w.map.windowOrigin)) {
        Record(META_SETWINDOWORG, {Word(map.windowOrigin.y), Word(map.windowOrigin.x)});
    }
    if (entersFreeMode || (IsFree(map.mode) && !(map.windowExtent == w.map.windowExtent))) {
        Record(META_SETWINDOWEXT, {Word(map.windowExtent.cy), Word(map.windowExtent.cx)});
    }
    WriteViewport(map);
    w.map = map;
}

// A viewport places the picture on the player's device, which is the player's affair: it is left out where it
// says no more than the window does, unless an earlier one has to be undone.
void MetafileDevice::WriteViewport(const CoordinateMap& map) {
    Written& w = written_;
    const bool isFree = IsFree(map.mode);
    if (isFree && !w.placed && map.IsIdentity()) return;
    const bool extends = isFree && (w.placed ? !(map.viewportExtent == w.viewportExtent)
                                             : !(map.viewportExtent == CSize(1, 1)));
    if (!(map.viewportOrigin == w.viewportOrigin) || (extends && !w.placed)) {
        Record(META_SETVIEWPORTORG, {Word(map.viewportOrigin.y), Word(map.viewportOrigin.x)});
        w.viewportOrigin = map.viewportOrigin;
    }
    if (extends) {
        Record(META_SETVIEWPORTEXT, {Word(map.viewportExtent.cy), Word(map.viewportExtent.cx)});
        w.viewportExtent = map.viewportExtent;
        w.placed = true;
    } else if (!isFree && map.mode != MM_TEXT) {
        // A metric mode gives the player an extent of its own, which a free mode then has to replace.
        w.viewportExtent = CSize();
        w.placed = true;
    }
}

// A clip is bracketed by saving and restoring the context; all settings are then what they were before it.
void MetafileDevice::WriteClip(const GraphicsState& state) {
    if (state.clip == clip_ || (clip_ && state.clip && *clip_ == *state.clip)) return;
    if (clip_) {
        Record(META_RESTOREDC, {Word(-1)});
        written_ = beforeClip_;
    }
    clip_ = state.clip;
    if (!clip_) return;
    WriteMap(state.map);
    beforeClip_ = written_;
    Record(META_SAVEDC, {});
    WriteClipRect(META_INTERSECTCLIPRECT, state.map, clip_->Box());
    // What the box has more than the clip is cut away piece by piece: readers disagree about region objects.
    const Region more = Region::Combine(Region(clip_->Box()), *clip_, RGN_DIFF);
    for (const CRect& rect : more.Rects()) WriteClipRect(META_EXCLUDECLIPRECT, state.map, rect);
}

void MetafileDevice::WriteClipRect(WORD function, const CoordinateMap& map, const CRect& deviceRect) {
    const CRect rect = map.ToLogical(deviceRect);
    Record(function, {Word(rect.bottom), Word(rect.right), Word(rect.top), Word(rect.left)});
}

void MetafileDevice::WriteCommon(const GraphicsState& state) {
    WriteClip(state);
    WriteMap(state.map);
}

void MetafileDevice::WriteMode(WORD function, int& written, int wanted) {
    if (written == wanted) return;
    Record(function, {Word(wanted)});
    written = wanted;
}

void MetafileDevice::WriteColor(WORD function, COLORREF& written, COLORREF wanted) {
    if (written == wanted) return;
    Record(function, {Low(wanted), High(wanted)});
    written = wanted;
}

void MetafileDevice::WriteStroke(const GraphicsState& state) {
    WriteCommon(state);
    WriteMode(META_SETROP2, written_.rasterMode, state.rasterMode);
    if (state.pen.lopnStyle != PS_SOLID && state.pen.lopnStyle != PS_NULL) WriteBackground(state);
    SelectPen(state.pen);
}

void MetafileDevice::WriteShape(const GraphicsState& state) {
    WriteStroke(state);
    UseBrush(state, state.brush);
}

// What shows between the strokes of dashed pens and hatched brushes.
void MetafileDevice::WriteBackground(const GraphicsState& state) {
    WriteMode(META_SETBKMODE, written_.backgroundMode, state.backgroundMode);
    WriteColor(META_SETBKCOLOR, written_.backgroundColor, state.backgroundColor);
}

void MetafileDevice::UseBrush(const GraphicsState& state, const LOGBRUSH& brush) {
    SelectBrush(brush);
    if (brush.lbStyle == BS_HATCHED) WriteBackground(state);
}

// Objects

int MetafileDevice::FreeSlot() {
    if (slots_.size() < kMostSlots) {
        slots_.push_back({});
        return static_cast<int>(slots_.size()) - 1;
    }
    const auto inUse = [this](int slot) {
        const auto holds = [slot](const Written& w) {
            return std::find(std::begin(w.selected), std::end(w.selected), slot) != std::end(w.selected);
        };
        return holds(written_) || (clip_ && holds(beforeClip_));
    };
    int slot = 0;
    do {
        slot = static_cast<int>(nextVictim_++ % kMostSlots);
    } while (inUse(slot));
    Record(META_DELETEOBJECT, {Word(slot)});
    return slot;
}

int MetafileDevice::SlotFor(ObjectKind kind, const Words& definition) {
    static constexpr WORD kCreate[] = {META_CREATEPENINDIRECT, META_CREATEBRUSHINDIRECT,
                                       META_CREATEFONTINDIRECT};
    for (std::size_t i = 0; i < slots_.size(); ++i) {
        if (slots_[i].kind == kind && slots_[i].definition == definition) return static_cast<int>(i);
    }
    const int slot = FreeSlot();
    slots_[static_cast<std::size_t>(slot)] = {kind, definition};
    Record(kCreate[kind], definition);
    return slot;
}

void MetafileDevice::Select(ObjectKind kind, const Words& definition) {
    const int slot = SlotFor(kind, definition);
    if (written_.selected[kind] == slot) return;
    Record(META_SELECTOBJECT, {Word(slot)});
    written_.selected[kind] = slot;
}

void MetafileDevice::SelectPen(const LOGPEN& pen) {
    const COLORREF color = OnPaper(pen.lopnColor, pen.lopnTransparency);
    Select(PEN, {static_cast<WORD>(pen.lopnStyle), Word(pen.lopnWidth.x), 0, Low(color), High(color)});
}

void MetafileDevice::SelectBrush(const LOGBRUSH& brush) {
    const COLORREF color = OnPaper(brush.lbColor, brush.lbTransparency);
    Select(BRUSH, {static_cast<WORD>(brush.lbStyle), Low(color), High(color), Word(brush.lbHatch)});
}

void MetafileDevice::SelectFont(const LOGFONT& font) {
    Words words{Word(font.lfHeight), Word(font.lfWidth), Word(font.lfEscapement), Word(font.lfOrientation),
                Word(font.lfWeight)};
    std::string bytes(reinterpret_cast<const char*>(&font.lfItalic), 8);
    bytes += Encoded(font.lfFaceName);
    bytes.resize(8 + LF_FACESIZE, '\0');
    AppendBytes(words, bytes);
    Select(FONT, words);
}

// Primitives

void MetafileDevice::WritePolyline(const CPoint* points, std::size_t count) {
    Words words{static_cast<WORD>(count)};
    AppendPoints(words, {points, count});
    Record(META_POLYLINE, words);
}

void MetafileDevice::Polyline(const GraphicsState& state, const CPoint* points, std::size_t count) {
    if (count < 2 || state.pen.lopnStyle == PS_NULL) return;
    WriteStroke(state);
    for (std::size_t at = 0; at + 1 < count; at += kMostPointsInRecord - 1) {
        WritePolyline(points + at, std::min(count - at, kMostPointsInRecord));
    }
}

void MetafileDevice::Polygons(const GraphicsState& state, std::span<const CPoint> points,
                              std::span<const int> counts) {
    if (counts.empty()) return;
    if (points.size() > kMostPointsInPolygon) {
        DrawThinned(state, points, counts);
        return;
    }
    WriteShape(state);
    WriteMode(META_SETPOLYFILLMODE, written_.polygonFillMode, state.polygonFillMode);
    Words words;
    if (counts.size() > 1) words.push_back(static_cast<WORD>(counts.size()));
    for (const int count : counts) words.push_back(static_cast<WORD>(count));
    AppendPoints(words, points);
    Record(counts.size() > 1 ? META_POLYPOLYGON : META_POLYGON, words);
}

// The format counts points in 16 bits: a larger figure keeps every n-th point of its rings.
void MetafileDevice::DrawThinned(const GraphicsState& state, std::span<const CPoint> points,
                                 std::span<const int> counts) {
    const std::size_t every = points.size() / (kMostPointsInPolygon / 2) + 1;
    std::vector<CPoint> kept;
    std::vector<int> keptCounts;
    std::size_t begin = 0;
    for (const int count : counts) {
        const std::size_t before = kept.size();
        const std::size_t end = begin + static_cast<std::size_t>(count);
        for (std::size_t i = begin; i < end; i += every) kept.push_back(points[i]);
        if (kept.size() - before < 2) kept.push_back(points[end - 1]);
        keptCounts.push_back(static_cast<int>(kept.size() - before));
        begin = end;
    }
    if (kept.size() <= kMostPointsInPolygon) Polygons(state, kept, keptCounts);
}

void MetafileDevice::FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                              DWORD operation) {
    if (brush.lbStyle == BS_NULL && operation == PATCOPY) return;
    CRect box(rect);
    box.NormalizeRect();
    if (box.IsRectEmpty()) return;
    WriteCommon(state);
    if (operation == PATCOPY || operation == PATINVERT) UseBrush(state, brush);
    Record(META_PATBLT, {Low(operation), High(operation), Word(box.Height()), Word(box.Width()),
                         Word(box.top), Word(box.left)});
}

void MetafileDevice::Rectangle(const GraphicsState& state, const CRect& r) {
    WriteShape(state);
    Record(META_RECTANGLE, {Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::RoundRect(const GraphicsState& state, const CRect& r, const CSize& corner) {
    WriteShape(state);
    Record(META_ROUNDRECT,
           {Word(corner.cy), Word(corner.cx), Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::Ellipse(const GraphicsState& state, const CRect& r) {
    WriteShape(state);
    Record(META_ELLIPSE, {Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::Arc(const GraphicsState& state, const CRect& r, const CPoint& start, const CPoint& end,
                         ArcKind kind) {
    static constexpr WORD kFunctions[] = {META_ARC, META_CHORD, META_PIE};
    kind == ArcKind::ARC ? WriteStroke(state) : WriteShape(state);
    const bool clockwise = state.arcDirection == AD_CLOCKWISE;
    const CPoint& first = clockwise ? end : start;
    const CPoint& last = clockwise ? start : end;
    Record(kFunctions[static_cast<int>(kind)], {Word(last.y), Word(last.x), Word(first.y), Word(first.x),
                                                Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::SetPixel(const GraphicsState& state, const CPoint& p, COLORREF color) {
    WriteCommon(state);
    Record(META_SETPIXEL, {Low(color), High(color), Word(p.y), Word(p.x)});
}

void MetafileDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    WriteCommon(state);
    SelectFont(state.font);
    WriteMode(META_SETBKMODE, written_.backgroundMode, state.backgroundMode);
    if (state.backgroundMode == OPAQUE) {
        WriteColor(META_SETBKCOLOR, written_.backgroundColor, state.backgroundColor);
    }
    WriteColor(META_SETTEXTCOLOR, written_.textColor, OnPaper(state.textColor, state.textTransparency));
    const UINT align = state.textAlign & ~TA_UPDATECP;  // positions are given, never taken from the player
    if (written_.textAlign != align) Record(META_SETTEXTALIGN, {static_cast<WORD>(align)});
    written_.textAlign = align;
    if (state.font.lfEscapement % 3600 == 0 && WriteRun(spans)) return;
    for (const TextSpan& span : spans) WriteSpan(span);
}

// One record for a line of characters on one baseline, so that the text stays whole: the distances between
// the characters' points are the advances. Only for texts that are placed by their left end.
bool MetafileDevice::WriteRun(std::span<const TextSpan> spans) {
    if (spans.size() < 2 || (written_.textAlign & TA_CENTER)) return false;
    std::string bytes;
    Words advances;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const std::string one = Encoded(spans[i].text);
        const bool last = i + 1 == spans.size();
        const LONG advance = last ? 0 : Subtract(spans[i + 1].at.x, spans[i].at.x);
        if (one.size() != 1 || advance < 0 || (!last && spans[i + 1].at.y != spans[i].at.y)) return false;
        bytes += one;
        advances.push_back(Word(advance));
    }
    Words words{Word(spans[0].at.y), Word(spans[0].at.x), static_cast<WORD>(bytes.size()), 0};
    AppendBytes(words, bytes);
    words.insert(words.end(), advances.begin(), advances.end());
    Record(META_EXTTEXTOUT, words);
    return true;
}

void MetafileDevice::WriteSpan(const TextSpan& span) {
    const std::string bytes = Encoded(span.text);
    if (bytes.empty() || bytes == " ") return;
    Words words{static_cast<WORD>(bytes.size())};
    AppendBytes(words, bytes);
    words.insert(words.end(), {Word(span.at.y), Word(span.at.x)});
    Record(META_TEXTOUT, words);
}

}  // namespace zel
