// Reports of pages.
#pragma once

#include <zel/Zel2Column.h>
#include <zel/Zel2Tools.h>
#include <zel/platform/String.h>

#include <memory>
#include <vector>

namespace zel {

// A line of text above or below the content of each page: at the left, in the middle and at the right.
// "{page}" and "{pages}" in the texts stand for the number of the page and their count.
struct ReportBand {
    CString left;
    CString middle;
    CString right;
    int height = 300;  // world units, taken from the content's room; the text stands at its outer edge
    int font = -1;     // tool index; -1: "Report Band", Arial 9 point
    int rule = -1;     // pen of a line between band and content; -1 for none
    bool IsEmpty() const { return left.IsEmpty() && middle.IsEmpty() && right.IsEmpty() && rule < 0; }
};

// The paper of a report, in world units.
struct ReportPaper {
    CSize size{8268, 11693};  // A4, upright
    int left = 800;
    int top = 700;
    int right = 800;
    int bottom = 700;
    ReportBand header;
    ReportBand footer;

    // What is left for the content.
    CSize Room() const;
};

}  // namespace zel

// A tool registry that collects content in one column and then breaks it into pages, each a column again. It
// shows the unbroken content or one selected page.
//
// With classic rules a page is no more than its column, and only a negative height breaks anything (see
// Zel2Column::SplitVert). With exact rules pages are broken at the height given, and a report with a paper
// (SetPaper) draws whole pages: margins, header, content from the top, footer. Objects with the status bit
// KEEP_WITH_NEXT stay on one page with the beginning of the next one, objects with BREAK_BEFORE begin a page,
// text tables repeat their header rows, and what is higher than a page is broken where it can be.
//
// World units. zel::ExportReport writes all pages; classic archives hold a report as an empty registry.
class Zel2Report : public Zel2Tools {
    DECLARE_DOCUMENT_CLASS(Zel2Report)
  public:
    Zel2Report();
    // The content cannot belong to two reports.
    Zel2Report(const Zel2Report&) = delete;
    Zel2Report& operator=(const Zel2Report&) = delete;
    ~Zel2Report() override;

    // Takes ownership of `obj`, at the end of the content. Throws CNotSupportedException*, with `obj` still
    // the caller's, once there are pages.
    void Append(Zel2* obj);
    // The same, on one page with what is appended next.
    void AppendKept(Zel2* obj);
    // What is appended next begins a page.
    void BreakPage() { breakNext_ = true; }
    // Breaks the content into pages, once; answers their number.
    int MakePages(int height);
    // The same by the paper's room.
    int MakePages();
    int PageCount() const { return static_cast<int>(pages_.size()); }
    // The page that is shown, from 0; for a page that does not exist nothing is.
    void SelectPage(int k) { selected_ = k; }
    int SelectedPage() const { return selected_; }

    // The drawing itself or the first report that stands in it, at whatever depth; null when there is none.
    static Zel2Report* FirstIn(Zel2Set& drawing);

    void SetPaper(const zel::ReportPaper& paper);
    // Null while there is none.
    const zel::ReportPaper* Paper() const { return paper_.get(); }

    CSize Size() override;
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    void Serialize(CArchive& ar) override;
    void OnDraw() override;
    // Exact rules: page info->m_nCurPage, from 1; without `info` the selected one.
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    // Exact rules: the mouse finds what stands on the page that is shown.
    MouseAction OnMouse(const MouseStatus& ms) override;
    void SelectAt(const CRect& r, Zel2Selection* sel) override;
    using Zel2Tools::SelectAt;

  protected:
    Zel2* GetSelectableAt(const CPoint& pt) override;

  private:
    Zel2Column* Shown() const;
    bool IsOnPaper();
    template <class Visit>
    void ForEachOpen(Visit visit);
    void MakeClassicPages(int height);
    void ExchangePages(CArchive& ar);
    void ExchangePaper(CArchive& ar);
    void DrawPage();
    void DrawCut(Zel2Column& page, LONG top);
    void DrawBand(zel::ReportBand& band, LONG outer, LONG inner);
    void DrawBandText(const CString& text, const CPoint& at, int font, unsigned flags);

    std::unique_ptr<Zel2Column> content_;
    std::vector<std::unique_ptr<Zel2Column>> pages_;
    int selected_ = 0;
    bool breakNext_ = false;
    std::unique_ptr<zel::ReportPaper> paper_;
};
