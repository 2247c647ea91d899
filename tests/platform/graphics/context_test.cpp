#include "Support.h"

#include <zel/platform/DC.h>
#include <zel/platform/MetricsDevice.h>
#include <zel/platform/Platform.h>
#include <zel/platform/RecordingDevice.h>

#include <cmath>
#include <gtest/gtest.h>
#include <thread>

namespace {

class Context : public testing::Test {
  protected:
    std::string Recorded() {
        dc_.Flush();
        std::string text = device_.Text();
        device_.Clear();
        return text;
    }
    zel::RecordingDevice device_;
    CDC dc_{device_};
};

TEST_F(Context, GathersConsecutiveLines) {
    dc_.MoveTo(0, 0);
    dc_.LineTo(10, 0);
    dc_.LineTo(10, 10);
    dc_.MoveTo(10, 10);  // where the line ends anyway
    const CPoint more[] = {{20, 10}, {20, 20}};
    dc_.PolylineTo(more, 2);
    dc_.MoveTo(5, 5);
    dc_.LineTo(6, 5);
    EXPECT_EQ(Recorded(),
              "pen solid 0 #000000\n"
              "polyline 0,0 10,0 10,10 20,10 20,20\n"
              "polyline 5,5 6,5\n");
    EXPECT_EQ(dc_.GetCurrentPosition(), CPoint(6, 5));
}

TEST_F(Context, KeepsALineWholeOverAChangeOfPenAndBack) {
    CPen red(PS_SOLID, 3, RGB(255, 0, 0));
    CPen* black = dc_.SelectObject(&red);
    dc_.MoveTo(0, 0);
    dc_.LineTo(1, 0);
    dc_.SelectObject(black);
    dc_.SelectObject(&red);
    dc_.LineTo(2, 0);
    dc_.SelectObject(black);
    dc_.LineTo(3, 0);
    EXPECT_EQ(Recorded(),
              "pen solid 3 #ff0000\npolyline 0,0 1,0 2,0\n"
              "pen solid 0 #000000\npolyline 2,0 3,0\n");
    dc_.LineTo(4, 0);
    dc_.SetROP2(R2_NOT);
    dc_.LineTo(5, 0);
    EXPECT_EQ(Recorded(), "pen solid 0 #000000\npolyline 3,0 4,0\nmode 6\npolyline 4,0 5,0\n");
}

// Every primitive with every pair of extreme coordinates: sums end at the ends of the range, and nothing is
// undefined.
TEST(Extremes, SaturateEverywhere) {
    zel::MetricsDevice measures;
    constexpr LONG kFar[] = {INT32_MIN, INT32_MIN + 1, -1, 0, 1, INT32_MAX - 1, INT32_MAX};
    for (const LONG a : kFar) {
        for (const LONG b : kFar) {
            CDC dc(measures);
            dc.SetMapMode(MM_ANISOTROPIC);
            dc.SetWindowOrg(b, a);
            dc.SetWindowExt(a, b);
            dc.SetViewportExt(b, -7);
            LOGPEN wide{PS_SOLID, {a, 0}, 0};
            CPen pen(PS_SOLID, b, 0);
            pen.DeleteObject();
            ASSERT_TRUE(pen.CreatePenIndirect(&wide));
            CFont font;
            font.CreateFont(a, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
            CPen* const thin = dc.SelectObject(&pen);
            CFont* const plain = dc.SelectObject(&font);
            const CRect box(a, b, b, a), tall(a, a, b, b);
            const POINT ring[] = {{a, b}, {b, a}, {a, a}};
            dc.Polygon(ring, 3);
            for (const CRect& r : {box, tall, CRect(a, INT32_MIN, INT32_MAX, b)}) {
                CRect measured = r;
                dc.Rectangle(r.left, r.top, r.right, r.bottom);
                dc.Ellipse(&r);
                dc.RoundRect(&r, CPoint(b, a));
                dc.Pie(&r, CPoint(a, b), CPoint(b, a));
                dc.FrameRect(&r, nullptr);
                dc.SetPixel(r.left, r.top, 0);
                dc.DrawText("wide, wide text\tand &more", -1, &measured,
                            DT_WORDBREAK | DT_EXPANDTABS | DT_RIGHT);
                dc.DrawText("text", -1, &measured, DT_SINGLELINE | DT_BOTTOM | DT_CALCRECT);
            }
            dc.PatBlt(a, b, b, a, BLACKNESS);
            dc.SetTextAlign(TA_UPDATECP);
            dc.TextOut(0, 0, "text", 4);
            TEXTMETRIC metrics;
            dc.GetTextMetrics(&metrics);
            EXPECT_EQ(metrics.tmHeight, zel::Saturate(std::int64_t{metrics.tmAscent} + metrics.tmDescent));
            EXPECT_GE(metrics.tmHeight, 0);
            dc.SelectObject(thin);
            dc.SelectObject(plain);
        }
    }
}

TEST_F(Context, SplitsVeryLongLinesWithoutAGap) {
    std::vector<CPoint> points;
    for (int i = 1; i <= 40'000; ++i) points.emplace_back(i, i % 2);
    dc_.PolylineTo(points.data(), static_cast<int>(points.size()));
    const std::string text = Recorded();
    std::size_t pieces = 0, commas = 0;
    for (std::size_t at = 0; (at = text.find("polyline", at)) != std::string::npos; ++at) ++pieces;
    for (const char c : text) commas += c == ',' ? 1U : 0U;
    EXPECT_EQ(pieces, 3U);
    EXPECT_EQ(commas, points.size() + pieces) << "each piece begins where the one before ends";
}

TEST_F(Context, GoesOnDrawingWithADeletedObject) {
    CFont font;
    font.CreateFont(-16, 0, 900, 0, 700, 0, 0, 0, 0, 0, 0, 0, 0, "Arial");
    CFont* previous = dc_.SelectObject(&font);
    EXPECT_TRUE(font.DeleteObject());
    EXPECT_FALSE(font.DeleteObject()) << "a dead handle fails harmlessly";
    dc_.TextOut(3, 4, "a", 1);
    EXPECT_EQ(Recorded(), "font \"Arial\" -16 weight 700 angle 900\ntextcolor #000000\ntext 3,4 \"a\"\n");
    CFont* dead = dc_.SelectObject(previous);
    ASSERT_NE(dead, nullptr);
    EXPECT_EQ(dc_.SelectObject(dead), nullptr);
    EXPECT_TRUE(DeleteObject(GetStockObject(BLACK_PEN)));
    EXPECT_NE(dc_.SelectStockObject(BLACK_PEN), nullptr) << "stock objects stay";
}

TEST_F(Context, SavesAndRestoresByLevel) {
    EXPECT_EQ(dc_.SaveDC(), 1);
    dc_.SetTextColor(RGB(1, 2, 3));
    dc_.IntersectClipRect(10, 10, 50, 50);
    EXPECT_EQ(dc_.SaveDC(), 2);
    dc_.SetMapMode(MM_TWIPS);
    EXPECT_FALSE(dc_.RestoreDC(3));
    EXPECT_FALSE(dc_.RestoreDC(0));
    EXPECT_TRUE(dc_.RestoreDC(1));
    EXPECT_EQ(dc_.GetTextColor(), RGB(0, 0, 0));
    EXPECT_EQ(dc_.GetMapMode(), MM_TEXT);
    CRect box;
    EXPECT_EQ(dc_.GetClipBox(&box), SIMPLEREGION);
    EXPECT_EQ(box, CRect(0, 0, 1024, 768));
    EXPECT_FALSE(dc_.RestoreDC(-1));
}

TEST_F(Context, SetsExtentsOnlyInFreeModes) {
    dc_.SetWindowExt(50, 50);
    EXPECT_EQ(dc_.GetWindowExt(), CSize(1, 1));
    dc_.SetMapMode(MM_LOMETRIC);
    CPoint up(100, 100);
    dc_.LPtoDP(&up);
    EXPECT_EQ(up, CPoint(38, -38)) << "ten millimetres, upwards";
    dc_.SetMapMode(MM_ISOTROPIC);
    dc_.SetWindowExt(200, 100);
    dc_.SetViewportExt(100, 100);
    EXPECT_EQ(dc_.GetViewportExt(), CSize(100, 50));
    EXPECT_EQ(dc_.SetWindowExt(0, 5), CSize(0, 0));
    EXPECT_EQ(dc_.GetWindowExt(), CSize(200, 100));
}

TEST_F(Context, FillsAndFrames) {
    const CRect box(10, 10, 20, 15);
    CBrush brush(RGB(0, 128, 0));
    dc_.FrameRect(&box, &brush);
    dc_.PatBlt(1, 2, 3, 4, WHITENESS);
    ::FillRect(dc_.m_hDC, &box, nullptr);
    EXPECT_EQ(Recorded(),
              "fill 10,10 20,11 #008000\nfill 10,14 20,15 #008000\nfill 10,10 11,15 #008000\nfill 19,10 "
              "20,15 #008000\n"
              "fill 1,2 4,6 whiteness\n"
              "fill 10,10 20,15 #ffffff\n");
    const CPoint one[] = {{1, 1}};
    EXPECT_FALSE(dc_.Polygon(one, 1));
    EXPECT_EQ(Recorded(), "");
}

// A device with nothing but the primitives: all other shapes arrive as polygons, lines and fills.
class Bare : public zel::RecordingDevice {
  public:
    using State = zel::GraphicsState;
    void Rectangle(const State& s, const CRect& r) override { BasicDevice::Rectangle(s, r); }
    void RoundRect(const State& s, const CRect& r, const CSize& c) override {
        BasicDevice::RoundRect(s, r, c);
    }
    void Ellipse(const State& s, const CRect& r) override { BasicDevice::Ellipse(s, r); }
    void Arc(const State& s, const CRect& r, const CPoint& a, const CPoint& b, zel::ArcKind k) override {
        BasicDevice::Arc(s, r, a, b, k);
    }
    void SetPixel(const State& s, const CPoint& p, COLORREF c) override { BasicDevice::SetPixel(s, p, c); }
    void Polygons(const State& s, std::span<const CPoint> p, std::span<const int>) override { Keep(s, p); }
    void Polyline(const State& s, const CPoint* p, std::size_t n) override { Keep(s, {p, n}); }
    void FillRect(const State& s, const CRect& r, const LOGBRUSH&, DWORD) override {
        filled = s.map.ToDevice(r);
    }
    std::vector<CPoint> points;  // device units
    CRect filled;                // device units
    LONG penWidth = 0;           // device units

  private:
    void Keep(const State& s, std::span<const CPoint> p) {
        points.clear();
        for (const CPoint& point : p) points.push_back(s.map.ToDevice(point));
        penWidth = zel::Truncate(s.pen.lopnWidth.x * s.map.ScaleX() + 0.5);
    }
};

TEST(Devices, ReduceShapesToLines) {
    Bare device;
    CDC dc(device);
    dc.Ellipse(0, 0, 201, 201);
    for (const CPoint& p : device.points) EXPECT_NEAR(std::hypot(p.x - 100, p.y - 100), 100, 1);
    // Against the clock from three to twelve: the upper right quarter, whichever way the y axis points.
    const CRect box(0, 0, 201, 201);
    dc.Arc(&box, CPoint(300, 100), CPoint(100, -50));
    EXPECT_EQ(device.points.front(), CPoint(200, 100));
    EXPECT_EQ(device.points.back(), CPoint(100, 0));
    for (const CPoint& p : device.points) EXPECT_TRUE(p.x >= 100 && p.y <= 100);
}

// One logical unit may be many device units: curves are as smooth as the device, not as the logical units.
TEST(Devices, ReduceShapesInDeviceUnits) {
    Bare device;
    CDC dc(device);
    dc.SetMapMode(MM_ANISOTROPIC);
    dc.SetWindowExt(1, 1);
    dc.SetViewportExt(100, -100);
    CPen wide(PS_SOLID, 2, RGB(0, 0, 0));
    CPen* previous = dc.SelectObject(&wide);
    dc.Ellipse(0, 0, 4, -4);
    for (const CPoint& p : device.points) EXPECT_NEAR(std::hypot(p.x - 199.5, p.y - 199.5), 199.5, 1);
    EXPECT_EQ(device.penWidth, 200);
    dc.SetPixel(3, -2, RGB(1, 2, 3));
    EXPECT_EQ(device.filled, CRect(300, 200, 301, 201));
    dc.SelectObject(previous);
}

TEST(Devices, DrawNothingForABoxWithoutAnInside) {
    Bare device;
    CDC dc(device);
    for (const CRect& box : {CRect(5, 5, 5, 9), CRect(5, 5, 9, 5), CRect(5, 5, 6, 9), CRect(9, 6, 5, 5)}) {
        dc.Rectangle(&box);
        EXPECT_TRUE(device.points.empty());
    }
    for (const CRect& box : {CRect(5, 5, 5, 9), CRect(5, 5, 6, 6)}) {
        dc.Ellipse(box);
        dc.RoundRect(box, CPoint(2, 2));
        EXPECT_TRUE(device.points.empty());
    }
    dc.Rectangle(9, 9, 7, 7);
    EXPECT_EQ(device.points.size(), 4U) << "the smallest outline";
}

TEST(Objects, LeaveTheirHandleForAnother) {
    const HPEN first = CreatePen(PS_SOLID, 1, 0);
    const HPEN second = CreatePen(PS_SOLID, 2, 0);
    {
        CPen pen;
        pen.Attach(first);
        pen.Attach(second);
    }
    CPen* wrapper = CPen::FromHandle(first);
    EXPECT_EQ(wrapper->GetSafeHandle(), reinterpret_cast<HGDIOBJ>(first)) << "the object that had it is gone";
    EXPECT_TRUE(wrapper->DeleteObject());
    EXPECT_FALSE(DeleteObject(second));
    CFont unnamed;
    EXPECT_TRUE(unnamed.CreateFont(-16, 0, 0, 0, 400, 0, 0, 0, 0, 0, 0, 0, 0, nullptr));
}

TEST_F(Context, WritesItsModeAgainAfterClear) {
    dc_.SetROP2(R2_NOTXORPEN);
    dc_.Rectangle(0, 0, 4, 4);
    EXPECT_NE(Recorded().find("mode 10\n"), std::string::npos);
    dc_.Rectangle(0, 0, 4, 4);
    EXPECT_NE(Recorded().find("mode 10\n"), std::string::npos);
}

TEST(Platform, SaysWhichBackEndIsMissing) {
    zel::FileDeviceOptions options;
    options.path = "x.pdf";
    options.format = "pdf";
    const std::string message =
        zel::test::MessageOf<CNotSupportedException>([&] { zel::Platform::Get().CreateFileDevice(options); });
    EXPECT_NE(message.find("x.pdf"), std::string::npos);
    EXPECT_NE(message.find("zel::qt"), std::string::npos);
}

TEST(Threads, MayDrawEachForThemselves) {
    const auto draw = [] {
        for (int i = 0; i < 2000; ++i) {
            zel::RecordingDevice device;
            CDC dc(device);
            CPen pen(PS_SOLID, i % 5, static_cast<COLORREF>(i));
            CPen* previous = dc.SelectObject(&pen);
            dc.LineTo(i, i);
            dc.SelectObject(previous);
        }
    };
    std::thread other(draw);
    draw();
    other.join();
}

}  // namespace
