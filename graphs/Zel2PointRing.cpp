#include "graphs/StoredPoints.h"
#include "series/SeriesIndex.h"

#include <zel/Zel2PointRing.h>

#include <algorithm>
#include <climits>
#include <string>

Zel2PointRing::Zel2PointRing(std::size_t capacity) : capacity_(capacity) {
    if (capacity == 0 || capacity > INT_MAX)
        AfxThrowInvalidArgException(
            ("Cannot make a ring for " + std::to_string(capacity) + " points.").c_str());
}

Zel2PointRing::~Zel2PointRing() = default;

void Zel2PointRing::Append(double x, double y) {
    unknown_ = std::min(unknown_ + 1, capacity_);
    if (xs_.size() < capacity_) {
        xs_.push_back(x);
        ys_.push_back(y);
        return;
    }
    xs_[oldest_] = x;
    ys_[oldest_] = y;
    oldest_ = oldest_ + 1 < capacity_ ? oldest_ + 1 : 0;
}

void Zel2PointRing::Clear() {
    xs_.clear();
    ys_.clear();
    index_.reset();
    oldest_ = unknown_ = 0;
}

// The index counts places, not points: only places that were written to have changed.
void Zel2PointRing::UpdateIndex() {
    const zel::SeriesValues x(xs_.data()), y(ys_.data());
    if (!index_) {
        index_ = std::make_unique<zel::SeriesIndex>();
    } else if (unknown_ > 0) {
        const std::size_t end = oldest_ > 0 ? oldest_ : xs_.size();
        const std::size_t before = std::min(unknown_, end);
        index_->Update(x, y, end - before, end);
        index_->Update(x, y, xs_.size() - (unknown_ - before), xs_.size());
    }
    index_->Extend(x, y, xs_.size());
    unknown_ = 0;
}

std::vector<zel::SeriesStretch> Zel2PointRing::Stretches() {
    const zel::SeriesValues x(xs_.data()), y(ys_.data());
    zel::SeriesIndex* index = nullptr;
    if (xs_.size() >= zel::SeriesIndex::kLeastPoints) {
        UpdateIndex();
        index = index_.get();
    }
    return {{x, y, oldest_, xs_.size(), index}, {x, y, 0, oldest_, index}};
}

CRuntimeClass* Zel2PointRing::GetArchiveClass() const {
    return RUNTIME_CLASS(Zel2PointArray);
}

void Zel2PointRing::Serialize(CArchive& ar) {
    Zel2PointSet::Serialize(ar);
    zel::StorePoints(ar, Stretches());
}
