#include "backends/qt/DiscSprites.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstring>

namespace zel::qt {

DiscSprites::DiscSprites(int width, int height, int shift) : width_(width), height_(height), shift_(shift) {}

bool DiscSprites::Add(Stroker& stroker, const CRect& box) {
    const int limit = (kSide - 2) << shift_;
    if (box.Width() < 1 || box.Height() < 1 || box.Width() > limit || box.Height() > limit) return false;
    const auto places = std::size_t{1} << 2 * shift_;
    if (!(box.Size() == size_) || sprites_.empty()) {
        size_ = box.Size();
        sprites_.assign(places, {});
        Clear();
    }
    const int x = box.left >> shift_, y = box.top >> shift_;
    const int mask = (1 << shift_) - 1;
    const int dx = box.left & mask, dy = box.top & mask;
    const auto place = static_cast<std::size_t>(dy << shift_ | dx);
    if (x >= 0 && y >= 0 && x < width_ && y < height_) {
        if (drawn_.empty())
            drawn_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
        std::uint16_t& last = drawn_[static_cast<std::size_t>(y) * static_cast<std::size_t>(width_) +
                                     static_cast<std::size_t>(x)];
        if (last == place + 1) return true;
        last = static_cast<std::uint16_t>(place + 1);
        any_ = true;
    }
    Sprite& sprite = sprites_[place];
    if (!sprite.made) Make(sprite, dx, dy);
    stroker.AddRows(x, y, sprite.left.data(), sprite.rows);
    if (sprite.wide) stroker.AddRows(x + 8, y, sprite.right.data(), sprite.rows);
    return true;
}

void DiscSprites::Clear() {
    if (any_) std::fill(drawn_.begin(), drawn_.end(), std::uint16_t{0});
    any_ = false;
}

void DiscSprites::Make(Sprite& sprite, int x, int y) const {
    QImage image(kSide, kSide, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    const double scale = 1 << shift_;
    painter.drawEllipse(QRectF(x / scale, y / scale, (size_.cx - 1) / scale, (size_.cy - 1) / scale));
    painter.end();
    for (int row = 0; row < kSide; ++row) {
        std::array<std::uint8_t, kSide> alpha{};
        for (int i = 0; i < kSide; ++i)
            alpha[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(qAlpha(image.pixel(i, row)));
        const auto r = static_cast<std::size_t>(row);
        std::memcpy(&sprite.left[r], alpha.data(), 8);
        std::memcpy(&sprite.right[r], alpha.data() + 8, 8);
        if (sprite.left[r] != 0 || sprite.right[r] != 0) sprite.rows = row + 1;
        sprite.wide = sprite.wide || sprite.right[r] != 0;
    }
    sprite.made = true;
}

}  // namespace zel::qt
