// From the units of a drawing to the pixels of a device.
#pragma once

#include <zel/platform/Archive.h>
#include <zel/platform/Geometry.h>
#include <zel/platform/Object.h>

// Converts between three integer spaces: world (the units that objects keep their positions in, thousandths
// of an inch by convention), logical (a rectangle of the output surface, scaled by the zoom) and device
// (logical plus the device origin). All arithmetic is MulDiv, in a fixed order, so that a position always
// lands on the same pixel.
//
// No rectangle is normalised: a second corner smaller than the first turns the axis round. A range of width
// 0, or a zoom of 0, makes the division concerned answer -1 (MulDiv): callers keep the ranges non-empty.
class Mapping : public CObject {
    DECLARE_SERIAL(Mapping)
  public:
    // All three rectangles (0, 0)-(2000, 2000), zoom 1/1.
    Mapping() = default;
    Mapping(const Mapping& other);
    Mapping& operator=(const Mapping& other);

    void SetWorld(const CPoint& org, const CSize& ext);
    void SetWorld(const CPoint& p1, const CPoint& p2);
    void SetLogical(const CPoint& org, const CSize& ext);
    void SetLogical(const CPoint& p1, const CPoint& p2);
    void SetDevice(const CPoint& p1, const CPoint& p2);
    // Moves the device origin, the point where logical (0, 0) lands: this is how a view scrolls.
    void SetLogicalOrg(const CPoint& p);

    void GetWorld(CPoint& org, CSize& ext) const;
    void GetDevice(CPoint& org, CSize& ext) const;
    void GetLogical(CPoint& org, CSize& ext) const;

    // Multiplies the zoom by |a| / |b|; a or b of 0 resets it to 1/1. Numerator and denominator are halved
    // until both are at most 1024, and the zoom is capped at 32/1; it has no floor (halving can bring it to
    // 0).
    void SetZoom(int a, int b);
    // Sets the zoom itself to |a| / |b|, with the same halving and cap.
    void SetAbsoluteZoom(int a, int b);
    int ZoomNumerator() const { return zoom_.numerator; }
    int ZoomDenominator() const { return zoom_.denominator; }
    // The zoom in thousandths.
    int Scale() const;

    CPoint ToLogical(const CPoint& world) const;
    CPoint ToDevice(const CPoint& world) const;
    CPoint FromLogical(const CPoint& logical) const;
    CPoint FromDevice(const CPoint& device) const;

    // Extents: origins play no part, and the order of zooming and scaling is the opposite of that of points,
    // so the result can differ by one unit from the difference of two converted points.
    CSize ToLogical(const CSize& world) const;
    CSize ToDevice(const CSize& world) const;
    CSize FromLogical(const CSize& logical) const;
    CSize FromDevice(const CSize& device) const;

    // Corner by corner; the result is not normalised.
    CRect ToLogical(const CRect& world) const;
    CRect ToDevice(const CRect& world) const;
    CRect FromLogical(const CRect& logical) const;
    CRect FromDevice(const CRect& device) const;

    // The width of the logical rectangle over that of the world rectangle, applied to `length`, for lengths
    // that are already zoomed (tick marks, symbols).
    int ScaleX(int length) const;
    int ScaleY(int length) const;
    // `length` times the zoom.
    int Zoomed(int length) const;

    // Sixteen 32-bit integers in the order of the fields below; the same in both dialects.
    void Serialize(CArchive& ar) override;

  private:
    struct Rectangle {
        int x1 = 0;
        int y1 = 0;
        int x2 = 2000;
        int y2 = 2000;
        int Width() const { return zel::Subtract(x2, x1); }
        int Height() const { return zel::Subtract(y2, y1); }
    };
    struct Zoom {
        int numerator = 1;
        int denominator = 1;
    };
    void StoreZoom(long long n, long long d);

    Rectangle world_;
    Rectangle device_;
    Rectangle logical_;
    int spare_[2] = {0, 0};  // kept in archives; nothing reads them
    Zoom zoom_;
};
