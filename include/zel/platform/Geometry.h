// Points, sizes and rectangles of 32-bit integers, with the framework's arithmetic.
//
// Rectangles are half-open: the right and bottom edges lie outside. No operation orders the corners unless it
// says so. Sums wrap nowhere: they saturate at the ends of the 32-bit range.
#pragma once

#include <zel/platform/WinTypes.h>

#include <algorithm>
#include <cstdint>

struct POINT {
    LONG x;
    LONG y;
};
struct SIZE {
    LONG cx;
    LONG cy;
};
struct RECT {
    LONG left;
    LONG top;
    LONG right;
    LONG bottom;
};

namespace zel {
constexpr LONG Saturate(std::int64_t value) {
    return static_cast<LONG>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}
constexpr LONG Add(LONG a, LONG b) {
    return Saturate(static_cast<std::int64_t>(a) + b);
}
constexpr LONG Subtract(LONG a, LONG b) {
    return Saturate(static_cast<std::int64_t>(a) - b);
}
constexpr LONG Magnitude(LONG value) {
    return value < 0 ? Subtract(0, value) : value;
}

// The integer nearest to zero-truncated `value`; values beyond the 32-bit range give its ends, NaN gives 0.
constexpr LONG Truncate(double value) {
    if (value != value) return 0;
    if (value >= 2147483647.0) return INT32_MAX;
    if (value <= -2147483648.0) return INT32_MIN;
    return static_cast<LONG>(value);
}
}  // namespace zel

class CSize : public SIZE {
  public:
    constexpr CSize() : SIZE{0, 0} {}
    constexpr CSize(int width, int height) : SIZE{width, height} {}
    constexpr CSize(const SIZE& size) : SIZE(size) {}

    friend constexpr bool operator==(const CSize& a, const CSize& b) { return a.cx == b.cx && a.cy == b.cy; }
    constexpr CSize operator-() const { return {zel::Subtract(0, cx), zel::Subtract(0, cy)}; }
    friend constexpr CSize operator+(const CSize& a, const CSize& b) {
        return {zel::Add(a.cx, b.cx), zel::Add(a.cy, b.cy)};
    }
    friend constexpr CSize operator-(const CSize& a, const CSize& b) {
        return {zel::Subtract(a.cx, b.cx), zel::Subtract(a.cy, b.cy)};
    }
};

class CPoint : public POINT {
  public:
    constexpr CPoint() : POINT{0, 0} {}
    constexpr CPoint(int px, int py) : POINT{px, py} {}
    constexpr CPoint(const POINT& point) : POINT(point) {}

    void Offset(int dx, int dy) { *this = *this + CSize(dx, dy); }

    friend constexpr bool operator==(const CPoint& a, const CPoint& b) { return a.x == b.x && a.y == b.y; }
    constexpr CPoint operator-() const { return {zel::Subtract(0, x), zel::Subtract(0, y)}; }
    friend constexpr CPoint operator+(const CPoint& p, const CSize& s) {
        return {zel::Add(p.x, s.cx), zel::Add(p.y, s.cy)};
    }
    friend constexpr CPoint operator-(const CPoint& p, const CSize& s) {
        return {zel::Subtract(p.x, s.cx), zel::Subtract(p.y, s.cy)};
    }
    friend constexpr CPoint operator+(const CPoint& a, const CPoint& b) {
        return {zel::Add(a.x, b.x), zel::Add(a.y, b.y)};
    }
    friend constexpr CSize operator-(const CPoint& a, const CPoint& b) {
        return {zel::Subtract(a.x, b.x), zel::Subtract(a.y, b.y)};
    }
    CPoint& operator+=(const CSize& s) { return *this = *this + s; }
    CPoint& operator-=(const CSize& s) { return *this = *this - s; }
};

class CRect : public RECT {
  public:
    constexpr CRect() : RECT{0, 0, 0, 0} {}
    constexpr CRect(int l, int t, int r, int b) : RECT{l, t, r, b} {}
    constexpr CRect(const RECT& rect) : RECT(rect) {}
    constexpr CRect(const POINT& topLeft, const SIZE& size)
        : RECT{topLeft.x, topLeft.y, zel::Add(topLeft.x, size.cx), zel::Add(topLeft.y, size.cy)} {}
    constexpr CRect(const POINT& topLeft, const POINT& bottomRight)
        : RECT{topLeft.x, topLeft.y, bottomRight.x, bottomRight.y} {}

    constexpr int Width() const { return zel::Subtract(right, left); }
    constexpr int Height() const { return zel::Subtract(bottom, top); }
    constexpr CSize Size() const { return {Width(), Height()}; }
    constexpr CPoint TopLeft() const { return {left, top}; }
    constexpr CPoint BottomRight() const { return {right, bottom}; }
    constexpr bool IsRectEmpty() const { return right <= left || bottom <= top; }
    constexpr bool IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    // Left and top edges lie inside, right and bottom outside; false for an unordered or empty rectangle.
    constexpr bool PtInRect(const POINT& p) const {
        return p.x >= left && p.x < right && p.y >= top && p.y < bottom;
    }
    // Swaps the corners where needed, so that left <= right and top <= bottom.
    constexpr void NormalizeRect() {
        if (left > right) std::swap(left, right);
        if (top > bottom) std::swap(top, bottom);
    }
    // Adds `dx` to both sides and `dy` to top and bottom, without ordering the corners.
    constexpr void InflateRect(int dx, int dy) {
        left = zel::Subtract(left, dx);
        top = zel::Subtract(top, dy);
        right = zel::Add(right, dx);
        bottom = zel::Add(bottom, dy);
    }
    constexpr void DeflateRect(int dx, int dy) { InflateRect(zel::Subtract(0, dx), zel::Subtract(0, dy)); }
    constexpr void OffsetRect(int dx, int dy) {
        left = zel::Add(left, dx);
        top = zel::Add(top, dy);
        right = zel::Add(right, dx);
        bottom = zel::Add(bottom, dy);
    }
    constexpr void SetRect(int l, int t, int r, int b) { *this = CRect(l, t, r, b); }
    constexpr void SetRectEmpty() { *this = CRect(); }
    // The common part of `a` and `b`; false and an empty rectangle when they only touch or are unordered.
    constexpr bool IntersectRect(const RECT& a, const RECT& b) {
        const CRect common(std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
                           std::min(a.bottom, b.bottom));
        const bool meets = !CRect(a).IsRectEmpty() && !CRect(b).IsRectEmpty() && !common.IsRectEmpty();
        *this = meets ? common : CRect();
        return meets;
    }
    // The smallest rectangle around `a` and `b`, an empty one ignored; false when both are empty.
    constexpr bool UnionRect(const RECT& a, const RECT& b) {
        const CRect first(a), second(b);
        if (first.IsRectEmpty()) {
            *this = second.IsRectEmpty() ? CRect() : second;
        } else if (second.IsRectEmpty()) {
            *this = first;
        } else {
            *this = CRect(std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
                          std::max(a.bottom, b.bottom));
        }
        return !IsRectEmpty();
    }
    // `a` without `b` where `b` covers a whole side of `a`, else `a`; false when nothing is left.
    constexpr bool SubtractRect(const RECT& a, const RECT& b) {
        CRect common;
        const CRect whole(a);
        CRect rest = whole;
        if (common.IntersectRect(a, b)) {
            if (common == whole) {
                rest = CRect();
            } else if (common.top == a.top && common.bottom == a.bottom) {
                if (common.left == a.left)
                    rest.left = common.right;
                else if (common.right == a.right)
                    rest.right = common.left;
            } else if (common.left == a.left && common.right == a.right) {
                if (common.top == a.top)
                    rest.top = common.bottom;
                else if (common.bottom == a.bottom)
                    rest.bottom = common.top;
            }
        }
        *this = rest;
        return !IsRectEmpty();
    }

    friend constexpr bool operator==(const CRect& a, const CRect& b) {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }
    friend constexpr CRect operator+(const CRect& r, const POINT& p) {
        CRect moved(r);
        moved.OffsetRect(p.x, p.y);
        return moved;
    }
    friend constexpr CRect operator-(const CRect& r, const POINT& p) {
        CRect moved(r);
        moved.OffsetRect(zel::Subtract(0, p.x), zel::Subtract(0, p.y));
        return moved;
    }
};
