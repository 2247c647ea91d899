#include <zel/ToolDialogs.h>
#include <zel/ToolEditors.h>
#include <zel/XColorDialog.h>

#include <algorithm>
#include <cstdlib>

namespace {

// Dialog units
constexpr int kMargin = 7, kListWidth = 128, kSide = kMargin + kListWidth + 8, kSideWidth = 140;
constexpr int kHeight = 168, kButtonTop = kHeight - kMargin - 15;
constexpr int kRowHeight = 19, kSwatchWidth = 28;

CWnd* Owner() {
    CWnd* const focus = CWnd::GetFocus();
    return focus ? focus->GetTopLevelParent() : nullptr;
}

template <class Dialog, class Table>
int Run(Table& table) {
    Dialog dialog(Owner(), table);
    return dialog.DoModal() == IDOK ? 1 : 0;
}

int EditFont(DrawFont& font) {
    LOGFONT record = font.ScreenFont();
    CFontDialog dialog(&record, CF_SCREENFONTS | CF_EFFECTS, nullptr, Owner());
    dialog.m_cf.rgbColors = font.ScrColor();
    dialog.m_cf.iPointSize = font.PtSize10();
    dialog.m_cf.caption = font.Name();
    if (dialog.DoModal() != IDOK) return 0;
    font.TakeChoice(record, dialog.GetColor(), dialog.GetSize());
    return 1;
}

}  // namespace

void zel::InstallToolDialogs() {
    ToolEditors& editors = TheToolEditors();
    if (!editors.colors) editors.colors = Run<CColorTableDlg, DrawColorTable>;
    if (!editors.pens) editors.pens = Run<PenTabDlg, DrawPenTable>;
    if (!editors.fonts) editors.fonts = Run<FontTblDlg, DrawFontTable>;
    if (!editors.font) editors.font = EditFont;
}

namespace zel {

BEGIN_MESSAGE_MAP(ToolTableDialog, CDialog)
ON_WM_PAINT()
ON_LBN_SELCHANGE(kList, OnSelect)
END_MESSAGE_MAP()

ToolTableDialog::ToolTableDialog(CWnd* parent, const char* title, DrawToolTable& tools)
    : CDialog(0, parent), sample_(kSide, 96, kSide + kSideWidth, kButtonTop - 8) {
    for (int i = 0; i < tools.Size(); ++i) {
        const DrawTool* const tool = tools.Get(i);
        names_.push_back(tool ? tool->NameRef().GetString() : "");
    }
    const int width = kSide + kSideWidth + kMargin;
    template_ = {title, CSize(width, kHeight), {}};
    AddItem({WindowKind::LIST, kList, "", CRect(kMargin, kMargin, kMargin + kListWidth, kButtonTop - 8),
             LBS_NOTIFY | WS_TABSTOP});
    AddItem({WindowKind::BUTTON, IDOK, "OK", CRect(width - 114, kButtonTop, width - 64, kButtonTop + 15),
             BS_DEFPUSHBUTTON | WS_TABSTOP});
    AddItem({WindowKind::BUTTON, IDCANCEL, "Cancel",
             CRect(width - 57, kButtonTop, width - kMargin, kButtonTop + 15), WS_TABSTOP});
}

void ToolTableDialog::AddColorRows(int top) {
    colorTop_ = top;
    const char* const labels[] = {"Screen Color", "Print Color"};
    for (int row = 0; row < 2; ++row) {
        const int y = top + row * kRowHeight;
        AddItem({WindowKind::STATIC, 0xFFFF, labels[row], CRect(kSide, y + 2, kSide + 50, y + 13), 0});
        AddItem({WindowKind::BUTTON, row == 0 ? kChangeScreen : kChangePrint, "Change...",
                 CRect(kSide + kSideWidth - 50, y, kSide + kSideWidth, y + 15), WS_TABSTOP});
    }
}

void ToolTableDialog::PaintSwatch(CDC& dc, int row, COLORREF color) const {
    const int y = colorTop_ + row * kRowHeight;
    const CRect box = FromDialogUnits(CRect(kSide + 54, y + 1, kSide + 54 + kSwatchWidth, y + 14));
    dc.FillSolidRect(&box, color);
    CBrush grey(RGB(128, 128, 128));
    dc.FrameRect(&box, &grey);
}

BOOL ToolTableDialog::OnInitDialog() {
    CDialog::OnInitDialog();
    auto* list = static_cast<CListBox*>(GetDlgItem(kList));
    for (const std::string& name : names_) list->AddString(name.c_str());
    if (names_.empty()) {
        for (CWnd* child : Children()) {
            const int id = child->GetDlgCtrlID();
            if (id != IDOK && id != IDCANCEL) child->EnableWindow(FALSE);
        }
        return TRUE;
    }
    list->SetCurSel(0);
    current_ = 0;
    ShowTool(0);
    return TRUE;
}

void ToolTableDialog::OnSelect() {
    auto* list = static_cast<CListBox*>(GetDlgItem(kList));
    const int chosen = list->GetCurSel();
    if (chosen < 0 || chosen == current_) return;
    if (!TakeFields(current_)) {
        list->SetCurSel(current_);
        return;
    }
    current_ = chosen;
    ShowTool(chosen);
    Invalidate();
}

void ToolTableDialog::OnOK() {
    if (current_ >= 0 && !TakeFields(current_)) return;
    if (current_ >= 0) Accept();
    CDialog::OnOK();
}

void ToolTableDialog::OnPaint() {
    CPaintDC dc(this);
    if (current_ >= 0) PaintSamples(dc);
}

bool ToolTableDialog::PickColor(const char* caption, COLORREF& color) {
    COLORREF chosen = color;
    CXColorDialog dialog(this, caption, &chosen);
    dialog.SetRules(ZelRules::EXACT);
    if (dialog.DoModal() != IDOK || chosen == color) return false;
    color = chosen;
    Invalidate();
    return true;
}

}  // namespace zel

// Colours

BEGIN_MESSAGE_MAP(CColorTableDlg, zel::ToolTableDialog)
ON_BN_CLICKED(kChangeScreen, OnChangeScreen)
ON_BN_CLICKED(kChangePrint, OnChangePrint)
END_MESSAGE_MAP()

CColorTableDlg::CColorTableDlg(CWnd* parent, DrawColorTable& table)
    : ToolTableDialog(parent, "Color Table", table), table_(table), edited_(table) {
    AddColorRows(kMargin);
}

void CColorTableDlg::ShowTool(int) {}

// Both variants side by side, as large as there is room.
void CColorTableDlg::PaintSamples(CDC& dc) {
    const DrawColor* color = edited_(Current());
    if (!color) return;
    PaintSwatch(dc, 0, color->ScrColor());
    PaintSwatch(dc, 1, color->PrnColor());
    CRect left = SampleArea();
    CRect right = left;
    left.right = right.left = (left.left + left.right) / 2;
    dc.FillSolidRect(&left, color->ScrColor());
    dc.FillSolidRect(&right, color->PrnColor());
    const CRect both = SampleArea();
    CBrush grey(RGB(128, 128, 128));
    dc.FrameRect(&both, &grey);
}

void CColorTableDlg::OnChangeScreen() {
    ChangeScreenColor(edited_(Current()));
}

void CColorTableDlg::OnChangePrint() {
    ChangePrintColor(edited_(Current()));
}

void CColorTableDlg::Accept() {
    for (int i = 0; i < table_.Size(); ++i) {
        DrawColor* color = table_(i);
        const DrawColor* edited = edited_(i);
        if (!color || !edited) continue;
        // The colour in use drops its brush where it changes.
        const COLORREF inUse =
            color->GetColor() == color->ScrColor() ? edited->ScrColor() : edited->PrnColor();
        color->SetColor(inUse);
        color->ScrColor(edited->ScrColor());
        color->PrnColor(edited->PrnColor());
    }
}

// Fonts

BEGIN_MESSAGE_MAP(FontTblDlg, zel::ToolTableDialog)
ON_BN_CLICKED(kChangeScreen, OnChangeFont)
ON_BN_CLICKED(kChangePrint, OnChangePrint)
ON_LBN_DBLCLK(kList, OnChangeFont)
END_MESSAGE_MAP()

FontTblDlg::FontTblDlg(CWnd* parent, DrawFontTable& table)
    : ToolTableDialog(parent, "Font Table", table), table_(table), edited_(table) {
    AddItem({zel::WindowKind::STATIC, kDescription, "", CRect(kSide, 48, kSide + kSideWidth, 60), 0});
    AddColorRows(kMargin);
}

void FontTblDlg::ShowTool(int i) {
    const DrawFont* font = edited_(i);
    if (!font) return;
    SetDlgItemText(kChangeScreen, "Font...");
    CString text;
    text.Format("%s, %g pt%s%s", font->FontName().GetString().c_str(), font->PtSize10() / 10.0,
                font->Bold() ? ", bold" : "", font->Italic() ? ", italic" : "");
    SetDlgItemText(kDescription, text);
}

void FontTblDlg::PaintSamples(CDC& dc) {
    const DrawFont* chosen = edited_(Current());
    if (!chosen) return;
    PaintSwatch(dc, 0, chosen->ScrColor());
    PaintSwatch(dc, 1, chosen->PrnColor());
    CRect area = SampleArea();
    dc.FillSolidRect(&area, RGB(255, 255, 255));
    dc.SaveDC();
    dc.IntersectClipRect(&area);
    DrawFont sample(*chosen);
    sample.OpenOn(&dc, 1000);
    area.DeflateRect(4, 4);
    sample.DrawText("AaBbYyZz 123 °µ", &area, DT_LEFT | DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX);
    sample.Close();
    dc.SelectStockObject(SYSTEM_FONT);
    dc.RestoreDC(-1);
}

void FontTblDlg::OnChangeFont() {
    DrawFont* font = edited_(Current());
    if (!font) return;
    font->Edit();
    ShowTool(Current());
    Invalidate();
}

void FontTblDlg::OnChangePrint() {
    ChangePrintColor(edited_(Current()));
}

void FontTblDlg::Accept() {
    table_.CopyFrom(&edited_);
}

// Pens

BEGIN_MESSAGE_MAP(PenTabDlg, zel::ToolTableDialog)
ON_BN_CLICKED(kChangeScreen, OnChangeScreen)
ON_BN_CLICKED(kChangePrint, OnChangePrint)
ON_CBN_SELCHANGE(kStyle, OnStyle)
ON_EN_CHANGE(kWidth, OnField)
ON_EN_CHANGE(kPattern, OnField)
END_MESSAGE_MAP()

namespace {

// The names of the styles end with the user's own, which is code -1.
int CodeOf(int index) {
    return index == static_cast<int>(DrawPen::kStyleNames.size()) - 1
               ? static_cast<int>(DrawPen::USER_DEFINED)
               : index;
}
int IndexOf(int code) {
    return code == DrawPen::USER_DEFINED ? static_cast<int>(DrawPen::kStyleNames.size()) - 1 : code;
}

}  // namespace

PenTabDlg::PenTabDlg(CWnd* parent, DrawPenTable& table)
    : ToolTableDialog(parent, "Line Table", table), table_(table), edited_(table) {
    using zel::WindowKind;
    const auto row = [this](int top, const char* label, const zel::DialogItem& field) {
        AddItem({WindowKind::STATIC, 0xFFFF, label, CRect(kSide, top + 2, kSide + 58, top + 13), 0});
        AddItem(field);
    };
    const int left = kSide + 60, right = kSide + kSideWidth;
    row(kMargin, "Style",
        {WindowKind::COMBO, kStyle, "", CRect(left, kMargin, right, kMargin + 80),
         CBS_DROPDOWNLIST | WS_TABSTOP});
    row(24, "Width (0.1 mm)", {WindowKind::EDIT, kWidth, "", CRect(left, 24, left + 30, 37), WS_TABSTOP});
    row(41, "Pattern", {WindowKind::EDIT, kPattern, "", CRect(left, 41, right, 54), WS_TABSTOP});
    AddColorRows(58);
}

void PenTabDlg::ShowPattern(const DrawPen& pen) {
    std::string text;
    const int* pattern = const_cast<DrawPen&>(pen).Pattern();
    for (int i = 0; i < DrawPen::kPatternSize && pattern[i] > 0; ++i)
        text += (i > 0 ? " " : "") + std::to_string(pattern[i]);
    SetDlgItemText(kPattern, text.c_str());
    if (CWnd* field = GetDlgItem(kPattern)) field->EnableWindow(pen.Style() == DrawPen::USER_DEFINED);
}

void PenTabDlg::ShowTool(int i) {
    const DrawPen* pen = edited_(i);
    auto* styles = static_cast<CComboBox*>(GetDlgItem(kStyle));
    if (!pen || !styles) return;
    if (styles->GetCount() == 0) {
        for (const char* name : DrawPen::kStyleNames) styles->AddString(name);
    }
    styles->SetCurSel(IndexOf(pen->Style()));
    SetDlgItemInt(kWidth, static_cast<UINT>(pen->Width()));
    ShowPattern(*pen);
}

// Takes over what the fields say; `fault` tells what of it cannot be.
bool PenTabDlg::ReadFields(DrawPen& pen, std::string& fault) {
    BOOL valid = FALSE;
    const int width = static_cast<int>(GetDlgItemInt(kWidth, &valid));
    if (!valid) fault = "Please enter an integer for the width.";
    if (valid && width < 0) fault = "Can't have negative width";
    if (fault.empty()) pen.Width(width);
    if (pen.Style() != DrawPen::USER_DEFINED || !fault.empty()) return fault.empty();
    CString text;
    GetDlgItemText(kPattern, text);
    int pattern[DrawPen::kPatternSize] = {};
    int count = 0;
    const char* at = text;
    for (char* end = nullptr; *at; at = end) {
        const long length = std::strtol(at, &end, 10);
        const bool blank = end == at && std::string(at).find_first_not_of(" ,;") == std::string::npos;
        if (blank) break;
        if (end == at || length < 1 || length > 30000 || count == DrawPen::kPatternSize) {
            fault =
                "Please enter up to 20 lengths from 1 to 30000, in tenths of a millimetre, with blanks "
                "between.";
            return false;
        }
        pattern[count++] = static_cast<int>(length);
        while (*end == ' ' || *end == ',' || *end == ';') ++end;
    }
    pen.Pattern(pattern);
    return true;
}

bool PenTabDlg::TakeFields(int i) {
    DrawPen* pen = edited_(i);
    std::string fault;
    if (!pen || ReadFields(*pen, fault)) return true;
    MessageBox(fault.c_str());
    return false;
}

void PenTabDlg::OnStyle() {
    DrawPen* pen = edited_(Current());
    auto* styles = static_cast<CComboBox*>(GetDlgItem(kStyle));
    if (!pen || styles->GetCurSel() < 0) return;
    const int code = CodeOf(styles->GetCurSel());
    if (code == pen->Style()) return;
    // The user's own begins as what it was.
    int pattern[DrawPen::kPatternSize];
    std::copy_n(pen->Pattern(), DrawPen::kPatternSize, pattern);
    pen->Style(code);
    if (code == DrawPen::USER_DEFINED) pen->Pattern(pattern);
    ShowPattern(*pen);
    Invalidate();
}

// The sample follows while one types; what is not good yet waits.
void PenTabDlg::OnField() {
    std::string fault;
    DrawPen* pen = edited_(Current());
    if (pen && ReadFields(*pen, fault)) Invalidate();
}

void PenTabDlg::OnChangeScreen() {
    ChangeScreenColor(edited_(Current()));
}

void PenTabDlg::OnChangePrint() {
    ChangePrintColor(edited_(Current()));
}

// The line as it is drawn, in both variants.
void PenTabDlg::PaintSamples(CDC& dc) {
    const DrawPen* chosen = edited_(Current());
    if (!chosen) return;
    PaintSwatch(dc, 0, chosen->ScrColor());
    PaintSwatch(dc, 1, chosen->PrnColor());
    CRect area = SampleArea();
    dc.FillSolidRect(&area, RGB(255, 255, 255));
    dc.SaveDC();
    dc.IntersectClipRect(&area);
    for (int variant = 0; variant < 2; ++variant) {
        DrawPen sample(*chosen);
        sample.SetPrinter(variant);
        sample.OpenOn(&dc, 1000);
        const int y = area.top + area.Height() * (2 * variant + 1) / 4;
        sample.MoveTo(area.left + 6, y);
        sample.LineTo(area.right - 6, y);
        sample.Close();
    }
    dc.Flush();
    dc.RestoreDC(-1);
}

void PenTabDlg::Accept() {
    for (int i = 0; i < table_.Size(); ++i) {
        if (table_(i) && edited_(i)) *table_(i) = *edited_(i);
    }
}
