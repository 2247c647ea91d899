// Data series whose points lie in the host's memory.
#pragma once

#include <zel/Zel2PointSet.h>

// A data series that borrows its points: doubles, floats or integers of 32 or 16 bits, at any distance from
// each other. Nothing is copied, and a fill, a line and symbols are drawn as fast as those of a
// Zel2PointArray, with an index of its own.
//
// The memory belongs to the host; it must stay where it is as long as the series looks at it. Whoever writes
// to it calls PointsChanged before the next draw.
//
// Archives keep the values, and what is loaded is a Zel2PointArray.
class Zel2PointView : public Zel2PointSet {
  public:
    Zel2PointView();
    // The first `n` points of two arrays.
    Zel2PointView(const zel::SeriesValues& x, const zel::SeriesValues& y, std::size_t n);
    Zel2PointView(const Zel2PointView&) = delete;
    Zel2PointView& operator=(const Zel2PointView&) = delete;
    ~Zel2PointView() override;

    void SetPoints(const zel::SeriesValues& x, const zel::SeriesValues& y, std::size_t n);
    // The host has changed points that were there.
    void PointsChanged();
    // The host has written more points behind the `n` points of before, and left those as they were.
    void PointsAppended(std::size_t n);

    CRuntimeClass* GetArchiveClass() const override;
    // Only stores.
    void Serialize(CArchive& ar) override;
    unsigned int NPoints() override { return static_cast<unsigned int>(n_); }
    double X(long i) override { return x_.At(static_cast<std::size_t>(i)); }
    double Y(long i) override { return y_.At(static_cast<std::size_t>(i)); }

    std::vector<zel::SeriesStretch> Stretches() override;

  private:
    zel::SeriesValues x_, y_;
    std::size_t n_ = 0;
    std::unique_ptr<zel::SeriesIndex> index_;  // null until it is needed
};
