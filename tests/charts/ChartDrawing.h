// A drawing of one chart, for tests of what it draws.
#pragma once

#include <zel/platform/RecordingDevice.h>
#include <zel/zel.h>

#include <cstdio>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

namespace zel::test {

// From 0 on.
inline std::vector<double> Count(int n) {
    std::vector<double> numbers;
    for (int i = 0; i < n; ++i) numbers.push_back(i);
    return numbers;
}

class ChartDrawing : public testing::Test {
  protected:
    explicit ChartDrawing(const ChartOptions& options = {}) {
        chart = root.Add(std::make_unique<Zel2Chart>(options));
    }
    void DrawOn(GraphicsDevice& device) {
        CDC dc(device);
        root.PrepareMappingFor(&dc, nullptr, 0, 0);
        root.Draw(&dc);
    }
    std::string Draw() {
        RecordingDevice device;
        DrawOn(device);
        return device.Text();
    }
    // The rectangles that were filled with a colour.
    std::vector<CRect> FilledOn(RecordingDevice& device, const std::string& color) {
        DrawOn(device);
        std::vector<CRect> rects;
        std::istringstream lines(device.Text());
        for (std::string line; std::getline(lines, line);) {
            int l = 0, t = 0, r = 0, b = 0;
            char name[32] = "";
            if (std::sscanf(line.c_str(), "fill %d,%d %d,%d %31s", &l, &t, &r, &b, name) == 5 &&
                color == name)
                rects.emplace_back(l, t, r, b);
        }
        return rects;
    }
    std::string Notes() {
        std::string all;
        for (const std::string& note : chart->Notes()) all += note + "\n";
        return all;
    }
    Zel2Main root;
    Zel2Chart* chart = nullptr;  // the root's
};

}  // namespace zel::test
