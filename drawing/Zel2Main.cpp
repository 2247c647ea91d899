#include "core/ArchiveFields.h"

#include <zel/Zel2Main.h>
#include <zel/platform/DC.h>
#include <zel/platform/Gdi.h>
#include <zel/platform/PrintInfo.h>

IMPLEMENT_SERIAL(Zel2Main, Zel2Tools, 0)

namespace {

constexpr int kUnitsPerInch = 1000;
constexpr int kPagedExtraHeight = 800;  // world units below the pages
constexpr int kPagedLeftShift = 300;    // logical units

}  // namespace

Zel2Main::Zel2Main() : mapping_(new Mapping) {}

Zel2Main::Zel2Main(const Zel2Main& other)
    : Zel2Tools(other),
      mapping_(other.mapping_),
      window_(other.window_),
      dc_(other.dc_),
      rules_(other.rules_) {}

Zel2Main& Zel2Main::operator=(const Zel2Main& other) {
    Zel2Tools::operator=(other);
    mapping_ = other.mapping_;
    window_ = other.window_;
    dc_ = other.dc_;
    rules_ = other.rules_;
    return *this;
}

Zel2Main::~Zel2Main() {
    delete mapping_;
}

Mapping* Zel2Main::Map() {
    return GetParent() ? GetParent()->Map() : mapping_;
}
CWnd* Zel2Main::Window() {
    return GetParent() ? GetParent()->Window() : window_;
}
CDC* Zel2Main::DC() {
    return GetParent() ? GetParent()->DC() : dc_;
}
ZelRules Zel2Main::Rules() {
    return rules_;
}

int Zel2Main::OnNotify(Zel2* sender, long code) {
    if (code == EDITED && editHandler_) editHandler_(sender);
    return Zel2Tools::OnNotify(sender, code);
}

void Zel2Main::OnLeave(Zel2* object) {
    if (leaveHandler_) leaveHandler_(object);
    Zel2Tools::OnLeave(object);
}

int Zel2Main::Scale() {
    const Mapping* map = Map();
    return map ? map->Scale() : 1000;
}

int Zel2Main::IsPrinting() {
    if (GetParent()) return GetParent()->IsPrinting();
    return rules_ == ZelRules::EXACT && dc_ && dc_->m_bPrinting ? 1 : 0;
}

void Zel2Main::PrepareMappingFor(CDC* dc, CPrintInfo* info, int a, int b) {
    CSize extent = Size();
    const bool paged = dc->m_bPrinting && info && a != 0 && b != 0;
    if (paged) {
        const std::int64_t taken = (static_cast<std::int64_t>(info->m_nCurPage) - 1) * a * b;
        extent.cy = zel::Saturate(extent.cy + kPagedExtraHeight - taken);
    }
    const int width = MulDiv(extent.cx, dc->GetDeviceCaps(LOGPIXELSX), kUnitsPerInch);
    const int height = MulDiv(extent.cy, dc->GetDeviceCaps(LOGPIXELSY), kUnitsPerInch);
    const int left = paged ? kPagedLeftShift : 0;
    Mapping* map = Map();
    map->SetWorld(CPoint(0, 0), extent);
    map->SetLogical(CPoint(left, height), CPoint(zel::Add(width, left), 0));
}

// What surrounds the drawing of the tree in one output pass. Its destructor leaves root, context and tools as
// they were before, also when an exception passes through.
class Zel2Main::Pass {
  public:
    Pass(Zel2Main& root, CDC* dc) : root_(root), dc_(*dc), previousDc_(root.dc_) {
        root.dc_ = dc;
        font_.CreateFont(10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
        previousFont_ = dc_.SelectObject(&font_);
        previousBrush_ = dc_.SelectObject(&brush_);
        previousPen_ = dc_.SelectObject(&pen_);
    }
    ~Pass() {
        if (previousFont_) dc_.SelectObject(previousFont_);
        if (previousBrush_) dc_.SelectObject(previousBrush_);
        if (previousPen_) dc_.SelectObject(previousPen_);
        root_.Close();
        while (!root_.clipLevels_.empty()) root_.ResetClip();
        root_.dc_ = previousDc_;
    }
    Pass(const Pass&) = delete;
    Pass& operator=(const Pass&) = delete;

  private:
    Zel2Main& root_;
    CDC& dc_;
    CDC* previousDc_;
    CFont font_;
    CBrush brush_{RGB(255, 255, 255)};
    CPen pen_{PS_SOLID, 1, RGB(0, 0, 0)};
    CFont* previousFont_ = nullptr;
    CBrush* previousBrush_ = nullptr;
    CPen* previousPen_ = nullptr;
};

template <class DrawTree>
void Zel2Main::RunPass(CDC* dc, DrawTree drawTree) {
    const Pass pass(*this, dc);
    OpenOn(dc, Scale());
    drawTree();
}

void Zel2Main::Draw(CDC* dc) {
    RunPass(dc, [this] { OnDraw(); });
}

void Zel2Main::OnPrint(CDC* dc, CPrintInfo* info) {
    RunPass(dc, [=, this] { Zel2Set::OnPrint(dc, info); });
}

void Zel2Main::SetClipLog(CRgn* region) {
    if (GetParent()) {
        GetParent()->SetClipLog(region);
        return;
    }
    if (!dc_) return;
    HRGN level = nullptr;
    if (rules_ == ZelRules::EXACT && region) {
        level = CreateRectRgn(0, 0, 0, 0);
        const HRGN own = static_cast<HRGN>(*region);
        const HRGN outer = clipLevels_.empty() ? nullptr : clipLevels_.back();
        if (outer) {
            CombineRgn(level, outer, own, RGN_AND);
        } else {
            CombineRgn(level, own, nullptr, RGN_COPY);
        }
    }
    clipLevels_.push_back(level);
    SelectTopClip();
}

void Zel2Main::ResetClip() {
    if (GetParent()) {
        GetParent()->ResetClip();
        return;
    }
    if (!dc_) return;
    if (!clipLevels_.empty()) {
        if (clipLevels_.back()) DeleteObject(clipLevels_.back());
        clipLevels_.pop_back();
    }
    SelectTopClip();
}

void Zel2Main::SelectTopClip() {
    ::SelectClipRgn(dc_->m_hDC, clipLevels_.empty() ? nullptr : clipLevels_.back());
}

void Zel2Main::Serialize(CArchive& ar) {
    Zel2Tools::Serialize(ar);
    BYTE present = mapping_ ? 1 : 0;
    zel::Exchange(ar, present);
    if (ar.IsLoading()) {
        // A root is never without a mapping once it is loaded.
        delete mapping_;
        mapping_ = new Mapping;
    }
    if (present) mapping_->Serialize(ar);
}
