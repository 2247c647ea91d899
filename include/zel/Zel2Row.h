// Objects side by side.
#pragma once

#include <zel/Zel2Set.h>

// Lays its children out from left to right, without gaps, when it is drawn. World units. With exact rules
// paper shows what the screen does; with classic rules a row prints as a plain set, its children where they
// were.
class Zel2Row : public Zel2Set {
    DECLARE_SERIAL(Zel2Row)
  public:
    enum Flags { STRETCH = 0x1, SHRINK = 0x2 };

    // `flags`: whether SetSize may make the children wider or narrower than they are by themselves.
    explicit Zel2Row(int flags = 0) : flags_(flags) {}

    // The largest extent so far: the children's widths added up, the highest of them. It grows only.
    CSize Size() override;
    // Shares the width out in proportion to the children's own widths, as far as the flags allow, and gives
    // them all the height.
    void SetSize(const CSize& size) override;
    void OnDraw() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    void Serialize(CArchive& ar) override;
    // Side by side on each page: the parts of those children that can be broken, and gaps beside them.
    std::vector<std::unique_ptr<Zel2>> SplitPages(const PageRoom& room) override;
    int BeginningHeight() override;

  private:
    CSize NaturalSize();

    CSize size_;
    int flags_;
};
