// Grids of objects.
#pragma once

#include <zel/Zel2Set.h>

#include <vector>

// A grid of cells, each an object (or none) that may span several columns and rows. Column and row lines
// follow from the cells' own sizes; row 0 is at the top. The table has no size of its own and no spacing: it
// is as large as its cells. World units, y upwards.
//
// A change of size that a cell reports lays the table out again and is passed on. With classic rules a cell
// that spans rows has its origin at the bottom of the first of them; with exact rules it fills them all.
class Zel2Table : public Zel2Set {
    DECLARE_SERIAL(Zel2Table)
  public:
    Zel2Table() = default;
    Zel2Table(unsigned nx, unsigned ny) { Create(nx, ny); }

    // An empty grid of `nx` columns and `ny` rows; cells that were there are deleted.
    void Create(unsigned nx, unsigned ny);
    // Cells keep their places in row-major order, so they move in the grid when the number of columns
    // changes; those cut off are let go of undeleted (delete them with Del first).
    void ReDim(unsigned nx, unsigned ny);
    // Forgets the grid's columns and rows; the cells stay in the set.
    void Clear();
    unsigned Columns() const { return static_cast<unsigned>(colSpan_.size()); }
    unsigned Rows() const { return colSpan_.empty() ? 0 : static_cast<unsigned>(colSpan_.front().size()); }

    // The cell at a place in row-major order; throws CInvalidArgException* outside the array.
    Zel2* tab(unsigned i, unsigned j);
    // Null outside the grid.
    Zel2* operator()(unsigned i, unsigned j);
    // Puts an object (null for none) into a cell and takes ownership; what was there is deleted. Ignored,
    // with the object still the caller's, outside the grid and for negative spans. Spans past the grid are
    // cut to one more than fits; lines beyond the last one count as the last.
    void SetCell(unsigned i, unsigned j, Zel2* obj, int spanX, int spanY);
    // Ignored outside the grid.
    void SetCellDim(unsigned i, unsigned j, int spanX, int spanY);
    void GetCellDim(unsigned i, unsigned j, int& spanX, int& spanY) const;
    // The column lines, from left to right, and the row lines, from the top down, at the cells' own sizes:
    // one more than columns and rows, beginning with 0. The caller passes as many zeros.
    void GetPosition(std::vector<int>& xs, std::vector<int>& ys);

    void Serialize(CArchive& ar) override;
    CSize Size() override;
    // Scales lines, cells and origins to a size; a component of 0 or less keeps the cells' own.
    void SetSize(const CSize& size) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void OnPrintGraph(CDC* dc, CPrintInfo* info) override;
    // Returns 1 for every code.
    int OnNotify(Zel2* sender, long code) override;
    // Between rows that no cell spans.
    std::vector<std::unique_ptr<Zel2>> SplitPages(const PageRoom& room) override;
    int BeginningHeight() override;

  protected:
    bool PrintsByPages() override { return true; }
    // As SetSize, for derived classes that give it another meaning.
    void LayOut(const CSize& size);

  private:
    using Spans = std::vector<std::vector<int>>;

    Zel2* CellAt(unsigned i, unsigned j) const { return ChildAt(static_cast<int>(Columns() * j + i)); }
    unsigned LineAfter(const Spans& spans, unsigned i, unsigned j, unsigned from, unsigned last) const;
    void ShapeSpans(unsigned nx, unsigned ny);
    std::vector<unsigned> BreakableRows() const;
    std::unique_ptr<Zel2Table> TakeRows(unsigned begin, unsigned end);

    Spans colSpan_;
    Spans rowSpan_;
    bool layingOut_ = false;
};
