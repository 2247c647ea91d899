// The container that owns a drawing's tool tables.
#pragma once

#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/DrawSymbol.h>
#include <zel/Zel2Set.h>

#include <memory>

// A set with four tool tables: colours, fonts, pens and plotting symbols. Everything below it finds these
// tables, and never those of a registry further up. The tables begin empty; objects register what they need
// when they are first drawn, and a tool registered before under the same name is kept, so a host's own choice
// always wins.
class Zel2Tools : public Zel2Set {
    DECLARE_SERIAL(Zel2Tools)
  public:
    Zel2Tools();
    // Stores the parent; the other arguments are not used.
    Zel2Tools(Zel2* parent, CPoint origin, unsigned long status, CSize size, CObArray* children);
    // Shares the children of `other` and has no tables: assign some before use.
    Zel2Tools(const Zel2Tools& other);
    // Shares the children and the tables of `other`: detach the children of one before both are destroyed.
    Zel2Tools& operator=(const Zel2Tools& other);
    ~Zel2Tools() override;

    // The tool at an index or of a name; null when there is none.
    virtual DrawColor* Color(const char* name);
    virtual DrawColor* Color(int i);
    virtual DrawPen* Pen(const char* name);
    virtual DrawPen* Pen(int i);
    virtual DrawFont* Font(const char* name);
    virtual DrawFont* Font(int i);
    virtual DrawSymbol* Symbol(const char* name);
    virtual DrawSymbol* Symbol(int i);

    DrawColorTable* Colors() override;
    DrawFontTable* Fonts() override;
    DrawPenTable* Pens() override;
    DrawSymbolTable* Symbols() override;
    int GetColorIndex(const char* name) override;
    int GetFontIndex(const char* name) override;
    int GetPenIndex(const char* name) override;
    int GetSymbolIndex(const char* name) override;
    // Each answers the index of the tool of that name, new or already there.
    int RegisterColor(const char* name, unsigned long screen, unsigned long printer) override;
    int RegisterPen(const char* name, int style, int width, unsigned long screen, unsigned long printer,
                    int* pattern) override;
    int RegisterFont(const char* name, const char* face, int ptSize10, int bold, int italic, int underline,
                     int strikeOut, unsigned long screen, unsigned long printer) override;
    int RegisterSymbol(const char* name, CSize size, zel::SymbolKind type, const char* text, int penWidth,
                       unsigned long penScreen, unsigned long penPrinter, unsigned long brushScreen,
                       unsigned long brushPrinter, int border, const char* face, int fontSize,
                       unsigned long fontScreen, unsigned long fontPrinter, int* xs, int* ys, int n) override;

    // The tables first, then the children.
    void OpenOn(CDC* dc, int scale) override;
    void Close() override;
    void OnPrint(CDC* dc, CPrintInfo* info) override;
    // Colours, fonts, pens, symbols, and only then the fields of the set.
    void Serialize(CArchive& ar) override;

  private:
    int Adopt(DrawToolTable* table, std::unique_ptr<DrawTool> tool);

    std::shared_ptr<DrawColorTable> colors_;
    std::shared_ptr<DrawFontTable> fonts_;
    std::shared_ptr<DrawPenTable> pens_;
    std::shared_ptr<DrawSymbolTable> symbols_;
};
