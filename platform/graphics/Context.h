// What a context handle stands for.
#pragma once

#include <zel/platform/Gdi.h>

#include <memory>
#include <vector>

// The state of a context and the lines that it has gathered for its device.
//
// Consecutive lines with one pen are kept and handed on as one polyline, as soon as anything else is drawn or
// a setting that lines depend on changes. Changing the pen and changing it back does not break them apart.
struct ZelContextHandle {
    explicit ZelContextHandle(zel::GraphicsDevice& borrowed);
    explicit ZelContextHandle(std::unique_ptr<zel::GraphicsDevice> owned);
    ~ZelContextHandle() { FlushLines(); }
    ZelContextHandle(const ZelContextHandle&) = delete;
    ZelContextHandle& operator=(const ZelContextHandle&) = delete;

    // All that SaveDC keeps.
    struct Settings {
        zel::GraphicsState graphics;
        CPoint position;
        HPEN pen = nullptr;
        HBRUSH brush = nullptr;
        HFONT font = nullptr;
    };

    void MoveTo(const CPoint& to);
    void LineTo(const CPoint& to) {
        if (lines.empty() || !SamePen(linePen, now.graphics.pen) || lines.size() >= kMostGathered)
            BeginLines();
        lines.push_back(to);
        now.position = to;
    }
    void PolylineTo(const POINT* points, std::size_t count);
    void FlushLines();
    // The device, ready for another primitive.
    zel::GraphicsDevice& Draw() {
        FlushLines();
        return *device;
    }
    // The settings, about to change in a way that matters to lines.
    zel::GraphicsState& Change() {
        FlushLines();
        return now.graphics;
    }
    CRect Surface() const;  // device units
    zel::Region ClipOrSurface() const;

    zel::GraphicsDevice* device;
    std::unique_ptr<zel::GraphicsDevice> owned;
    Settings now;
    std::vector<Settings> saved;

  private:
    static constexpr std::size_t kMostGathered = 16384;
    static bool SamePen(const LOGPEN& a, const LOGPEN& b) {
        return a.lopnStyle == b.lopnStyle && a.lopnWidth.x == b.lopnWidth.x && a.lopnColor == b.lopnColor &&
               a.lopnTransparency == b.lopnTransparency;
    }
    void SelectDefaults();
    void BeginLines();

    std::vector<CPoint> lines;  // the first is where the lines begin; empty when nothing is gathered
    LOGPEN linePen{};
};
