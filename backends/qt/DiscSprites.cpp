#include "backends/qt/DiscSprites.h"

#include "backends/qt/WideRegisters.h"

#include <QImage>
#include <QPainter>

#include <algorithm>
#include <cstring>

namespace zel::qt {

DiscSprites::DiscSprites(int width, int height, int shift)
    : width_(width), height_(height), shift_(shift), placeShift_(std::max(0, shift - 2)) {}

bool DiscSprites::CanDraw(const CSize& size) const {
    const int limit = (kSide - 2) << shift_;
    return size.cx >= 1 && size.cy >= 1 && size.cx <= limit && size.cy <= limit;
}

void DiscSprites::SetSize(const CSize& size) {
    if (drawn_.empty()) drawn_.resize(static_cast<std::size_t>(width_) * static_cast<std::size_t>(height_));
    if (size == size_) return;
    size_ = size;
    for (Sprite& sprite : sprites_) sprite = {};
    Clear();
}

void DiscSprites::Draw(Stroker& stroker, int x, int y, std::size_t place) {
    Sprite& sprite = sprites_[place];
    if (!sprite.made) {
        const int perPixel = shift_ - placeShift_, mask = (1 << perPixel) - 1;
        const int dx = static_cast<int>(place) & mask, dy = static_cast<int>(place) >> perPixel;
        Make(sprite, dx << placeShift_, dy << placeShift_);
    }
    stroker.AddRows(x, y, sprite.left.data(), sprite.rows);
    if (sprite.wide) stroker.AddRows(x + 8, y, sprite.right.data(), sprite.rows);
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
    LeaveWideRegisters();
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
