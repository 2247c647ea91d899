#include "graphs/StoredPoints.h"

#include "core/ArchiveFields.h"

#include <zel/platform/Exception.h>

#include <algorithm>
#include <array>

namespace zel {
namespace {

void Store(CArchive& ar, std::span<const SeriesStretch> stretches, SeriesValues SeriesStretch::*values) {
    std::size_t total = 0;
    for (const SeriesStretch& stretch : stretches) total += stretch.Size();
    int count = static_cast<int>(total);
    Exchange(ar, count);
    std::array<double, 4096> room;
    for (const SeriesStretch& stretch : stretches) {
        for (std::size_t at = stretch.begin; at < stretch.end;) {
            const std::size_t n = std::min(room.size(), stretch.end - at);
            ar.Write((stretch.*values).Read(at, n, room.data()), n * sizeof(double));
            at += n;
        }
    }
}

}  // namespace

void StorePoints(CArchive& ar, std::span<const SeriesStretch> stretches) {
    if (ar.IsLoading())
        ar.Fail(CArchiveException::badClass, "a series without memory of its own cannot be loaded");
    Store(ar, stretches, &SeriesStretch::x);
    Store(ar, stretches, &SeriesStretch::y);
}

}  // namespace zel
