#include "core/ArchiveFields.h"

#include <zel/DrawColor.h>
#include <zel/DrawPen.h>
#include <zel/Zel2Pol.h>

#include <cmath>

IMPLEMENT_SERIAL(Zel2Pol, Zel2, 0)
IMPLEMENT_SERIAL(Zel2PolGraph, Zel2Pol, 0)

Zel2Pol::Zel2Pol(Zel2* parent, int pen, int color) : pen_(pen), color_(color) {
    SetParent(parent);
}

unsigned int Zel2Pol::NPoints() {
    return 0;
}
CPoint Zel2Pol::LogPoint(int) {
    return {};
}
bool Zel2Pol::HasPlace(int) {
    return true;
}

// Fills are rings that end where they began: with classic rules the points must say so themselves.
void Zel2Pol::Fill(DrawColor& color, const std::vector<CPoint>& points) {
    std::vector<CPoint> closed(points);
    if (IsExact()) closed.push_back(points.front());
    color.PolyPolygon(closed.data(), static_cast<int>(closed.size()));
}

void Zel2Pol::OnDraw() {
    if (!Ready()) return;
    std::vector<CPoint> points;
    points.reserve(NPoints());
    for (int i = 0; i < static_cast<int>(NPoints()); ++i) {
        if (HasPlace(i)) points.push_back(LogPoint(i));
    }
    if (points.empty()) return;
    if (DrawColor* color = color_ >= 0 ? Color(color_) : nullptr) Fill(*color, points);
    if (DrawPen* pen = pen_ >= 0 ? Pen(pen_) : nullptr) {
        pen->MoveTo(points.front().x, points.front().y);
        for (std::size_t i = 1; i < points.size(); ++i) pen->LineTo(points[i].x, points[i].y);
    }
}

// With classic rules a polygon is printed only with the graph that it stands in.
void Zel2Pol::OnPrint(CDC*, CPrintInfo*) {
    if (IsExact()) OnDraw();
}

void Zel2Pol::Serialize(CArchive& ar) {
    Zel2::Serialize(ar);
    zel::Exchange(ar, pen_, color_);
}

void Zel2PolGraph::DefinePoints(const float* xs, const float* ys, int n) {
    x_.clear();
    y_.clear();
    if (!xs || !ys || n < 1) return;
    x_.assign(xs, xs + n);
    y_.assign(ys, ys + n);
}

void Zel2PolGraph::DefinePoints(const std::vector<Dim2>& points) {
    x_.clear();
    y_.clear();
    for (const Dim2& point : points) {
        x_.push_back(static_cast<float>(point.x));
        y_.push_back(static_cast<float>(point.y));
    }
}

CPoint Zel2PolGraph::LogPoint(int i) {
    if (!GetParent() || !Has(i)) return {};
    const auto k = static_cast<std::size_t>(i);
    return GetParent()->F2L(static_cast<double>(x_[k]), static_cast<double>(y_[k]));
}

bool Zel2PolGraph::HasPlace(int i) {
    const auto k = static_cast<std::size_t>(i);
    return Has(i) && !std::isnan(x_[k]) && !std::isnan(y_[k]);
}

void Zel2PolGraph::Serialize(CArchive& ar) {
    Zel2Pol::Serialize(ar);
    int count = static_cast<int>(x_.size());
    zel::Exchange(ar, count);
    if (ar.IsLoading()) {
        count = std::max(count, 0);
        ar.CheckCount(count, 2 * sizeof(float));
        x_.assign(static_cast<std::size_t>(count), 0.0F);
        y_.assign(x_.size(), 0.0F);
    }
    if (x_.empty()) return;
    zel::ExchangeRaw(ar, x_.data(), x_.size() * sizeof(float));
    zel::ExchangeRaw(ar, y_.data(), y_.size() * sizeof(float));
}
