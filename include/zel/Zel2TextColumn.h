// Lines of text.
#pragma once

#include <zel/Zel2Column.h>

// A column that makes its own lines: texts of one size, in one font, format and colours, and titles of their
// own height. World units; tool indexes, -1 for none.
class Zel2TextColumn : public Zel2Column {
    DECLARE_SERIAL(Zel2TextColumn)
  public:
    Zel2TextColumn() : Zel2Column(1) {}
    // `lineSize` is the box of a line; `format` the DT_* flags of DrawFont::Print.
    Zel2TextColumn(const CSize& lineSize, int font, int format, int frame, int background);

    void Add(const char* text);
    using Zel2Set::Add;
    // A negative height is a fifth more than a line's, a negative font the column's, and a frame or
    // background of -2 the column's.
    void AddTitle(const char* text, int height, int font, int format, int frame, int background);

    void Serialize(CArchive& ar) override;

  private:
    void AddText(const char* text, int height, int font, int format, int frame, int background);

    CSize lineSize_;
    int font_ = -1;
    int format_ = 0;
    int frame_ = -1;
    int background_ = -1;
};
