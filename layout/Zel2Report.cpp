#include "core/ArchiveFields.h"

#include <zel/Mapping.h>
#include <zel/Zel2Report.h>
#include <zel/Zel2Selection.h>
#include <zel/platform/DC.h>
#include <zel/platform/Exception.h>
#include <zel/platform/PrintInfo.h>

#include <algorithm>
#include <climits>

IMPLEMENT_DOCUMENT_CLASS(Zel2Report, Zel2Tools)

namespace zel {

CSize ReportPaper::Room() const {
    const auto heightOf = [](const ReportBand& band) { return band.IsEmpty() ? 0 : band.height; };
    const std::int64_t bands = std::int64_t{heightOf(header)} + heightOf(footer);
    return {Saturate(std::int64_t{size.cx} - left - right), Saturate(size.cy - bands - top - bottom)};
}

}  // namespace zel

Zel2Report::Zel2Report() : content_(std::make_unique<Zel2Column>(1)) {
    content_->SetParent(this);
}

Zel2Report::~Zel2Report() = default;

Zel2Report* Zel2Report::FirstIn(Zel2Set& drawing) {
    if (auto* const report = dynamic_cast<Zel2Report*>(&drawing)) return report;
    for (int i = 0; i < drawing.GetCount(); ++i) {
        auto* const set = dynamic_cast<Zel2Set*>(drawing[i]);
        if (Zel2Report* const report = set ? FirstIn(*set) : nullptr) return report;
    }
    return nullptr;
}

void Zel2Report::Append(Zel2* obj) {
    if (!content_) {
        AfxThrowNotSupportedException(
            "Cannot append to a report that has been broken into pages; make a new report.");
    }
    if (obj && breakNext_) obj->SetStatus(BREAK_BEFORE, 1);
    breakNext_ = false;
    content_->Add(obj);
}

void Zel2Report::AppendKept(Zel2* obj) {
    Append(obj);
    if (obj) obj->SetStatus(KEEP_WITH_NEXT, 1);
}

int Zel2Report::MakePages() {
    return MakePages(paper_ ? paper_->Room().cy : INT_MAX);
}

int Zel2Report::MakePages(int height) {
    if (!content_) return PageCount();
    pages_.push_back(std::move(content_));
    if (IsExact()) {
        for (auto& page : pages_.front()->BreakIntoPages({std::max(height, 1), std::max(height, 1), true}))
            pages_.push_back(std::move(page));
        for (auto& page : pages_) page->SetParent(this);
    } else {
        MakeClassicPages(height);
    }
    return PageCount();
}

void Zel2Report::MakeClassicPages(int height) {
    while (auto rest = pages_.back()->ClassicSplit(height, true)) {
        rest->SetParent(this);
        pages_.push_back(std::move(rest));
    }
}

void Zel2Report::SetPaper(const zel::ReportPaper& paper) {
    paper_ = std::make_unique<zel::ReportPaper>(paper);
}

Zel2Column* Zel2Report::Shown() const {
    if (content_) return content_.get();
    const bool exists = selected_ >= 0 && selected_ < PageCount();
    return exists ? pages_[static_cast<std::size_t>(selected_)].get() : nullptr;
}

bool Zel2Report::IsOnPaper() {
    return paper_ && !content_ && IsExact();
}

CSize Zel2Report::Size() {
    Zel2Column* shown = Shown();
    if (!shown) return {};
    return IsOnPaper() ? paper_->size : shown->Size();
}

// With exact rules what is not shown costs nothing.
template <class Visit>
void Zel2Report::ForEachOpen(Visit visit) {
    if (content_ || IsExact()) {
        if (Zel2Column* shown = Shown()) visit(*shown);
        return;
    }
    for (auto& page : pages_) visit(*page);
}

void Zel2Report::OpenOn(CDC* dc, int scale) {
    Zel2Tools::OpenOn(dc, scale);
    ForEachOpen([=](Zel2Column& column) { column.OpenOn(dc, scale); });
}

void Zel2Report::Close() {
    Zel2Tools::Close();
    ForEachOpen([](Zel2Column& column) { column.Close(); });
}

void Zel2Report::OnDraw() {
    Zel2Column* shown = Shown();
    if (!shown) return;
    if (IsOnPaper()) {
        DrawPage();
    } else {
        shown->OnDraw();
    }
}

void Zel2Report::OnPrint(CDC* dc, CPrintInfo* info) {
    if (!IsExact()) {
        Zel2Tools::OnPrint(dc, info);
        return;
    }
    // A page on paper has its own margins: it begins at the paper's corner, not at that of what the printer
    // can reach.
    const CPoint origin = dc->GetViewportOrg();
    if (IsOnPaper()) {
        dc->SetViewportOrg(zel::Subtract(origin.x, dc->GetDeviceCaps(PHYSICALOFFSETX)),
                           zel::Subtract(origin.y, dc->GetDeviceCaps(PHYSICALOFFSETY)));
    }
    const int selected = selected_;
    if (info && !content_) SelectPage(zel::Saturate(std::int64_t{info->m_nCurPage} - 1));
    OnDraw();
    SelectPage(selected);
    dc->SetViewportOrg(origin.x, origin.y);
}

MouseAction Zel2Report::OnMouse(const MouseStatus& ms) {
    Zel2Column* const shown = IsExact() ? Shown() : nullptr;
    return shown ? shown->OnMouse(ms) : Zel2Tools::OnMouse(ms);
}

void Zel2Report::SelectAt(const CRect& r, Zel2Selection* sel) {
    Zel2Column* const shown = IsExact() ? Shown() : nullptr;
    shown ? shown->SelectAt(r, sel) : Zel2Tools::SelectAt(r, sel);
}

Zel2* Zel2Report::GetSelectableAt(const CPoint& pt) {
    Zel2Column* const shown = IsExact() ? Shown() : nullptr;
    if (!shown) return Zel2Tools::GetSelectableAt(pt);
    Zel2Selection found;
    shown->SelectAt(pt, &found);
    return found.GetSize() > 0 ? found[0] : nullptr;
}

void Zel2Report::DrawPage() {
    Zel2Column& page = *Shown();
    const zel::ReportPaper& paper = *paper_;
    const LONG above = zel::Subtract(paper.size.cy, paper.top);
    const LONG top = zel::Subtract(above, paper.header.IsEmpty() ? 0 : paper.header.height);
    page.Origin(CPoint(paper.left, zel::Subtract(top, page.Size().cy)));
    DrawBand(paper_->header, above, top);
    DrawBand(paper_->footer, paper.bottom, zel::Add(paper.bottom, paper.footer.height));
    if (page.Size().cy > paper.Room().cy && DC() && Map()) {
        DrawCut(page, top);
    } else {
        page.OnDraw();
    }
}

// What no page can take ends above the footer.
void Zel2Report::DrawCut(Zel2Column& page, LONG top) {
    const CPoint upper = R2L(CPoint(0, top));
    const CPoint lower = R2L(CPoint(paper_->size.cx, zel::Subtract(top, paper_->Room().cy)));
    CRect body(upper, lower);
    body.NormalizeRect();
    CDC& dc = *DC();
    const int level = dc.SaveDC();
    dc.IntersectClipRect(&body);
    page.OnDraw();
    dc.RestoreDC(level);
    // The context has its earlier font again, not the one that the last text selected.
    DrawFont::selected = nullptr;
}

// `outer` is the edge at the paper's margin, `inner` the one at the content.
void Zel2Report::DrawBand(zel::ReportBand& band, LONG outer, LONG inner) {
    if (band.IsEmpty() || !Map()) return;
    if (band.font < 0) band.font = RegisterFont("Report Band", "Arial", 90, 0, 0, 0, 0, 0, 0);
    const LONG left = paper_->left, right = zel::Subtract(paper_->size.cx, paper_->right);
    const unsigned vertical = outer > inner ? DT_TOP : DT_BOTTOM;
    DrawBandText(band.left, CPoint(left, outer), band.font, DT_LEFT | vertical);
    DrawBandText(band.middle, CPoint(zel::Saturate(left + (std::int64_t{right} - left) / 2), outer),
                 band.font, DT_CENTER | vertical);
    DrawBandText(band.right, CPoint(right, outer), band.font, DT_RIGHT | vertical);
    DrawPen* pen = band.rule >= 0 ? Pen(band.rule) : nullptr;
    if (!pen) return;
    // In the middle between text and content.
    const LONG y = zel::Saturate(outer + (std::int64_t{inner} - outer) * 3 / 4);
    const CPoint from = R2L(CPoint(left, y)), to = R2L(CPoint(right, y));
    pen->MoveTo(from.x, from.y);
    pen->LineTo(to.x, to.y);
}

void Zel2Report::DrawBandText(const CString& text, const CPoint& at, int font, unsigned flags) {
    DrawFont* tool = text.IsEmpty() ? nullptr : Font(font);
    if (!tool) return;
    std::string line(text);
    const auto replace = [&](const std::string& place, int number) {
        for (std::size_t i = line.find(place); i != std::string::npos; i = line.find(place, i))
            line.replace(i, place.size(), std::to_string(number));
    };
    replace("{pages}", PageCount());
    replace("{page}", selected_ + 1);
    tool->Print(line.c_str(), R2L(at), 0, flags);
}

void Zel2Report::ExchangePages(CArchive& ar) {
    bool hasContent = content_ != nullptr;
    zel::ExchangeFlag(ar, hasContent);
    int count = PageCount();
    zel::Exchange(ar, count);
    if (ar.IsLoading()) {
        content_ = hasContent ? std::make_unique<Zel2Column>(1) : nullptr;
        pages_.clear();
        ar.CheckCount(std::max(count, 0), sizeof(int));
        for (int k = 0; k < count; ++k) pages_.push_back(std::make_unique<Zel2Column>(1));
    }
    const auto exchange = [&](Zel2Column& column) {
        column.SetParent(this);
        column.Serialize(ar);
    };
    if (content_) exchange(*content_);
    for (auto& page : pages_) exchange(*page);
}

void Zel2Report::ExchangePaper(CArchive& ar) {
    bool hasPaper = paper_ != nullptr;
    zel::ExchangeFlag(ar, hasPaper);
    if (ar.IsLoading()) paper_ = hasPaper ? std::make_unique<zel::ReportPaper>() : nullptr;
    if (!paper_) return;
    zel::ReportPaper& paper = *paper_;
    zel::Exchange(ar, paper.size.cx, paper.size.cy, paper.left, paper.top, paper.right, paper.bottom);
    for (zel::ReportBand* band : {&paper.header, &paper.footer})
        zel::Exchange(ar, band->left, band->middle, band->right, band->height, band->font, band->rule);
}

void Zel2Report::Serialize(CArchive& ar) {
    Zel2Tools::Serialize(ar);
    if (!zel::IsComplete(ar)) return;
    ExchangePages(ar);
    zel::Exchange(ar, selected_);
    zel::ExchangeFlag(ar, breakNext_);
    ExchangePaper(ar);
}
