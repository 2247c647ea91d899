#include "core/ArchiveFields.h"
#include "tools/TextClusters.h"

#include <zel/DrawFont.h>
#include <zel/ToolEditors.h>
#include <zel/platform/DC.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string_view>
#include <vector>

IMPLEMENT_SERIAL(DrawFont, DrawTool, 0)
IMPLEMENT_SERIAL(DrawFontTable, DrawToolTable, 0)

namespace {

constexpr int kNoAngle = 32767;           // matches no angle: the next selection makes a new platform font
constexpr int kNeverOpened = 0x7FFFFFFF;  // matches no scale
constexpr int kTenthsOfPointPerInch = 720;
constexpr double kTruncatedPi = 3.1415926;  // the direction of every text was always computed with it

}  // namespace

thread_local DrawFont* DrawFont::selected = nullptr;
thread_local int DrawFont::selAngle = 65535;
thread_local CDC* DrawFont::selDC = nullptr;
thread_local int DrawFont::selScale = 1000;

DrawFont::DrawFont() {
    std::strcpy(logFont_.lfFaceName, "Arial");
}

DrawFont::DrawFont(const char* name, const char* face, int ptSize10, int bold, int italic, int underline,
                   int strikeOut, COLORREF scr, COLORREF prn)
    : DrawTool(name), size_(ptSize10), screen_(scr), print_(prn) {
    std::strncpy(logFont_.lfFaceName, face, LF_FACESIZE - 1);
    logFont_.lfWeight = bold ? FW_BOLD : FW_NORMAL;
    logFont_.lfItalic = static_cast<BYTE>(italic);
    logFont_.lfUnderline = static_cast<BYTE>(underline);
    logFont_.lfStrikeOut = static_cast<BYTE>(strikeOut);
}

DrawFont::DrawFont(const DrawFont& other) : DrawTool(other) {
    CopyFields(other);
}

DrawFont& DrawFont::operator=(const DrawFont& other) {
    if (this == &other) return *this;
    CopyBase(other);
    CopyFields(other);
    return *this;
}

DrawTool& DrawFont::operator=(const DrawTool& other) {
    const auto* font = dynamic_cast<const DrawFont*>(&other);
    return font ? *this = *font : DrawTool::operator=(other);
}

DrawFont::~DrawFont() {
    selAngle = kNoAngle;
    if (selected == this) selected = nullptr;
    font_.DeleteObject();
}

void DrawFont::CopyFields(const DrawFont& other) {
    printing_ = other.printing_;
    logFont_ = other.logFont_;
    size_ = other.size_;
    angle_ = other.angle_;
    screen_ = other.screen_;
    print_ = other.print_;
    fontDc_ = other.fontDc_;
    fontScale_ = kNeverOpened;
    font_.DeleteObject();
    if (selected == this) selected = nullptr;
}

DrawTool* DrawFont::ACopy() {
    return new DrawFont(*this);
}

void DrawFont::OpenOn(CDC* dc, int scale) {
    selected = nullptr;
    if (scale == fontScale_ && dc == fontDc_) return;
    font_.DeleteObject();
    fontDc_ = dc;
    fontScale_ = scale;
}

void DrawFont::Close() {
    selAngle = kNoAngle;
    font_.DeleteObject();
    fontDc_ = nullptr;
}

void DrawFont::Edit() {
    const auto& edit = zel::TheToolEditors().font;
    if (edit) edit(*this);
}

LOGFONT DrawFont::ScreenFont() const {
    CDC screen;
    screen.CreateCompatibleDC(nullptr);
    LOGFONT font = logFont_;
    font.lfHeight = -MulDiv(size_, screen.GetDeviceCaps(LOGPIXELSY), kTenthsOfPointPerInch);
    return font;
}

void DrawFont::TakeChoice(const LOGFONT& font, COLORREF screen, int ptSize10) {
    if (selected == this) selected = nullptr;
    font_.DeleteObject();
    logFont_ = font;
    screen_ = screen;
    size_ = ptSize10;
}

int DrawFont::HeightFor(CDC& dc) const {
    const int dpi = dc.GetDeviceCaps(LOGPIXELSY);
    CSize inch(dpi, dpi);
    dc.LPtoDP(&inch);
    const int height = MulDiv(size_, std::min(inch.cx, inch.cy), kTenthsOfPointPerInch);
    return MulDiv(-height, fontScale_, 1000);
}

void DrawFont::UseTextColor() {
    fontDc_->SetTextColor(printing_ ? print_ : screen_, InkOpacity());
}

bool DrawFont::IsCurrent(int angle) const {
    return selected == this && selAngle == angle && selDC == fontDc_ && selScale == fontScale_;
}

CFont* DrawFont::Select(int angle) {
    UseTextColor();
    if (IsCurrent(angle)) return &font_;
    logFont_.lfHeight = HeightFor(*fontDc_);
    logFont_.lfEscapement = angle;
    logFont_.lfOrientation = angle;
    CFont made;
    made.CreateFontIndirect(&logFont_);
    // What the selection replaces is the font that the previous Select made, of whichever tool: nobody else
    // will delete it. It may be this tool's own, or one that is gone already; both are harmless with handles.
    if (CFont* replaced = fontDc_->SelectObject(&made)) replaced->DeleteObject();
    font_.DeleteObject();
    font_.Attach(made.Detach());
    printing_ = fontDc_->m_bPrinting;
    UseTextColor();
    fontDc_->SetBkMode(TRANSPARENT);
    selected = this;
    selAngle = angle;
    selDC = fontDc_;
    selScale = fontScale_;
    angle_ = angle;
    return &font_;
}

CFont* DrawFont::GetFont(CDC* dc) {
    logFont_.lfHeight = HeightFor(*dc);
    logFont_.lfEscapement = 0;
    logFont_.lfOrientation = 0;
    auto font = std::make_unique<CFont>();
    font->CreateFontIndirect(&logFont_);
    return font.release();
}

namespace {

struct Line {
    std::string text;
    CSize extent;
};

std::vector<Line> SplitLines(CDC& dc, std::string_view text) {
    std::vector<Line> lines;
    while (true) {
        const std::size_t end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
        lines.push_back({std::string(line), {}});
        lines.back().extent = dc.GetTextExtent(lines.back().text.c_str(), static_cast<int>(line.size()));
        if (end == std::string_view::npos) return lines;
        text.remove_prefix(end + 1);
    }
}

// `length` times a direction, truncated towards zero.
int Along(int length, float direction) {
    return zel::Truncate(static_cast<double>(static_cast<float>(length) * direction));
}

}  // namespace

void DrawFont::Print(const char* text, const CPoint& pt, int angle, unsigned flags) {
    if (!fontDc_ || !text || !*text) return;
    Select(angle);
    UseTextColor();
    const std::vector<Line> lines = SplitLines(*fontDc_, text);
    std::int64_t total = 0;
    for (const Line& line : lines) total += line.extent.cy;
    const int height = zel::Saturate(total);

    const double radians = angle * kTruncatedPi / 1800.0;
    const auto c = static_cast<float>(std::cos(radians));
    const auto s = static_cast<float>(-std::sin(radians));
    const CSize block(Along(zel::Subtract(0, height), s), Along(height, c));
    CPoint at = pt;
    if (flags & DT_VCENTER) at = at - CSize(block.cx / 2, block.cy / 2);
    if (flags & DT_BOTTOM) at = at - block;
    for (const Line& line : lines) {
        const CSize run(Along(line.extent.cx, c), Along(line.extent.cx, s));
        CPoint start = at;
        if (flags & DT_CENTER) start = start - CSize(run.cx / 2, run.cy / 2);
        if (flags & DT_RIGHT) start = start - run;
        TextOut(start, line.text.c_str(), c, s);
        at = at + CSize(Along(zel::Subtract(0, line.extent.cy), s), Along(line.extent.cy, c));
    }
}

CSize DrawFont::Extent(const char* text, int angle) {
    CSize extent;
    if (!fontDc_ || !text || !*text) return extent;
    Select(angle);
    for (const Line& line : SplitLines(*fontDc_, text)) {
        extent.cx = std::max(extent.cx, line.extent.cx);
        extent.cy = zel::Add(extent.cy, line.extent.cy);
    }
    return extent;
}

void DrawFont::TextOut(const CPoint& pt, const char* text, float c, float s) {
    if (!fontDc_) return;
    const std::string_view line(text);
    const std::vector<std::size_t> ends = zel::ClusterEnds(line);
    const std::vector<int> widths = fontDc_->GetPrefixExtents(line, ends);
    std::vector<zel::TextSpan> spans;
    spans.reserve(ends.size());
    std::size_t begin = 0;
    int before = 0;  // the width of everything in front of the character
    for (std::size_t i = 0; i < ends.size(); ++i) {
        spans.push_back(
            {line.substr(begin, ends[i] - begin), pt + CSize(Along(before, c), Along(before, s))});
        begin = ends[i];
        before = widths[i];
    }
    fontDc_->TextRun(spans);
}

void DrawFont::Print(const char* text, CRect& r, unsigned flags) {
    CPoint anchor(r.left, r.bottom);
    const unsigned vertical = flags & (DT_VCENTER | DT_BOTTOM);
    if (vertical == DT_VCENTER) {
        anchor.y = static_cast<int>((static_cast<std::int64_t>(r.top) + r.bottom) / 2);
    } else if (vertical != 0) {
        anchor.y = r.top;
    }
    const unsigned horizontal = flags & (DT_CENTER | DT_RIGHT);
    if (horizontal == DT_CENTER) {
        anchor.x = static_cast<int>((static_cast<std::int64_t>(r.left) + r.right) / 2);
    } else if (horizontal == DT_RIGHT) {
        anchor.x = r.right;
    }
    Print(text, anchor, 0, flags);
}

void DrawFont::DrawText(const char* text, RECT* r, unsigned flags, ZelRules rules) {
    if (!fontDc_ || !text) return;
    const bool exact = rules == ZelRules::EXACT;
    if (exact) Select(0);
    CRect box(*r);
    CRect measured(*r);
    const int length = static_cast<int>(std::strlen(text));
    const int height = fontDc_->DrawText(text, length, &measured, flags | DT_CALCRECT);
    const unsigned vertical = flags & (DT_VCENTER | DT_BOTTOM);
    if (vertical == DT_VCENTER) box.top = zel::Add(box.top, zel::Subtract(box.Height(), height) / 2);
    if (vertical == DT_BOTTOM) box.top = zel::Subtract(box.bottom, height);
    // Text that is cut off at its beginning cannot be read, and what stands above must not be covered.
    if (exact) box.top = std::max<LONG>(box.top, r->top);
    Select(0);
    UseTextColor();
    fontDc_->DrawText(text, length, &box, flags);
}

void DrawFont::Serialize(CArchive& ar) {
    static_assert(sizeof(LOGFONT) == 60);
    ExchangeName(ar);
    zel::ExchangeRaw(ar, &logFont_, sizeof logFont_);
    zel::Exchange(ar, size_, angle_, screen_, print_);
    if (zel::IsComplete(ar)) zel::Exchange(ar, printer_);
    ExchangeOpacity(ar);
    if (ar.IsLoading()) {
        logFont_.lfFaceName[LF_FACESIZE - 1] = '\0';
        font_.DeleteObject();
        if (selected == this) selected = nullptr;
    }
}

DrawFontTable& DrawFontTable::operator=(const DrawFontTable& other) {
    CopyFrom(&other);
    return *this;
}

int DrawFontTable::RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic,
                                int underline, int strikeOut, COLORREF scr, COLORREF prn) {
    return Register(new DrawFont(name, face, ptSize10, bold, italic, underline, strikeOut, scr, prn));
}

int DrawFontTable::Edit() {
    const auto& edit = zel::TheToolEditors().fonts;
    if (!edit) return DrawToolTable::Edit();
    DrawFontTable edited(*this);
    const int accepted = edit(edited);
    CDC* const dc = Dc();
    const int scale = OutputScale();
    if (dc) Close();
    if (accepted) CopyFrom(&edited);
    if (dc) OpenOn(dc, scale);
    return accepted;
}
