// The objects behind handles.
#include <zel/platform/Exception.h>
#include <zel/platform/Gdi.h>

#include <atomic>
#include <mutex>
#include <unordered_map>
#include <variant>

namespace {

using Object = std::variant<LOGPEN, LOGBRUSH, LOGFONT, zel::Region>;
using Key = std::uintptr_t;

// Keys are counted up and never used again, so a stale handle cannot name a newer object.
class HandleTable {
  public:
    HGDIOBJ Add(Object object) {
        const std::lock_guard lock(mutex_);
        const Key key = ++last_;
        objects_.emplace(key, std::move(object));
        return reinterpret_cast<HGDIOBJ>(key);
    }
    bool Remove(HGDIOBJ handle) {
        const std::lock_guard lock(mutex_);
        return IsStock(handle) || objects_.erase(reinterpret_cast<Key>(handle)) > 0;
    }
    bool Contains(HGDIOBJ handle) const {
        const std::lock_guard lock(mutex_);
        return objects_.contains(reinterpret_cast<Key>(handle));
    }
    template <class T>
    bool Get(HGDIOBJ handle, T& object) const {
        const std::lock_guard lock(mutex_);
        const auto found = objects_.find(reinterpret_cast<Key>(handle));
        const T* typed = found != objects_.end() ? std::get_if<T>(&found->second) : nullptr;
        if (typed) object = *typed;
        return typed != nullptr;
    }
    bool Set(HGDIOBJ handle, zel::Region region) {
        const std::lock_guard lock(mutex_);
        const auto found = objects_.find(reinterpret_cast<Key>(handle));
        if (found == objects_.end() || !std::holds_alternative<zel::Region>(found->second)) return false;
        found->second = std::move(region);
        return true;
    }
    HGDIOBJ Stock(int index) {
        MakeStock();
        return index >= 0 && index <= SYSTEM_FONT ? stock_[index] : nullptr;
    }

  private:
    bool IsStock(HGDIOBJ handle) const { return handle && reinterpret_cast<Key>(handle) <= lastStock_; }
    void MakeStock();

    mutable std::mutex mutex_;
    std::once_flag once_;
    std::unordered_map<Key, Object> objects_;
    HGDIOBJ stock_[SYSTEM_FONT + 1] = {};
    Key last_ = 0;
    std::atomic<Key> lastStock_ = 0;
};

// The first objects of the table.
void HandleTable::MakeStock() {
    std::call_once(once_, [this] {
        last_ = 0x1000;
        const auto brush = [this](COLORREF color) { return Add(LOGBRUSH{BS_SOLID, color, 0}); };
        const auto pen = [this](UINT style, COLORREF color) { return Add(LOGPEN{style, {0, 0}, color}); };
        stock_[WHITE_BRUSH] = brush(RGB(255, 255, 255));
        stock_[LTGRAY_BRUSH] = brush(RGB(192, 192, 192));
        stock_[GRAY_BRUSH] = brush(RGB(128, 128, 128));
        stock_[DKGRAY_BRUSH] = brush(RGB(64, 64, 64));
        stock_[BLACK_BRUSH] = brush(RGB(0, 0, 0));
        stock_[NULL_BRUSH] = Add(LOGBRUSH{BS_NULL, 0, 0});
        stock_[WHITE_PEN] = pen(PS_SOLID, RGB(255, 255, 255));
        stock_[BLACK_PEN] = pen(PS_SOLID, RGB(0, 0, 0));
        stock_[NULL_PEN] = pen(PS_NULL, 0);
        LOGFONT font{};
        font.lfHeight = 16;
        font.lfWeight = FW_BOLD;
        std::copy_n("Arial", 6, font.lfFaceName);
        stock_[SYSTEM_FONT] = Add(font);
        lastStock_ = last_;
    });
}

HandleTable& Table() {
    static HandleTable& table = *new HandleTable;  // outlives objects with static storage that hold handles
    return table;
}

template <class Handle>
Handle New(Object object) {
    Table().Stock(0);  // stock objects come first, so that they are told apart by their keys
    return reinterpret_cast<Handle>(Table().Add(std::move(object)));
}

int KindOf(const zel::Region& region) {
    if (region.IsEmpty()) return NULLREGION;
    return region.Rects().size() == 1 ? SIMPLEREGION : COMPLEXREGION;
}

}  // namespace

HPEN CreatePen(int style, int width, COLORREF color) {
    return New<HPEN>(LOGPEN{static_cast<UINT>(style), {zel::Magnitude(width), 0}, color});
}
HPEN CreatePenIndirect(const LOGPEN* pen) {
    return New<HPEN>(*pen);
}
HBRUSH CreateSolidBrush(COLORREF color) {
    return New<HBRUSH>(LOGBRUSH{BS_SOLID, color, 0});
}
HBRUSH CreateHatchBrush(int hatch, COLORREF color) {
    return New<HBRUSH>(LOGBRUSH{BS_HATCHED, color, hatch});
}
HBRUSH CreateBrushIndirect(const LOGBRUSH* brush) {
    return New<HBRUSH>(*brush);
}

HFONT CreateFontIndirect(const LOGFONT* font) {
    LOGFONT copy = *font;
    copy.lfFaceName[LF_FACESIZE - 1] = '\0';
    return New<HFONT>(copy);
}

HRGN CreateRectRgn(int left, int top, int right, int bottom) {
    return New<HRGN>(zel::Region(CRect(left, top, right, bottom)));
}
HRGN CreateEllipticRgn(int left, int top, int right, int bottom) {
    return New<HRGN>(zel::Region::FromEllipse(CRect(left, top, right, bottom)));
}
HRGN CreatePolygonRgn(const POINT* points, int count, int fillMode) {
    const std::vector<CPoint> ring(points, points + std::max(count, 0));
    return New<HRGN>(zel::Region::FromPolygons(ring, std::span(&count, 1), fillMode));
}

int CombineRgn(HRGN result, HRGN first, HRGN second, int mode) {
    zel::Region a, b, old;
    if (!zel::GetRegion(result, old) || !zel::GetRegion(first, a)) return RGN_ERROR;
    if (mode != RGN_COPY && !zel::GetRegion(second, b)) return RGN_ERROR;
    zel::Region combined = mode == RGN_COPY ? a : zel::Region::Combine(a, b, mode);
    const int kind = KindOf(combined);
    zel::SetRegion(result, std::move(combined));
    return kind;
}

HGDIOBJ GetStockObject(int index) {
    return Table().Stock(index);
}
BOOL DeleteObject(HGDIOBJ object) {
    return Table().Remove(object) ? TRUE : FALSE;
}

namespace zel {
bool GetPen(HPEN handle, LOGPEN& pen) {
    return Table().Get(reinterpret_cast<HGDIOBJ>(handle), pen);
}
bool GetBrush(HBRUSH handle, LOGBRUSH& brush) {
    return Table().Get(reinterpret_cast<HGDIOBJ>(handle), brush);
}
bool GetFont(HFONT handle, LOGFONT& font) {
    return Table().Get(reinterpret_cast<HGDIOBJ>(handle), font);
}
bool GetRegion(HRGN handle, Region& region) {
    return Table().Get(reinterpret_cast<HGDIOBJ>(handle), region);
}
bool SetRegion(HRGN handle, Region region) {
    return Table().Set(reinterpret_cast<HGDIOBJ>(handle), std::move(region));
}
bool IsAlive(HGDIOBJ handle) {
    return Table().Contains(handle);
}
}  // namespace zel
