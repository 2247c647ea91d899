// Objects one below another.
#pragma once

#include <zel/Zel2Set.h>

// Stacks its children from the top down, without gaps, when it is drawn; they keep their x. World units, y
// upwards. With exact rules paper shows what the screen does; with classic rules a column prints as a plain
// set, its children where they were.
class Zel2Column : public Zel2Set {
    DECLARE_SERIAL(Zel2Column)
  public:
    enum Alignment { LEFT = 1, RIGHT = 2, CENTER = 3, FILL = 4 };

    // `flags` are kept and stored; a column itself reads none.
    explicit Zel2Column(int flags = 0) : flags_(flags) {}

    // At least as large as the stored size, the widest child, and the children's heights added up.
    CSize Size() override;
    // Two positive components are stored; otherwise the children's own size is.
    void SetSize(const CSize& size) override;
    // Moves each child to the left edge, the right edge or the middle, or widens it to the whole column (an
    // Alignment; others do nothing).
    virtual void Justify(int mode);
    // Breaks the column at a height counted from the top: it keeps what fits, and the rest is handed back as
    // a column that the caller owns; null when there is nothing to hand back. With classic rules only a
    // negative height breaks anything: for a column whose first child is one too, what follows that child.
    Zel2Column* SplitVert(int height);

    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void Serialize(CArchive& ar) override;
    std::vector<std::unique_ptr<Zel2>> SplitPages(const PageRoom& room) override;
    int BeginningHeight() override;

  private:
    friend class Zel2Report;

    using Objects = std::vector<std::unique_ptr<Zel2>>;

    CSize NaturalSize();
    // Where the children's upper edges lie, by the present size.
    template <class Visit>
    void FromTheTop(Visit visit);
    Objects TakeChildren();
    void Fill(Objects objects);
    // The pages of the content, with page breaks kept; the column keeps the first.
    std::vector<std::unique_ptr<Zel2Column>> BreakIntoPages(const PageRoom& room);
    std::unique_ptr<Zel2Column> ClassicSplit(int height, bool leavesSomething);

    CSize size_;
    int flags_;
};
