// Grids of graphs.
#pragma once

#include <zel/Zel2Graph.h>
#include <zel/Zel2Table.h>

// A grid of graphs of equal size within four margins: a table of 3 x 3 cells, with empty rectangles around an
// inner table of graphs. Its size is what the graphs were made with; wider margins take from the graphs.
// World units. Graphs count from the top, in columns from the left.
class Zel2GraphTable : public Zel2Table {
    DECLARE_SERIAL(Zel2GraphTable)
  public:
    // Empty cells and no graphs.
    Zel2GraphTable() : Zel2Table(3, 3) {}
    // One column of graphs of 4000 x 3000.
    explicit Zel2GraphTable(int ngy);
    // The last argument is not used.
    Zel2GraphTable(int ngx, int ngy, CSize graphSize, int = 0);

    int NGx() const { return nGx_; }
    int NGy() const { return nGy_; }
    Zel2* TopMargin() { return (*this)(0, 0); }
    Zel2* LeftMargin() { return (*this)(0, 1); }
    Zel2* RightMargin() { return (*this)(2, 1); }
    Zel2* BottomMargin() { return (*this)(0, 2); }
    // A negative top, right or bottom takes the value of `left`.
    void SetMargins(int left, int top, int right, int bottom);
    // A graph of the first column, or of a place; null outside the grid, and after loading from a classic
    // archive.
    Zel2Graph* GetGraph(int k) { return GetGraph(0, k); }
    Zel2Graph* GetGraph(int i, int j);
    // Puts a graph there and takes ownership; the one before is deleted. Without effect outside the grid.
    void SetGraph(Zel2Graph* g, int k) { SetGraph(g, 0, k); }
    void SetGraph(Zel2Graph* g, int i, int j);
    // One range for all graphs of a column, or of a row.
    void SetXCoord(int i, double min, double max);
    void SetYCoord(int j, double min, double max);

    // The argument is not used: the table keeps the size that its cells give it.
    void SetSize(const CSize& size) override;
    // What its own adjustment makes its cells report is no news.
    int OnNotify(Zel2* sender, long code) override;
    void Serialize(CArchive& ar) override;
    // Graphs within common margins stay together.
    std::vector<std::unique_ptr<Zel2>> SplitPages(const PageRoom& room) override;
    int BeginningHeight() override;

  protected:
    void SetCells(int ngx, int ngy, CSize graphSize, int);
    void AdjustSizes();

  private:
    Zel2Table* table_ = nullptr;  // the cell in the middle
    static constexpr int kMargin = 400;
    int left_ = kMargin;
    int top_ = kMargin;
    int right_ = kMargin;
    int bottom_ = kMargin;
    int nGx_ = 0;
    int nGy_ = 0;
    bool adjusting_ = false;
};
