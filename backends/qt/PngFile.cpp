#include "backends/qt/PngFile.h"

#include "backends/qt/Deflate.h"

#include <QRgb>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdlib>
#include <cstring>
#include <libdeflate.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zel::qt {
namespace {

constexpr std::size_t kMostColors = 256;
constexpr std::int64_t kMostPixels = std::int64_t{1} << 25;
constexpr int kLevel = 2;  // of compression: lines and flat areas gain little by more

enum ColorType : char { RGB_COLORS = 2, TABLE = 3, RGB_AND_ALPHA = 6 };
enum Filter : char { NONE, SUB, UP };

void AppendNumber(std::string& bytes, std::uint32_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(number >> shift & 0xFF);
}

void WriteChunk(SafeFile& file, const char* type, std::string_view data) {
    std::string head, tail;
    AppendNumber(head, static_cast<std::uint32_t>(data.size()));
    head += type;
    std::uint32_t sum = libdeflate_crc32(0, type, 4);
    sum = libdeflate_crc32(sum, data.data(), data.size());
    AppendNumber(tail, sum);
    for (const std::string_view part : {std::string_view(head), data, std::string_view(tail)})
        file.Write(part.data(), part.size());
}

// The colours of a picture, numbered in the order in which they come.
class ColorTable {
  public:
    // False when there are too many.
    bool Add(const std::uint32_t* pixels, std::size_t count) {
        std::uint32_t last = ~pixels[0];
        for (std::size_t i = 0; i < count; ++i) {
            if (pixels[i] == last) continue;
            last = pixels[i];
            Slot& slot = SlotOf(last);
            if (slot.used) continue;
            if (colors.size() == kMostColors) return false;
            slot = {last, true, static_cast<std::uint8_t>(colors.size())};
            colors.push_back(last);
        }
        return true;
    }
    std::uint8_t NumberOf(std::uint32_t color) { return SlotOf(color).number; }
    // Of a pixel: 1, 2, 4 or 8.
    int Bits() const {
        const auto bits = std::bit_width(colors.size() - 1);
        return bits <= 1 ? 1 : bits <= 2 ? 2 : bits <= 4 ? 4 : 8;
    }

    std::vector<std::uint32_t> colors;

  private:
    struct Slot {
        std::uint32_t color = 0;
        bool used = false;
        std::uint8_t number = 0;
    };
    Slot& SlotOf(std::uint32_t color) {
        std::size_t at = color * 2654435761U >> 21;
        while (slots_[at].used && slots_[at].color != color) at = (at + 1) % slots_.size();
        return slots_[at];
    }
    std::array<Slot, 2048> slots_;
};

std::string RowsOfNumbers(const PixelBuffer& picture, ColorTable& table) {
    const int bits = table.Bits(), perByte = 8 / bits;
    const std::size_t stride = 1 + static_cast<std::size_t>((picture.width + perByte - 1) / perByte);
    std::string rows(stride * static_cast<std::size_t>(picture.height), '\0');
    std::uint32_t last = picture.pixels[0];
    std::uint8_t number = table.NumberOf(last);
    for (int y = 0; y < picture.height; ++y) {
        const std::uint32_t* const from = picture.pixels + std::ptrdiff_t{y} * picture.width;
        char* const to = rows.data() + stride * static_cast<std::size_t>(y) + 1;
        for (int x = 0; x < picture.width; ++x) {
            if (from[x] != last) {
                last = from[x];
                number = table.NumberOf(last);
            }
            const int shift = 8 - bits - x % perByte * bits;
            to[x / perByte] = static_cast<char>(to[x / perByte] | number << shift);
        }
    }
    return rows;
}

// The channels of a row, red first, not premultiplied.
void ReadRow(const std::uint32_t* pixels, int width, bool alpha, std::uint8_t* bytes) {
    for (int x = 0; x < width; ++x) {
        const QRgb color = alpha ? qUnpremultiply(pixels[x]) : pixels[x];
        *bytes++ = static_cast<std::uint8_t>(color >> 16);
        *bytes++ = static_cast<std::uint8_t>(color >> 8);
        *bytes++ = static_cast<std::uint8_t>(color);
        if (alpha) *bytes++ = static_cast<std::uint8_t>(color >> 24);
    }
}

// Of differences, which compress the better the smaller they are.
unsigned SizeOf(std::span<const std::uint8_t> differences) {
    unsigned sum = 0;
    for (const std::uint8_t difference : differences)
        sum += static_cast<unsigned>(std::abs(static_cast<std::int8_t>(difference)));
    return sum;
}

// Each row as it is, or by its differences from the pixels at the left or above.
std::string RowsOfChannels(const PixelBuffer& picture, bool alpha) {
    const std::size_t channels = alpha ? 4 : 3, length = channels * static_cast<std::size_t>(picture.width);
    std::string rows((length + 1) * static_cast<std::size_t>(picture.height), '\0');
    std::vector<std::uint8_t> row(length), above(length), sub(length), up(length);
    for (int y = 0; y < picture.height; ++y) {
        const std::uint32_t* const pixels = picture.pixels + std::ptrdiff_t{y} * picture.width;
        char* const to = rows.data() + (length + 1) * static_cast<std::size_t>(y);
        if (y > 0 && std::equal(pixels, pixels + picture.width, pixels - picture.width)) {
            *to = UP;  // and no differences
            continue;
        }
        row.swap(above);
        ReadRow(pixels, picture.width, alpha, row.data());
        std::copy_n(row.begin(), channels, sub.begin());
        for (std::size_t i = channels; i < length; ++i)
            sub[i] = static_cast<std::uint8_t>(row[i] - row[i - channels]);
        for (std::size_t i = 0; i < length; ++i) up[i] = static_cast<std::uint8_t>(row[i] - above[i]);
        const unsigned sizes[] = {SizeOf(row), SizeOf(sub), SizeOf(up)};
        const std::vector<std::uint8_t>* const choices[] = {&row, &sub, &up};
        const auto best = std::min_element(std::begin(sizes), std::end(sizes)) - std::begin(sizes);
        *to = static_cast<char>(best);
        std::memcpy(to + 1, choices[best]->data(), length);
    }
    return rows;
}

std::string HeaderOf(const PixelBuffer& picture, int bits, ColorType type) {
    std::string header;
    AppendNumber(header, static_cast<std::uint32_t>(picture.width));
    AppendNumber(header, static_cast<std::uint32_t>(picture.height));
    header += static_cast<char>(bits);
    header += static_cast<char>(type);
    header.append(3, '\0');  // the only compression and filters there are, and no interlacing
    return header;
}

void WriteColors(SafeFile& file, const ColorTable& table) {
    std::string colors, opacities;
    bool opaque = true;
    for (const std::uint32_t premultiplied : table.colors) {
        const QRgb color = qUnpremultiply(premultiplied);
        for (const int channel : {qRed(color), qGreen(color), qBlue(color)})
            colors += static_cast<char>(channel);
        opacities += static_cast<char>(qAlpha(color));
        opaque = opaque && qAlpha(color) == 255;
    }
    WriteChunk(file, "PLTE", colors);
    if (!opaque) WriteChunk(file, "tRNS", opacities);
}

}  // namespace

bool CanWritePng(const PixelBuffer& picture) {
    return std::int64_t{picture.width} * picture.height <= kMostPixels;
}

void WritePng(SafeFile& file, const PixelBuffer& picture, int dotsPerMetre) {
    const std::size_t count =
        static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height);
    ColorTable table;
    const bool few = table.Add(picture.pixels, count);
    const bool alpha = !few && std::any_of(picture.pixels, picture.pixels + count,
                                           [](std::uint32_t pixel) { return pixel < 0xFF000000u; });
    const ColorType type = few ? TABLE : alpha ? RGB_AND_ALPHA : RGB_COLORS;
    constexpr char kSignature[] = "\x89PNG\r\n\x1A\n";
    file.Write(kSignature, sizeof kSignature - 1);
    WriteChunk(file, "IHDR", HeaderOf(picture, few ? table.Bits() : 8, type));
    std::string resolution;
    AppendNumber(resolution, static_cast<std::uint32_t>(dotsPerMetre));
    AppendNumber(resolution, static_cast<std::uint32_t>(dotsPerMetre));
    WriteChunk(file, "pHYs", resolution + '\1');
    if (few) WriteColors(file, table);
    const std::string rows = few ? RowsOfNumbers(picture, table) : RowsOfChannels(picture, alpha);
    WriteChunk(file, "IDAT", Deflated(rows, kLevel).View());
    WriteChunk(file, "IEND", "");
}

}  // namespace zel::qt
