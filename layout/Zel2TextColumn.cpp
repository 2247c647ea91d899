#include "core/ArchiveFields.h"

#include <zel/Zel2Text.h>
#include <zel/Zel2TextColumn.h>

IMPLEMENT_SERIAL(Zel2TextColumn, Zel2Column, 0)

namespace {

constexpr int kColumnsOwn = -2;

}  // namespace

Zel2TextColumn::Zel2TextColumn(const CSize& lineSize, int font, int format, int frame, int background)
    : Zel2Column(1),
      lineSize_(lineSize),
      font_(font),
      format_(format),
      frame_(frame),
      background_(background) {}

void Zel2TextColumn::AddText(const char* text, int height, int font, int format, int frame, int background) {
    const CRect box(0, 0, lineSize_.cx, height);
    Zel2Column::Add(new Zel2Text(text, box, font, format, 0, frame, background, Zel2Text::Rule(-1, 0.0F)));
}

void Zel2TextColumn::Add(const char* text) {
    AddText(text, lineSize_.cy, font_, format_, frame_, background_);
}

void Zel2TextColumn::AddTitle(const char* text, int height, int font, int format, int frame, int background) {
    AddText(text, height < 0 ? MulDiv(lineSize_.cy, 6, 5) : height, font < 0 ? font_ : font, format,
            frame == kColumnsOwn ? frame_ : frame, background == kColumnsOwn ? background_ : background);
}

void Zel2TextColumn::Serialize(CArchive& ar) {
    Zel2Column::Serialize(ar);
    zel::Exchange(ar, lineSize_.cx, lineSize_.cy, font_, format_, frame_, background_);
}
