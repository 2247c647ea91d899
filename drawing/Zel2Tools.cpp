#include <zel/Zel2Tools.h>
#include <zel/platform/DC.h>

IMPLEMENT_SERIAL(Zel2Tools, Zel2Set, 0)

Zel2Tools::Zel2Tools() : Zel2Tools(nullptr, {}, 0, {}, nullptr) {}

Zel2Tools::Zel2Tools(Zel2* parent, CPoint, unsigned long, CSize, CObArray*)
    : colors_(std::make_shared<DrawColorTable>()),
      fonts_(std::make_shared<DrawFontTable>()),
      pens_(std::make_shared<DrawPenTable>()),
      symbols_(std::make_shared<DrawSymbolTable>()) {
    SetParent(parent);
}

Zel2Tools::Zel2Tools(const Zel2Tools& other) : Zel2Set() {
    ShareChildren(other);
}

Zel2Tools& Zel2Tools::operator=(const Zel2Tools& other) {
    Zel2Set::operator=(other);
    colors_ = other.colors_;
    fonts_ = other.fonts_;
    pens_ = other.pens_;
    symbols_ = other.symbols_;
    return *this;
}

Zel2Tools::~Zel2Tools() {
    colors_.reset();
    fonts_.reset();
    pens_.reset();
    symbols_.reset();
}

DrawColorTable* Zel2Tools::Colors() {
    return colors_.get();
}
DrawFontTable* Zel2Tools::Fonts() {
    return fonts_.get();
}
DrawPenTable* Zel2Tools::Pens() {
    return pens_.get();
}
DrawSymbolTable* Zel2Tools::Symbols() {
    return symbols_.get();
}

DrawColor* Zel2Tools::Color(int i) {
    return Zel2::Color(i);
}
DrawPen* Zel2Tools::Pen(int i) {
    return Zel2::Pen(i);
}
DrawFont* Zel2Tools::Font(int i) {
    return Zel2::Font(i);
}
DrawSymbol* Zel2Tools::Symbol(int i) {
    return Zel2::Symbol(i);
}
DrawColor* Zel2Tools::Color(const char* name) {
    return Color(GetColorIndex(name));
}
DrawPen* Zel2Tools::Pen(const char* name) {
    return Pen(GetPenIndex(name));
}
DrawFont* Zel2Tools::Font(const char* name) {
    return Font(GetFontIndex(name));
}
DrawSymbol* Zel2Tools::Symbol(const char* name) {
    return Symbol(GetSymbolIndex(name));
}

int Zel2Tools::GetColorIndex(const char* name) {
    return colors_ ? colors_->GetIndex(name) : -1;
}
int Zel2Tools::GetFontIndex(const char* name) {
    return fonts_ ? fonts_->GetIndex(name) : -1;
}
int Zel2Tools::GetPenIndex(const char* name) {
    return pens_ ? pens_->GetIndex(name) : -1;
}
int Zel2Tools::GetSymbolIndex(const char* name) {
    return symbols_ ? symbols_->GetIndex(name) : -1;
}

// A tool that is registered in the middle of a pass is opened at once, but classic rules leave its printer
// flag as it was made: pens then draw in their printer colour until the next pass.
int Zel2Tools::Adopt(DrawToolTable* table, std::unique_ptr<DrawTool> tool) {
    if (!table) return -1;
    const CDC* dc = IsExact() ? DC() : nullptr;
    if (dc) tool->SetPrinter(dc->m_bPrinting);
    return table->Register(tool.release());
}

namespace {
// Interface colours are wider than a colour is.
COLORREF Cut(unsigned long color) {
    return static_cast<COLORREF>(color);
}
}  // namespace

int Zel2Tools::RegisterColor(const char* name, unsigned long screen, unsigned long printer) {
    return Adopt(Colors(), std::make_unique<DrawColor>(name, Cut(screen), Cut(printer)));
}

int Zel2Tools::RegisterPen(const char* name, int style, int width, unsigned long screen,
                           unsigned long printer, int* pattern) {
    return Adopt(Pens(), std::make_unique<DrawPen>(name, style, width, Cut(screen), Cut(printer), pattern));
}

int Zel2Tools::RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic,
                            int underline, int strikeOut, unsigned long screen, unsigned long printer) {
    return Adopt(Fonts(), std::make_unique<DrawFont>(name, face, ptSize10, bold, italic, underline, strikeOut,
                                                     Cut(screen), Cut(printer)));
}

int Zel2Tools::RegisterSymbol(const char* name, CSize size, zel::SymbolKind type, const char* text,
                              int penWidth, unsigned long penScreen, unsigned long penPrinter,
                              unsigned long brushScreen, unsigned long brushPrinter, int border,
                              const char* face, int fontSize, unsigned long fontScreen,
                              unsigned long fontPrinter, int* xs, int* ys, int n) {
    return Adopt(Symbols(),
                 std::make_unique<DrawSymbol>(name, size, type, text, penWidth, Cut(penScreen),
                                              Cut(penPrinter), Cut(brushScreen), Cut(brushPrinter), border,
                                              face, fontSize, Cut(fontScreen), Cut(fontPrinter), xs, ys, n));
}

void Zel2Tools::OpenOn(CDC* dc, int scale) {
    for (DrawToolTable* table : std::initializer_list<DrawToolTable*>{Colors(), Pens(), Fonts(), Symbols()}) {
        if (table) table->OpenOn(dc, scale);
    }
    Zel2Set::OpenOn(dc, scale);
}

void Zel2Tools::Close() {
    for (DrawToolTable* table : std::initializer_list<DrawToolTable*>{Colors(), Pens(), Fonts(), Symbols()}) {
        if (table) table->Close();
    }
    Zel2Set::Close();
}

void Zel2Tools::OnPrint(CDC* dc, CPrintInfo* info) {
    Zel2Set::OnPrint(dc, info);
}

void Zel2Tools::Serialize(CArchive& ar) {
    for (DrawToolTable* table : std::initializer_list<DrawToolTable*>{Colors(), Fonts(), Pens(), Symbols()}) {
        if (table) table->Serialize(ar);
    }
    Zel2Set::Serialize(ar);
}
