// Zel2's look-ups of single tools, which need the tables' own classes.
#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Zel2.h>

DrawColor* Zel2::Color(int i) {
    DrawColorTable* table = Colors();
    return table ? (*table)(i) : nullptr;
}

DrawFont* Zel2::Font(int i) {
    DrawFontTable* table = Fonts();
    return table ? (*table)(i) : nullptr;
}

DrawPen* Zel2::Pen(int i, int) {
    DrawPenTable* table = Pens();
    return table ? (*table)(i) : nullptr;
}

DrawSymbol* Zel2::Symbol(int i) {
    DrawSymbolTable* table = Symbols();
    return table ? (*table)(i) : nullptr;
}
