#include "graphs/StoredPoints.h"
#include "series/SeriesIndex.h"

#include <zel/Zel2PointView.h>

Zel2PointView::Zel2PointView() = default;
Zel2PointView::~Zel2PointView() = default;

Zel2PointView::Zel2PointView(const zel::SeriesValues& x, const zel::SeriesValues& y, std::size_t n)
    : x_(x), y_(y), n_(n) {}

void Zel2PointView::SetPoints(const zel::SeriesValues& x, const zel::SeriesValues& y, std::size_t n) {
    index_.reset();
    x_ = x;
    y_ = y;
    n_ = n;
}

void Zel2PointView::PointsChanged() {
    index_.reset();
}

void Zel2PointView::PointsAppended(std::size_t n) {
    n_ += n;
}

std::vector<zel::SeriesStretch> Zel2PointView::Stretches() {
    if (n_ < zel::SeriesIndex::kLeastPoints) return {{x_, y_, 0, n_}};
    if (!index_) index_ = std::make_unique<zel::SeriesIndex>();
    index_->Extend(x_, y_, n_);
    return {{x_, y_, 0, n_, index_.get()}};
}

CRuntimeClass* Zel2PointView::GetArchiveClass() const {
    return RUNTIME_CLASS(Zel2PointArray);
}

void Zel2PointView::Serialize(CArchive& ar) {
    Zel2PointSet::Serialize(ar);
    zel::StorePoints(ar, Stretches());
}
