#include "platform/graphics/MetafileDevice.h"

#include "platform/graphics/CodePages.h"
#include "platform/graphics/ComplexText.h"
#include "platform/graphics/RunThinner.h"
#include "platform/graphics/Utf8.h"

#include <zel/platform/MetricsDevice.h>
#include <zel/platform/Platform.h>

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

constexpr std::size_t kShortLine = 8;  // points: shorter ones are recorded as they are
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

void MetafileDevice::AppendPoints(Words& words, std::span<const CPoint> points) const {
    for (const CPoint& point : points)
        words.insert(words.end(), {Word(Moved(point).x), Word(Moved(point).y)});
}

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

void MetafileDevice::WriteMap(const CoordinateMap& moved) {
    CoordinateMap map = moved;
    map.viewportOrigin = map.viewportOrigin - move_;
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

void MetafileDevice::SelectFont(LOGFONT font, const EncodedText& text) {
    if (text.charSet != 0) font.lfCharSet = text.charSet;
    if (text.symbol) std::strcpy(font.lfFaceName, "Symbol");
    if (text.raised) {
        // Places are those of the tops of lines, so smaller letters stand high.
        font.lfHeight = font.lfHeight * 3 / 5;
        font.lfWidth = font.lfWidth * 3 / 5;
    }
    Words words{Word(font.lfHeight), Word(font.lfWidth), Word(font.lfEscapement), Word(font.lfOrientation),
                Word(font.lfWeight)};
    std::string bytes(reinterpret_cast<const char*>(&font.lfItalic), 8);
    bytes += EncodeWestern(font.lfFaceName);
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
    std::vector<CPoint> thinned;
    if (LeavesOut(state) && count > kShortLine) {
        thinned.assign(points, points + count);
        ThinRuns(thinned);
        points = thinned.data();
        count = thinned.size();
    }
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

// The format counts points in 16 bits. Of a larger figure the points stay that make up its outline as one
// sees it: in units first, then in ever wider columns. What is no outline of columns at all keeps every n-th
// point.
void MetafileDevice::DrawThinned(const GraphicsState& state, std::span<const CPoint> points,
                                 std::span<const int> counts) {
    constexpr int kWidest = 1 << 12;
    std::vector<CPoint> kept;
    std::vector<int> keptCounts;
    const auto keep = [&](const auto& thin) {
        kept.clear();
        keptCounts.clear();
        std::size_t begin = 0;
        for (const int count : counts) {
            const auto ring = points.subspan(begin, static_cast<std::size_t>(count));
            std::vector<CPoint> thinned(ring.begin(), ring.end());
            thin(thinned);
            kept.insert(kept.end(), thinned.begin(), thinned.end());
            keptCounts.push_back(static_cast<int>(thinned.size()));
            begin += static_cast<std::size_t>(count);
        }
        return kept.size() <= kMostPointsInPolygon;
    };
    bool fits = false;
    for (int column = 1; !fits && column <= kWidest; column *= 2)
        fits = keep([=](std::vector<CPoint>& ring) { ThinRuns(ring, column); });
    const std::size_t every = points.size() / (kMostPointsInPolygon / 2) + 1;
    fits = fits || keep([=](std::vector<CPoint>& ring) {
               std::size_t n = 0;
               const CPoint last = ring.back();
               for (std::size_t i = 0; i < ring.size(); i += every) ring[n++] = ring[i];
               ring.resize(n);
               ring.push_back(last);
           });
    if (fits) Polygons(state, kept, keptCounts);
}

void MetafileDevice::FillRect(const GraphicsState& state, const CRect& rect, const LOGBRUSH& brush,
                              DWORD operation) {
    if (brush.lbStyle == BS_NULL && operation == PATCOPY) return;
    CRect box(rect);
    box.NormalizeRect();
    if (box.IsRectEmpty()) return;
    WriteCommon(state);
    if (operation == PATCOPY || operation == PATINVERT) UseBrush(state, brush);
    const CPoint corner = Moved(box.TopLeft());
    Record(META_PATBLT, {Low(operation), High(operation), Word(box.Height()), Word(box.Width()),
                         Word(corner.y), Word(corner.x)});
}

void MetafileDevice::Rectangle(const GraphicsState& state, const CRect& rect) {
    WriteShape(state);
    const CRect r = Moved(rect);
    Record(META_RECTANGLE, {Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::RoundRect(const GraphicsState& state, const CRect& rect, const CSize& corner) {
    WriteShape(state);
    const CRect r = Moved(rect);
    Record(META_ROUNDRECT,
           {Word(corner.cy), Word(corner.cx), Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::Ellipse(const GraphicsState& state, const CRect& rect) {
    WriteShape(state);
    const CRect r = Moved(rect);
    Record(META_ELLIPSE, {Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::Arc(const GraphicsState& state, const CRect& rect, const CPoint& start,
                         const CPoint& end, ArcKind kind) {
    static constexpr WORD kFunctions[] = {META_ARC, META_CHORD, META_PIE};
    kind == ArcKind::ARC ? WriteStroke(state) : WriteShape(state);
    const bool clockwise = state.arcDirection == AD_CLOCKWISE;
    const CPoint first = Moved(clockwise ? end : start), last = Moved(clockwise ? start : end);
    const CRect r = Moved(rect);
    Record(kFunctions[static_cast<int>(kind)], {Word(last.y), Word(last.x), Word(first.y), Word(first.x),
                                                Word(r.bottom), Word(r.right), Word(r.top), Word(r.left)});
}

void MetafileDevice::Ellipses(const GraphicsState& state, std::span<const CPoint> places, const CRect& box) {
    Marks(state, places, box, EllipsePainter(state, box));
}

// Records know no definitions: each mark is recorded where it lies, not by moving the origin.
void MetafileDevice::Marks(const GraphicsState& state, std::span<const CPoint> places, const CRect& box,
                           const MarkPainter& paint) {
    if (!LeavesOut(state)) {
        BasicDevice::Marks(state, places, box, paint);
        return;
    }
    const CPoint origin = state.map.ToDevice(CPoint(0, 0));
    for (const CPoint& place : Platform::Get().SeenMarks(state, places, box, paint, unitsPerPixel_)) {
        move_ = place - origin;
        paint(*this, move_, MarkClip::KEPT);
    }
    move_ = {};
}

void MetafileDevice::SetPixel(const GraphicsState& state, const CPoint& point, COLORREF color) {
    WriteCommon(state);
    const CPoint p = Moved(point);
    Record(META_SETPIXEL, {Low(color), High(color), Word(p.y), Word(p.x)});
}

void MetafileDevice::DrawText(const GraphicsState& state, std::span<const TextSpan> spans) {
    WriteCommon(state);
    WriteMode(META_SETBKMODE, written_.backgroundMode, state.backgroundMode);
    if (state.backgroundMode == OPAQUE) {
        WriteColor(META_SETBKCOLOR, written_.backgroundColor, state.backgroundColor);
    }
    WriteColor(META_SETTEXTCOLOR, written_.textColor, OnPaper(state.textColor, state.textTransparency));
    const UINT align = state.textAlign & ~TA_UPDATECP;  // positions are given, never taken from the player
    UseTextAlign(align);
    // Players order and shape complex text by themselves, when they have the whole of it.
    const std::string whole = WholeOf(spans);
    if (spans.size() > 1 && IsComplexText(whole)) {
        WriteText(state, whole, spans);
        return;
    }
    if (state.font.lfEscapement % 3600 == 0 && WriteRun(state, spans)) return;
    for (const TextSpan& span : spans) WriteText(state, span.text, {&span, 1});
}

// A recorder has no fonts of its own: where only the end of an underline hangs on it, a width is Arial's.
int MetafileDevice::WidthOf(const GraphicsState& state, std::string_view text) {
    return MetricsDevice().TextExtent(state, text).cx;
}

// One record for a line of characters on one baseline, so that the text stays whole: the distances between
// the characters' points are the advances. Only for texts that are placed by their left end. A record for
// each character set where the line needs several.
bool MetafileDevice::WriteRun(const GraphicsState& state, std::span<const TextSpan> spans) {
    if (spans.size() < 2 || (written_.textAlign & TA_CENTER)) return false;
    Words advances;
    for (std::size_t i = 0; i < spans.size(); ++i) {
        const bool last = i + 1 == spans.size();
        const LONG advance =
            last ? WidthOf(state, spans[i].text) : Subtract(spans[i + 1].at.x, spans[i].at.x);
        if (advance < 0 || (!last && spans[i + 1].at.y != spans[i].at.y)) return false;
        advances.push_back(Word(advance));
    }
    const std::vector<EncodedText> pieces = EncodeForCharSets(WholeOf(spans));
    std::size_t characters = 0;
    for (const EncodedText& piece : pieces) characters += piece.bytes.size();
    if (characters != spans.size()) return false;
    std::size_t first = 0;
    for (const EncodedText& piece : pieces) {
        SelectFont(state.font, piece);
        const CPoint at = Moved(spans[first].at);
        Words words{Word(at.y), Word(at.x), static_cast<WORD>(piece.bytes.size()), 0};
        AppendBytes(words, piece.bytes);
        const auto begin = advances.begin() + static_cast<std::ptrdiff_t>(first);
        words.insert(words.end(), begin, begin + static_cast<std::ptrdiff_t>(piece.bytes.size()));
        Record(META_EXTTEXTOUT, words);
        first += piece.bytes.size();
    }
    return true;
}

// A record for each character set, at the place of its first character.
void MetafileDevice::WriteText(const GraphicsState& state, std::string_view text,
                               std::span<const TextSpan> spans) {
    const std::vector<EncodedText> pieces = EncodeForCharSets(text);
    const bool seen = state.font.lfUnderline || state.font.lfStrikeOut || state.backgroundMode == OPAQUE;
    if (pieces.size() == 1 && pieces[0].bytes == " " && !seen) return;
    for (const EncodedText& piece : pieces) {
        SelectFont(state.font, piece);
        const CPoint at = Moved(PlaceOf(state, text, piece.begin, spans));
        Words words{static_cast<WORD>(piece.bytes.size())};
        AppendBytes(words, piece.bytes);
        words.insert(words.end(), {Word(at.y), Word(at.x)});
        Record(META_TEXTOUT, words);
    }
}

// Where the character at a byte of the text of `spans` begins.
CPoint MetafileDevice::PlaceOf(const GraphicsState& state, std::string_view text, std::size_t byte,
                               std::span<const TextSpan> spans) {
    std::size_t end = 0;
    const auto span = std::find_if(spans.begin(), spans.end(),
                                   [&](const TextSpan& each) { return (end += each.text.size()) > byte; });
    const std::size_t begin = end - span->text.size();
    const bool lies = state.font.lfEscapement % 3600 == 0;
    const int along = lies && byte > begin ? WidthOf(state, text.substr(begin, byte - begin)) : 0;
    return {Add(span->at.x, along), span->at.y};
}

void MetafileDevice::UseTextAlign(UINT align) {
    if (written_.textAlign != align) Record(META_SETTEXTALIGN, {static_cast<WORD>(align)});
    written_.textAlign = align;
}

}  // namespace zel
