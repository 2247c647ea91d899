// The dialogs behind the Edit operations of the tool tables.
#pragma once

#include <zel/DrawColor.h>
#include <zel/DrawFont.h>
#include <zel/DrawPen.h>
#include <zel/platform/Dialog.h>

#include <string>
#include <vector>

namespace zel {

// Has the tables and fonts edited by the dialogs below, unless the program has set editors of its own. The
// viewer does this by itself.
void InstallToolDialogs();

// What the dialogs share: a list of the table's tools, and beside it what the chosen one is like, with
// samples. Changes are kept in copies until OK.
class ToolTableDialog : public CDialog {
  public:
    ToolTableDialog(CWnd* parent, const char* title, DrawToolTable& tools);

  protected:
    static constexpr UINT kList = 1101, kChangeScreen = 1102, kChangePrint = 1103;

    int Current() const { return current_; }
    // Shows tool `i` in the fields.
    virtual void ShowTool(int i) = 0;
    // Takes the fields over into tool `i`; false, with a message, when they cannot be.
    virtual bool TakeFields(int) { return true; }
    virtual void PaintSamples(CDC& dc) = 0;
    // The table gets what was changed.
    virtual void Accept() = 0;

    // Adds to the template.
    void AddItem(const DialogItem& item) { template_.items.push_back(item); }
    void AddColorRows(int top);
    const DialogTemplate* Template() const override { return &template_; }
    BOOL OnInitDialog() override;
    void OnOK() override;
    void PaintSwatch(CDC& dc, int row, COLORREF color) const;
    // Lets the user change a colour; true when he did.
    bool PickColor(const char* caption, COLORREF& color);
    // Lets the user choose the screen or the printer colour of a tool; null for none.
    template <class Tool>
    void ChangeScreenColor(Tool* tool) {
        COLORREF value = tool ? tool->ScrColor() : 0;
        if (tool && PickColor("Screen Color", value)) tool->ScrColor(value);
    }
    template <class Tool>
    void ChangePrintColor(Tool* tool) {
        COLORREF value = tool ? tool->PrnColor() : 0;
        if (tool && PickColor("Print Color", value)) tool->PrnColor(value);
    }
    // Where the samples are, in device pixels.
    CRect SampleArea() const { return FromDialogUnits(sample_); }
    DECLARE_MESSAGE_MAP()
    void OnPaint();
    void OnSelect();

  private:
    std::vector<std::string> names_;
    DialogTemplate template_;
    CRect sample_;  // dialog units
    int colorTop_ = 0;
    int current_ = -1;
};

}  // namespace zel

// The colours of a table, each with its two variants.
class CColorTableDlg : public zel::ToolTableDialog {
  public:
    CColorTableDlg(CWnd* parent, DrawColorTable& table);

  protected:
    void ShowTool(int i) override;
    void PaintSamples(CDC& dc) override;
    void Accept() override;
    DECLARE_MESSAGE_MAP()
    void OnChangeScreen();
    void OnChangePrint();

  private:
    DrawColorTable& table_;
    DrawColorTable edited_;
};

// The pens of a table: style, width, pattern and colours.
class PenTabDlg : public zel::ToolTableDialog {
  public:
    PenTabDlg(CWnd* parent, DrawPenTable& table);

  protected:
    void ShowTool(int i) override;
    bool TakeFields(int i) override;
    void PaintSamples(CDC& dc) override;
    void Accept() override;
    DECLARE_MESSAGE_MAP()
    void OnStyle();
    void OnField();
    void OnChangeScreen();
    void OnChangePrint();

  private:
    static constexpr UINT kStyle = 1110, kWidth = 1111, kPattern = 1112;
    bool ReadFields(DrawPen& pen, std::string& fault);
    void ShowPattern(const DrawPen& pen);

    DrawPenTable& table_;
    DrawPenTable edited_;
};

// The fonts of a table, each edited with the platform's font dialog. Changes the table that it is given, on
// OK.
class FontTblDlg : public zel::ToolTableDialog {
  public:
    FontTblDlg(CWnd* parent, DrawFontTable& table);

  protected:
    void ShowTool(int i) override;
    void PaintSamples(CDC& dc) override;
    void Accept() override;
    DECLARE_MESSAGE_MAP()
    void OnChangeFont();
    void OnChangePrint();

  private:
    static constexpr UINT kDescription = 1121;
    DrawFontTable& table_;
    DrawFontTable edited_;
};
