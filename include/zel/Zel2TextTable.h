// Grids of texts.
#pragma once

#include <zel/Zel2Set.h>
#include <zel/Zel2Text.h>

#include <memory>
#include <vector>

// A grid of texts with column and row lines of its own, each as wide and high as its largest text; row 0 is
// at the top. Cells come into being through SetStyle. The texts belong to the table but are not children of
// the set. World units, y upwards.
//
// Classic archives hold no texts. With exact rules paper shows what the screen does, and every page that a
// table is continued on repeats its header rows; with classic rules only the first one does.
class Zel2TextTable : public Zel2Set {
    DECLARE_SERIAL(Zel2TextTable)
  public:
    Zel2TextTable() : Zel2TextTable(0, 0) {}
    Zel2TextTable(int nCols, int nRows);
    // The texts are not shared by copies.
    Zel2TextTable(const Zel2TextTable&) = delete;
    Zel2TextTable& operator=(const Zel2TextTable&) = delete;

    int Columns() const { return nCols_; }
    int Rows() const { return nRows_; }
    // Puts a copy of `proto` into each cell from column c0 to c1 and row r0 to r1 that lies in the grid.
    void SetStyle(int c0, int c1, int r0, int r1, const Zel2Text& proto);
    // A printf format. Tabs in the result (which is cut to 4999 bytes) move to the next column, and from the
    // last one to column `c` of the next row; cells without a text, and what runs past the last row, are
    // skipped. Nothing happens when cell (c, r) itself has no text.
    void SetText(int c, int r, const char* format, ...) __attribute__((format(printf, 4, 5)));
    // One cell, the text as it is.
    void SetPlainText(int c, int r, const char* text);
    // The text object of a cell; null outside the grid and where there is none.
    Zel2Text* Text(int c, int r) const;
    void SetNHeaderRows(int count) { nHeaderRows_ = count; }
    int GetNHeaderRows() const { return nHeaderRows_; }
    // Breaks the table at a height counted from the top: it keeps the rows that fit, and the rest is handed
    // back, after copies of the header rows, as a table that the caller owns. Null when all rows fit; a break
    // within the header, or before any row, hands all rows over.
    Zel2TextTable* SplitVert(int height);

    // The size of the natural layout, which it makes.
    CSize Size() override;
    // Scales lines and texts to a size; a component below 1 keeps the texts' own.
    void SetSize(const CSize& size) override;
    void OpenOn(CDC* dc, int scale) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void Serialize(CArchive& ar) override;
    std::vector<std::unique_ptr<Zel2>> SplitPages(const PageRoom& room) override;
    // The header and the first row after it.
    int BeginningHeight() override;

  private:
    using Column = std::vector<std::unique_ptr<Zel2Text>>;

    bool Has(int c, int r) const { return c >= 0 && r >= 0 && c < nCols_ && r < nRows_; }
    std::unique_ptr<Zel2Text>& Cell(int c, int r) {
        return texts_[static_cast<std::size_t>(c)][static_cast<std::size_t>(r)];
    }
    void Put(int c, int r, std::unique_ptr<Zel2Text> text);
    template <class Visit>
    void ForEachText(Visit visit);
    LONG RowHeight(int r);
    std::vector<LONG> RowHeights();
    int HeaderRows() const;
    // A table of copies of the first `headers` rows and, moved there, the rows from `begin` to before `end`.
    std::unique_ptr<Zel2TextTable> TakeRows(int headers, int begin, int end);
    void KeepRows(int count);
    void ExchangeTexts(CArchive& ar);

    CSize size_;
    int nCols_;
    int nRows_;
    int nHeaderRows_ = 0;
    std::vector<Column> texts_;
};
