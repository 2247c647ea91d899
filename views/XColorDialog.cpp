#include <zel/XColorDialog.h>

#include <algorithm>

IMPLEMENT_DYNAMIC(CXColorDialog, CDialog)

namespace {

constexpr UINT kBlueField = 1001, kRedField = 1013, kGreenField = 1014;
constexpr int kInset = 3;   // of a plane's content in its frame
constexpr int kBands = 32;  // of a slide
constexpr int kCells = 32;  // of a plane, each way
constexpr int kFull = 256;

struct Fixed {
    int red, green, blue;
};
constexpr Fixed kFixed[] = {{0, 0, 0},     {255, 0, 0},   {0, 255, 0},     {255, 255, 0}, {0, 0, 255},
                            {255, 0, 255}, {0, 255, 255}, {255, 255, 255}, {196, 0, 0},   {0, 196, 0},
                            {196, 196, 0}, {0, 0, 196},   {196, 0, 196},   {0, 196, 196}, {196, 196, 196}};
constexpr int kFixedCount = 15;

// Dialog units, in the order of the areas.
constexpr int kPlane = 62, kGap = 6, kSlideHeight = 10;
constexpr int kWidth = 3 * kPlane + 4 * kGap;
constexpr int kSlideTop = kPlane + 2 * kGap;
constexpr CRect SlideUnits(int row) {
    const int top = kSlideTop + row * (kSlideHeight + kGap);
    return {kGap, top, kWidth - kGap, top + kSlideHeight};
}
constexpr CRect PlaneUnits(int column) {
    return {CPoint(kGap + column * (kPlane + kGap), kGap), CSize(kPlane, kPlane)};
}
constexpr int kFieldTop = kSlideTop + 5 * (kSlideHeight + kGap) + kGap;

int Clipped(int channel) {
    return std::min(channel, 255);
}
COLORREF Mix(int red, int green, int blue) {
    return RGB(std::clamp(red, 0, 255), std::clamp(green, 0, 255), std::clamp(blue, 0, 255));
}

}  // namespace

BEGIN_MESSAGE_MAP(CXColorDialog, CDialog)
ON_WM_PAINT()
ON_WM_LBUTTONDOWN()
ON_WM_MOUSEMOVE()
ON_EN_CHANGE(kRedField, OnChangeEditR)
ON_EN_CHANGE(kGreenField, OnChangeEditG)
ON_EN_CHANGE(kBlueField, OnChangeEditB)
END_MESSAGE_MAP()

CXColorDialog::CXColorDialog(CWnd* parent, const char* caption, COLORREF* colour)
    : CDialog(kTemplate, parent), caption_(caption), result_(colour ? colour : &default_) {
    now_ = {GetRValue(*result_), GetGValue(*result_), GetBValue(*result_)};
}

COLORREF CXColorDialog::Colour() const {
    const auto bits = static_cast<DWORD>(now_.blue) << 16 | static_cast<DWORD>(now_.green) << 8 |
                      static_cast<DWORD>(now_.red);
    return bits & 0xFFFFFF;
}

const zel::DialogTemplate* CXColorDialog::Template() const {
    using zel::WindowKind;
    const auto field = [](int column, UINT id, const char* label) {
        const int left = kGap + column * 45;
        return std::array<zel::DialogItem, 2>{
            zel::DialogItem{WindowKind::STATIC, 0xFFFF, label,
                            CRect(left, kFieldTop + 2, left + 10, kFieldTop + 12), 0},
            zel::DialogItem{WindowKind::EDIT, id, "", CRect(left + 11, kFieldTop, left + 39, kFieldTop + 13),
                            ES_NUMBER | WS_TABSTOP}};
    };
    template_ = {caption_.GetString(), CSize(kWidth, kFieldTop + 40), {}};
    for (const auto& [column, id, label] :
         {std::tuple(0, kRedField, "R"), std::tuple(1, kGreenField, "G"), std::tuple(2, kBlueField, "B")}) {
        const auto items = field(column, id, label);
        template_.items.insert(template_.items.end(), items.begin(), items.end());
    }
    const int top = kFieldTop + 20;
    template_.items.push_back({WindowKind::BUTTON, IDOK, "OK",
                               CRect(kWidth - 112, top, kWidth - 62, top + 15),
                               BS_DEFPUSHBUTTON | WS_TABSTOP});
    template_.items.push_back(
        {WindowKind::BUTTON, IDCANCEL, "Cancel", CRect(kWidth - 56, top, kWidth - 6, top + 15), WS_TABSTOP});
    return &template_;
}

BOOL CXColorDialog::OnInitDialog() {
    int column = 0, row = 0;
    for (const Area plane : {RED_GREEN, RED_BLUE, BLUE_GREEN})
        areas_[plane] = FromDialogUnits(PlaneUnits(column++));
    for (const Area slide : {RED, GREEN, BLUE, LUMINANCE, FIXED})
        areas_[slide] = FromDialogUnits(SlideUnits(row++));
    return CDialog::OnInitDialog();
}

void CXColorDialog::DoDataExchange(CDataExchange* dx) {
    CDialog::DoDataExchange(dx);
    DDX_Text(dx, kBlueField, now_.blue);
    DDV_MinMaxInt(dx, now_.blue, 0, 255);
    DDX_Text(dx, kGreenField, now_.green);
    DDV_MinMaxInt(dx, now_.green, 0, 255);
    DDX_Text(dx, kRedField, now_.red);
    DDV_MinMaxInt(dx, now_.red, 0, 255);
}

void CXColorDialog::OnOK() {
    *result_ = Colour();
    EndDialog(IDOK);
}

// The mouse

void CXColorDialog::OnLButtonDown(UINT, CPoint pt) {
    MouseTo(pt);
}
void CXColorDialog::OnMouseMove(UINT flags, CPoint pt) {
    if (flags & MK_LBUTTON) MouseTo(pt);
}

void CXColorDialog::MoveInPlane(int& across, int& down, const CRect& area, const CPoint& at) const {
    across = MulDiv(std::max(at.x - kInset, 0), kFull, area.Width() - 2 * kInset);
    down = MulDiv(std::max(at.y - kInset, 0), kFull, area.Height() - 2 * kInset);
}

int CXColorDialog::ChannelAt(const CRect& area, int x) const {
    const int height = area.Height();
    return MulDiv(std::max(x - height / 2, 0), kFull, area.Width() - height);
}

// The colour sits where its sum says; right of it all channels go towards white, left of it towards black.
void CXColorDialog::MoveLuminance(const CRect& area, int x) {
    const int half = area.Height() / 2;
    const int usable = area.Width() - area.Height();
    const int place = half + MulDiv(usable, now_.red + now_.green + now_.blue, 3 * kFull);
    for (int Channels::*channel : {&Channels::red, &Channels::green, &Channels::blue}) {
        int& c = now_.*channel;
        if (x > place) {
            c += MulDiv(kFull - c, x - place, area.Width() - half - place);
        } else {
            c = MulDiv(c, x - half, place);
        }
        if (rules_ == ZelRules::EXACT) c = std::max(c, 0);
    }
}

void CXColorDialog::MouseTo(const CPoint& pt) {
    const auto hit =
        std::find_if(areas_.begin(), areas_.end(), [&](const CRect& r) { return r.PtInRect(pt); });
    if (hit == areas_.end()) return;
    const CRect& area = *hit;
    const CPoint at(pt.x - area.left, pt.y - area.top);
    switch (static_cast<Area>(hit - areas_.begin())) {
        case RED_GREEN:
            MoveInPlane(now_.red, now_.green, area, at);
            break;
        case RED_BLUE:
            MoveInPlane(now_.red, now_.blue, area, at);
            break;
        case BLUE_GREEN:
            MoveInPlane(now_.blue, now_.green, area, at);
            break;
        case RED:
            now_.red = ChannelAt(area, at.x);
            break;
        case GREEN:
            now_.green = ChannelAt(area, at.x);
            break;
        case BLUE:
            now_.blue = ChannelAt(area, at.x);
            break;
        case LUMINANCE:
            MoveLuminance(area, at.x);
            break;
        default: {
            const Fixed& chosen = kFixed[std::min(at.x * kFixedCount / area.Width(), kFixedCount - 1)];
            now_ = {chosen.red, chosen.green, chosen.blue};
            break;
        }
    }
    now_ = {Clipped(now_.red), Clipped(now_.green), Clipped(now_.blue)};
    UpdateData(FALSE);
    Changed();
}

void CXColorDialog::Changed() {
    CClientDC dc(this);
    UpdateAllPictures(&dc);
}

// The fields

void CXColorDialog::ReadField(UINT id, int& channel) {
    const int typed = static_cast<int>(GetDlgItemInt(static_cast<int>(id)));
    channel = std::clamp(typed, 0, 255);
    if (channel != typed) SetDlgItemInt(static_cast<int>(id), static_cast<UINT>(channel));
    Changed();
}

void CXColorDialog::OnChangeEditR() {
    ReadField(kRedField, now_.red);
}
void CXColorDialog::OnChangeEditG() {
    ReadField(kGreenField, now_.green);
}
void CXColorDialog::OnChangeEditB() {
    ReadField(kBlueField, now_.blue);
}

// Painting

void CXColorDialog::OnPaint() {
    CPaintDC dc(this);
    UpdateAllPictures(&dc);
}

void CXColorDialog::UpdateAllPictures(CDC* dc) {
    PaintPlane(areas_[RED_GREEN], now_, &Channels::red, &Channels::green, dc);
    PaintPlane(areas_[RED_BLUE], now_, &Channels::red, &Channels::blue, dc);
    PaintPlane(areas_[BLUE_GREEN], now_, &Channels::blue, &Channels::green, dc);
    PaintSlide(areas_[RED], 255, 0, 0, dc);
    ScrollBttn(areas_[RED], now_.red, dc);
    PaintSlide(areas_[GREEN], 0, 255, 0, dc);
    ScrollBttn(areas_[GREEN], now_.green, dc);
    PaintSlide(areas_[BLUE], 0, 0, 255, dc);
    ScrollBttn(areas_[BLUE], now_.blue, dc);
    PaintLumin(areas_[LUMINANCE], dc);
    ScrollBttn(areas_[LUMINANCE], (now_.red + now_.green + now_.blue) / 3, dc);
    PaintConstColors(areas_[FIXED], dc);
    // The colour itself, below the fields.
    const CRect sample = FromDialogUnits(CRect(kGap, kFieldTop + 20, kWidth - 118, kFieldTop + 35));
    dc->FillSolidRect(&sample, Mix(now_.red, now_.green, now_.blue));
    PaintFrame(sample, dc);
}

void CXColorDialog::PaintConstColors(CRect& r, CDC* dc) {
    int left = r.left;
    for (int k = 0; k < kFixedCount; ++k) {
        const CRect cell(left, r.top, r.left + MulDiv(k + 1, r.Width(), kFixedCount), r.bottom);
        dc->FillSolidRect(&cell, Mix(kFixed[k].red, kFixed[k].green, kFixed[k].blue));
        left = cell.right;
    }
}

// Bands from one colour towards another; what `end` exceeds 255 by is cut. The first begins at r.left when
// `from` is 0.
void CXColorDialog::PaintBands(const CRect& r, int from, int width, Channels begin, Channels end, CDC* dc) {
    const int half = r.Height() / 2;
    const int previousMode = dc->SetROP2(R2_COPYPEN);
    auto* previousPen = static_cast<CPen*>(dc->SelectStockObject(NULL_PEN));
    int left = from == 0 ? r.left : r.left + half + from;
    const bool last = from + width >= r.Width() - r.Height();
    for (int j = 0; j < kBands; ++j) {
        const auto share = [j](int a, int b) { return Clipped(a + MulDiv(b - a, j, kBands)); };
        CBrush brush(
            Mix(share(begin.red, end.red), share(begin.green, end.green), share(begin.blue, end.blue)));
        CBrush* previousBrush = dc->SelectObject(&brush);
        const int right =
            last && j == kBands - 1 ? r.right : r.left + half + from + MulDiv(j + 1, width, kBands);
        // Without a pen, a rectangle ends a pixel early.
        if (right > left) dc->Rectangle(left, r.top, right + 1, r.bottom + 1);
        dc->SelectObject(previousBrush);
        left = std::max(left, right);
    }
    dc->SelectObject(previousPen);
    dc->SetROP2(previousMode);
}

void CXColorDialog::PaintSlide(CRect& r, int red, int green, int blue, CDC* dc) {
    PaintBands(r, 0, r.Width() - r.Height(), {0, 0, 0}, {red, green, blue}, dc);
}

void CXColorDialog::PaintLumin(CRect& r, CDC* dc) {
    const int usable = r.Width() - r.Height();
    const int place = MulDiv(usable, now_.red + now_.green + now_.blue, 3 * kFull);
    PaintBands(r, 0, place, {0, 0, 0}, now_, dc);
    PaintBands(r, place, usable - place, now_, {kFull, kFull, kFull}, dc);
}

void CXColorDialog::PaintPlane(const CRect& r, Channels fixed, int Channels::*across, int Channels::*down,
                               CDC* dc) {
    CRect inner = r;
    inner.DeflateRect(kInset, kInset);
    const CPoint at(inner.left + MulDiv(fixed.*across, inner.Width(), kFull),
                    inner.top + MulDiv(fixed.*down, inner.Height(), kFull));
    for (int y = 0; y < kCells; ++y) {
        for (int x = 0; x < kCells; ++x) {
            fixed.*across = x * 255 / (kCells - 1);
            fixed.*down = y * 255 / (kCells - 1);
            const CRect cell(inner.left + MulDiv(x, inner.Width(), kCells),
                             inner.top + MulDiv(y, inner.Height(), kCells),
                             inner.left + MulDiv(x + 1, inner.Width(), kCells),
                             inner.top + MulDiv(y + 1, inner.Height(), kCells));
            dc->FillSolidRect(&cell, Mix(fixed.red, fixed.green, fixed.blue));
        }
    }
    PaintFrame(r, dc);
    FrameBttn(at, dc);
}

void CXColorDialog::PaintFrame(const CRect& r, CDC* dc) {
    CBrush grey(RGB(128, 128, 128));
    dc->FrameRect(&r, &grey);
}

// Where the colour lies in a plane: seen on light and dark.
void CXColorDialog::FrameBttn(const CPoint& at, CDC* dc) {
    CBrush white(RGB(255, 255, 255)), black(RGB(0, 0, 0));
    const CRect inner(at.x - 2, at.y - 2, at.x + 3, at.y + 3);
    const CRect outer(at.x - 3, at.y - 3, at.x + 4, at.y + 4);
    dc->FrameRect(&inner, &white);
    dc->FrameRect(&outer, &black);
}

void CXColorDialog::ScrollBttn(const CRect& r, int value, CDC* dc) {
    const int x = r.left + r.Height() / 2 + MulDiv(r.Width() - r.Height(), std::clamp(value, 0, 255), kFull);
    CBrush white(RGB(255, 255, 255)), black(RGB(0, 0, 0));
    const CRect inner(x - 2, r.top + 1, x + 3, r.bottom - 1);
    const CRect outer(x - 3, r.top, x + 4, r.bottom);
    dc->FrameRect(&inner, &white);
    dc->FrameRect(&outer, &black);
}
