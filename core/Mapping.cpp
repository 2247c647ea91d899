#include "core/ArchiveFields.h"

#include <zel/Mapping.h>

#include <cstdlib>

IMPLEMENT_SERIAL(Mapping, CObject, 0)

namespace {
constexpr int kZoomTermLimit = 1024;
constexpr int kZoomLimit = 32;
}  // namespace

Mapping::Mapping(const Mapping& other) : CObject() {
    *this = other;
}

Mapping& Mapping::operator=(const Mapping& other) {
    world_ = other.world_;
    device_ = other.device_;
    logical_ = other.logical_;
    spare_[0] = other.spare_[0];
    spare_[1] = other.spare_[1];
    zoom_ = other.zoom_;
    return *this;
}

void Mapping::SetWorld(const CPoint& org, const CSize& ext) {
    SetWorld(org, org + ext);
}
void Mapping::SetWorld(const CPoint& p1, const CPoint& p2) {
    world_ = {p1.x, p1.y, p2.x, p2.y};
}
void Mapping::SetLogical(const CPoint& org, const CSize& ext) {
    SetLogical(org, org + ext);
}
void Mapping::SetLogical(const CPoint& p1, const CPoint& p2) {
    logical_ = {p1.x, p1.y, p2.x, p2.y};
}
void Mapping::SetDevice(const CPoint& p1, const CPoint& p2) {
    device_ = {p1.x, p1.y, p2.x, p2.y};
}

void Mapping::SetLogicalOrg(const CPoint& p) {
    device_.x1 = p.x;
    device_.y1 = p.y;
}

void Mapping::GetWorld(CPoint& org, CSize& ext) const {
    org = CPoint(world_.x1, world_.y1);
    ext = CSize(world_.Width(), world_.Height());
}

void Mapping::GetDevice(CPoint& org, CSize& ext) const {
    org = CPoint(device_.x1, device_.y1);
    ext = CSize(device_.Width(), device_.Height());
}

void Mapping::GetLogical(CPoint& org, CSize& ext) const {
    org = CPoint(logical_.x1, logical_.y1);
    ext = CSize(logical_.Width(), logical_.Height());
}

void Mapping::SetZoom(int a, int b) {
    if (a == 0 || b == 0) {
        zoom_ = {1, 1};
        return;
    }
    StoreZoom(zoom_.numerator * std::llabs(a), zoom_.denominator * std::llabs(b));
}

void Mapping::SetAbsoluteZoom(int a, int b) {
    if (a == 0 || b == 0) {
        zoom_ = {1, 1};
        return;
    }
    StoreZoom(std::llabs(a), std::llabs(b));
}

void Mapping::StoreZoom(long long n, long long d) {
    while (n > kZoomTermLimit || d > kZoomTermLimit) {
        n >>= 1;
        d >>= 1;
    }
    zoom_ = {static_cast<int>(n), static_cast<int>(d)};
    if (n > kZoomLimit * d) zoom_ = {kZoomLimit, 1};
}

int Mapping::Scale() const {
    return Zoomed(1000);
}

int Mapping::Zoomed(int length) const {
    return MulDiv(length, zoom_.numerator, zoom_.denominator);
}
int Mapping::ScaleX(int length) const {
    return MulDiv(logical_.Width(), length, world_.Width());
}
int Mapping::ScaleY(int length) const {
    return MulDiv(logical_.Height(), length, world_.Height());
}

CPoint Mapping::ToLogical(const CPoint& world) const {
    const int x = zel::Add(ScaleX(zel::Subtract(world.x, world_.x1)), logical_.x1);
    const int y = zel::Add(ScaleY(zel::Subtract(world.y, world_.y1)), logical_.y1);
    return {Zoomed(x), Zoomed(y)};
}

CPoint Mapping::ToDevice(const CPoint& world) const {
    return ToLogical(world) + CSize(device_.x1, device_.y1);
}

CPoint Mapping::FromLogical(const CPoint& logical) const {
    const int x = MulDiv(logical.x, zoom_.denominator, zoom_.numerator);
    const int y = MulDiv(logical.y, zoom_.denominator, zoom_.numerator);
    return {zel::Add(MulDiv(world_.Width(), zel::Subtract(x, logical_.x1), logical_.Width()), world_.x1),
            zel::Add(MulDiv(world_.Height(), zel::Subtract(y, logical_.y1), logical_.Height()), world_.y1)};
}

CPoint Mapping::FromDevice(const CPoint& device) const {
    return FromLogical(device - CSize(device_.x1, device_.y1));
}

CSize Mapping::ToLogical(const CSize& world) const {
    return {ScaleX(Zoomed(world.cx)), ScaleY(Zoomed(world.cy))};
}

CSize Mapping::ToDevice(const CSize& world) const {
    return ToLogical(world);
}

CSize Mapping::FromLogical(const CSize& logical) const {
    const int cx = MulDiv(world_.Width(), logical.cx, logical_.Width());
    const int cy = MulDiv(world_.Height(), logical.cy, logical_.Height());
    return {MulDiv(cx, zoom_.denominator, zoom_.numerator), MulDiv(cy, zoom_.denominator, zoom_.numerator)};
}

CSize Mapping::FromDevice(const CSize& device) const {
    return FromLogical(device);
}

CRect Mapping::ToLogical(const CRect& world) const {
    return {ToLogical(world.TopLeft()), ToLogical(world.BottomRight())};
}
CRect Mapping::ToDevice(const CRect& world) const {
    return {ToDevice(world.TopLeft()), ToDevice(world.BottomRight())};
}
CRect Mapping::FromLogical(const CRect& logical) const {
    return {FromLogical(logical.TopLeft()), FromLogical(logical.BottomRight())};
}
CRect Mapping::FromDevice(const CRect& device) const {
    return {FromDevice(device.TopLeft()), FromDevice(device.BottomRight())};
}

void Mapping::Serialize(CArchive& ar) {
    for (Rectangle* r : {&world_, &device_, &logical_}) {
        zel::Exchange(ar, r->x1, r->y1, r->x2, r->y2);
    }
    zel::Exchange(ar, spare_[0], spare_[1], zoom_.numerator, zoom_.denominator);
}
