// What a program installs so that the library can open windows, images and pages.
#pragma once

#include <zel/platform/FileFormat.h>
#include <zel/platform/GraphicsDevice.h>

#include <memory>
#include <span>
#include <vector>

namespace zel {

class WindowSystem;

// Makes devices (and, with the window layer, windows). The base class is what a program without a back end
// has: measuring works with built-in font metrics, files and windows do not.
class Platform {
  public:
    virtual ~Platform();

    // The installed platform; never null.
    static Platform& Get();
    // Replaces the installed platform. Pass null to go back to the base class. Call before drawing begins and
    // from one thread only.
    static void Install(std::unique_ptr<Platform> platform);

    // A device with the resolution and fonts of the screen on which nothing is seen: for measuring text and
    // for contexts "compatible with the screen".
    virtual std::unique_ptr<GraphicsDevice> CreateScreenCompatibleDevice();

    // The formats of the files that the platform draws; none without a back end.
    virtual std::vector<FileFormat> FileFormats() { return {}; }

    // A device of the format that `options` names; nothing is written before its Finish().
    // Throws CNotSupportedException* naming the missing back end or the formats that there are, or
    // CFileException* when the path is unusable.
    std::unique_ptr<DocumentDevice> CreateFileDevice(const FileDeviceOptions& options);
    // The device units in an inch that this device has; see FileFormat. Throws CNotSupportedException*.
    double UnitsPerInch(const FileDeviceOptions& options);

    // Where marks (GraphicsDevice::Marks) are to be drawn in a file of vectors, in device units and in order,
    // `unitsPerPixel` to a pixel of a screen. They may be moved by a part of such a pixel, and those that
    // would not be seen are left out. Here: all of them.
    virtual std::vector<CPoint> SeenMarks(const GraphicsState& state, std::span<const CPoint> places,
                                          const CRect& box, const MarkPainter& paint, double unitsPerPixel);

    // Where windows come from (borrowed); null where there are none.
    virtual WindowSystem* Windows() { return nullptr; }
};

}  // namespace zel
