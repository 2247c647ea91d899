// Data series for streams.
#pragma once

#include <zel/Zel2PointSet.h>

// A data series that keeps the newest points of a stream: when as many have come as it has room for, each new
// one takes the place of the oldest. Its memory does not grow, and its index is kept up with what is new.
//
// Archives keep the points that it has, and what is loaded is a Zel2PointArray.
class Zel2PointRing : public Zel2PointSet {
  public:
    // Throws CInvalidArgException* when there is no room for a point, or for more than 2^31 - 1.
    explicit Zel2PointRing(std::size_t capacity);
    Zel2PointRing(const Zel2PointRing&) = delete;
    Zel2PointRing& operator=(const Zel2PointRing&) = delete;
    ~Zel2PointRing() override;

    void Append(double x, double y);
    void Clear();
    std::size_t Capacity() const { return capacity_; }

    CRuntimeClass* GetArchiveClass() const override;
    // Only stores.
    void Serialize(CArchive& ar) override;
    unsigned int NPoints() override { return static_cast<unsigned int>(xs_.size()); }
    // The oldest point is number 0.
    double X(long i) override { return xs_[Place(i)]; }
    double Y(long i) override { return ys_[Place(i)]; }

    std::vector<zel::SeriesStretch> Stretches() override;

  private:
    std::size_t Place(long i) const { return (oldest_ + static_cast<std::size_t>(i)) % xs_.size(); }
    void UpdateIndex();

    std::size_t capacity_;
    std::vector<double> xs_, ys_;
    std::size_t oldest_ = 0;                   // where the oldest point lies: 0 until all places are taken
    std::size_t unknown_ = 0;                  // the newest points, which the index has not seen yet
    std::unique_ptr<zel::SeriesIndex> index_;  // null until it is needed
};
