#include "FakeWindows.h"

#include <zel/ToolEditors.h>
#include <zel/zel.h>

#include <gtest/gtest.h>

namespace {

using zel::WindowKind;
using zel::test::FakePeer;
using zel::test::OnFakeScreen;

constexpr UINT kBlue = 1001, kRed = 1013, kGreen = 1014;

class ColorPicker : public OnFakeScreen {
  protected:
    // Runs the dialog with the steps, then presses a button.
    int Run(const std::function<void(FakePeer&)>& steps, UINT button = IDOK) {
        screen_->script = {[=, this] {
            steps(*screen_->Newest(WindowKind::DIALOG));
            screen_->Control(button).Use(BN_CLICKED);
        }};
        return dialog_.DoModal();
    }
    void Press(FakePeer& peer, CXColorDialog::Area area, int x, int y) {
        const CRect r = dialog_.AreaRect(area);
        peer.Mouse(WM_LBUTTONDOWN, MK_LBUTTON, CPoint(r.left + x, r.top + y));
    }
    int Width(CXColorDialog::Area area) { return dialog_.AreaRect(area).Width(); }
    int Height(CXColorDialog::Area area) { return dialog_.AreaRect(area).Height(); }

    COLORREF color_ = RGB(100, 150, 200);
    CXColorDialog dialog_{nullptr, "Colour", &color_};
};

TEST_F(ColorPicker, MovesChannelsWithTheMouse) {
    EXPECT_EQ(Run([&](FakePeer& peer) {
                  EXPECT_EQ(peer.text, "Colour");
                  EXPECT_EQ(screen_->Control(kGreen).text, "150");
                  Press(peer, CXColorDialog::RED, 0, 2);
                  EXPECT_EQ(dialog_.Colour(), RGB(0, 150, 200));
                  Press(peer, CXColorDialog::GREEN, Width(CXColorDialog::GREEN) - 1, 2);
                  EXPECT_EQ(screen_->Control(kGreen).text, "255");
                  const CRect plane = dialog_.AreaRect(CXColorDialog::RED_BLUE);
                  peer.Mouse(WM_MOUSEMOVE, 0, CPoint(plane.left + 3, plane.top + 3));
                  EXPECT_EQ(dialog_.Colour(), RGB(0, 255, 200)) << "without a button it only looks";
                  peer.Mouse(WM_MOUSEMOVE, MK_LBUTTON, CPoint(plane.left + plane.Width() / 2, plane.top + 3));
                  EXPECT_EQ(dialog_.Colour(), RGB(128, 255, 0));
                  Press(peer, CXColorDialog::FIXED, Width(CXColorDialog::FIXED) - 1, 1);
              }),
              IDOK);
    EXPECT_EQ(color_, RGB(196, 196, 196));
    EXPECT_EQ(Run([&](FakePeer& peer) { Press(peer, CXColorDialog::FIXED, 0, 1); }, IDCANCEL), IDCANCEL);
    EXPECT_EQ(color_, RGB(196, 196, 196));
}

TEST_F(ColorPicker, DarkensAndLightens) {
    Run([&](FakePeer& peer) {
        const int half = Height(CXColorDialog::LUMINANCE) / 2;
        const int usable = Width(CXColorDialog::LUMINANCE) - 2 * half;
        const int place = half + MulDiv(usable, 450, 768);
        Press(peer, CXColorDialog::LUMINANCE, place, 1);
        EXPECT_EQ(dialog_.Colour(), RGB(MulDiv(100, place - half, place), MulDiv(150, place - half, place),
                                        MulDiv(200, place - half, place)));
        Press(peer, CXColorDialog::LUMINANCE, Width(CXColorDialog::LUMINANCE) - half, 1);
        EXPECT_EQ(dialog_.Colour(), RGB(255, 255, 255));
        Press(peer, CXColorDialog::LUMINANCE, 0, 1);
        EXPECT_EQ(screen_->Control(kRed).text[0], '-') << "classic: the factor is negative there";
        EXPECT_LE(dialog_.Colour(), 0xFFFFFFU);
        dialog_.SetRules(ZelRules::EXACT);
        Press(peer, CXColorDialog::FIXED, Width(CXColorDialog::FIXED) - 1, 1);
        Press(peer, CXColorDialog::LUMINANCE, 0, 1);
        EXPECT_EQ(dialog_.Colour(), 0U);
    });
}

TEST_F(ColorPicker, TakesTypedNumbers) {
    Run([&](FakePeer& peer) {
        screen_->Control(kRed).Type("300");
        EXPECT_EQ(screen_->Control(kRed).text, "255");
        screen_->Control(kBlue).Type("-4");
        EXPECT_EQ(screen_->Control(kBlue).text, "0");
        screen_->Control(kGreen).Type("");
        peer.Invalidate(CRect(0, 0, 1000, 1000), true);
        EXPECT_NE(peer.Paint().find("#ff0000"), std::string::npos);
    });
    EXPECT_EQ(color_, RGB(255, 0, 0));
    CXColorDialog own(nullptr, "own", nullptr);
    EXPECT_EQ(own.Colour(), 0xFFFFFFU);
}

TEST_F(ColorPicker, PaintsSlidesInBands) {
    zel::RecordingDevice device;
    CDC dc(device);
    CRect row(0, 0, 150, 10);
    dialog_.PaintConstColors(row, &dc);
    EXPECT_TRUE(device.Text().ends_with("fill 140,0 150,10 #c4c4c4\n"));
    device.Clear();
    CRect slide(10, 0, 116, 10);
    dialog_.PaintSlide(slide, 255, 128, 0, &dc);
    const std::string text = device.Text();
    EXPECT_NE(text.find("brush solid #000000\nrectangle 10,0 19,11\n"), std::string::npos) << text;
    EXPECT_NE(text.find("brush solid #804000\nrectangle 63,0 67,11\n"), std::string::npos) << text;
    EXPECT_NE(text.find(",0 117,11\n"), std::string::npos) << "the last band ends at the right";
}

class ToolDialogs : public OnFakeScreen {
  protected:
    ToolDialogs() {
        zel::InstallToolDialogs();
        root_.RegisterColor("Sea", RGB(0, 0, 200), RGB(0, 0, 0));
        root_.RegisterColor("Sand", RGB(250, 220, 120), RGB(200, 200, 200));
        root_.RegisterPen("Coast", DrawPen::DASH, 5, RGB(1, 2, 3), 0, nullptr);
        root_.RegisterPen("Road", DrawPen::SOLID, 2, 0, 0, nullptr);
        root_.RegisterFont("Town", "Arial", 100, 0, 0, 0, 0, RGB(9, 9, 9), 0);
    }
    ~ToolDialogs() override { zel::TheToolEditors() = {}; }
    FakePeer& Control(UINT id) { return screen_->Control(id); }
    void Press(UINT id) { Control(id).Use(BN_CLICKED); }

    zel::RecordingDevice device_;
    Zel2Main root_;
};

TEST_F(ToolDialogs, EditsColours) {
    screen_->script = {[&] {
                           EXPECT_EQ(screen_->Newest(WindowKind::DIALOG)->text, "Color Table");
                           EXPECT_EQ(Control(1101).items, (std::vector<std::string>{"Sea", "Sand"}));
                           Control(1101).Choose(1, LBN_SELCHANGE);
                           FakePeer& dialog = *screen_->Newest(WindowKind::DIALOG);
                           EXPECT_NE(dialog.Paint().find("#fadc78"), std::string::npos);
                           Press(1103);
                       },
                       [&] {
                           Control(kRed).Type("17");
                           Press(IDOK);
                       },
                       [&] { Press(IDOK); }};
    EXPECT_EQ(root_.Colors()->Edit(), 1);
    EXPECT_EQ((*root_.Colors())(1)->PrnColor(), RGB(17, 200, 200));
    EXPECT_EQ((*root_.Colors())(1)->ScrColor(), RGB(250, 220, 120));
    screen_->script = {[&] { Press(1102); },
                       [&] {
                           Control(kRed).Type("3");
                           Press(IDOK);
                       },
                       [&] { Press(IDCANCEL); }};
    EXPECT_EQ(root_.Colors()->Edit(), 0);
    EXPECT_EQ((*root_.Colors())(0)->ScrColor(), RGB(0, 0, 200)) << "cancelled";
    DrawColorTable empty;
    screen_->script = {[&] {
        EXPECT_FALSE(Control(1102).enabled);
        Press(IDOK);
    }};
    EXPECT_EQ(empty.Edit(), 1);
}

TEST_F(ToolDialogs, EditsPens) {
    screen_->script = {[&] {
        EXPECT_EQ(Control(1110).selected, DrawPen::DASH);
        EXPECT_EQ(Control(1110).items.back(), "User Defined");
        EXPECT_FALSE(Control(1112).enabled);
        Control(1111).Type("-3");
        Press(IDOK);
        Control(1101).Choose(1, LBN_SELCHANGE);
        EXPECT_EQ(Control(1101).selected, 0) << "the field holds the user back";
        Control(1111).Type("12");
        Control(1110).Choose(6, CBN_SELCHANGE);
        EXPECT_TRUE(Control(1112).enabled);
        Control(1112).Type("40 x");
        Press(IDOK);
        Control(1112).Type("40, 10 5 10 ");
        FakePeer& dialog = *screen_->Newest(WindowKind::DIALOG);
        EXPECT_NE(dialog.Paint().find("pen solid"), std::string::npos);
        Control(1101).Choose(1, LBN_SELCHANGE);
        EXPECT_EQ(Control(1111).text, "2");
        Press(IDOK);
    }};
    CDC dc(device_);
    root_.Pens()->OpenOn(&dc, 1000);
    EXPECT_EQ(root_.Pens()->Edit(), 1);
    const DrawPen* pen = root_.Pens()->Pen(0);
    EXPECT_EQ(pen->Width(), 12);
    EXPECT_EQ(pen->Style(), DrawPen::USER_DEFINED);
    EXPECT_EQ(std::vector<int>(root_.Pens()->Pen(0)->Pattern(), root_.Pens()->Pen(0)->Pattern() + 5),
              (std::vector<int>{40, 10, 5, 10, 0}));
    EXPECT_EQ(pen->GetDC(), &dc) << "an open table is open again";
    root_.Pens()->Close();
    ASSERT_EQ(screen_->boxes.size(), 3U);
    EXPECT_EQ(screen_->boxes[0], "Can't have negative width");
    EXPECT_NE(screen_->boxes[2].find("20 lengths"), std::string::npos);
}

TEST_F(ToolDialogs, EditsFonts) {
    screen_->chooseFont = [](LOGFONT& font, COLORREF& color, int& size) {
        EXPECT_EQ(font.lfHeight, -13) << "ten points on the screen";
        EXPECT_EQ(size, 100);
        font.lfWeight = FW_BOLD;
        color = RGB(1, 1, 1);
        size = 145;
        return true;
    };
    screen_->script = {[&] {
        EXPECT_EQ(Control(1121).text, "Arial, 10 pt");
        Press(1102);
        EXPECT_EQ(Control(1121).text, "Arial, 14.5 pt, bold");
        FakePeer& dialog = *screen_->Newest(WindowKind::DIALOG);
        EXPECT_NE(dialog.Paint().find("weight 700"), std::string::npos);
        Press(IDOK);
    }};
    EXPECT_EQ(root_.Fonts()->Edit(), 1);
    const DrawFont* font = root_.Fonts()->Font(0);
    EXPECT_EQ(font->PtSize10(), 145);
    EXPECT_EQ(font->Bold(), 1);
    EXPECT_EQ(font->ScrColor(), RGB(1, 1, 1));
    screen_->script = {[&] {
        Press(1102);
        Press(IDCANCEL);
    }};
    screen_->chooseFont = [](LOGFONT&, COLORREF&, int& size) {
        size = 999;
        return true;
    };
    EXPECT_EQ(root_.Fonts()->Edit(), 0);
    EXPECT_EQ(root_.Fonts()->Font(0)->PtSize10(), 145);
}

}  // namespace
