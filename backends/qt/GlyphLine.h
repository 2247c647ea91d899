// Glyphs placed along baselines.
#pragma once

#include "backends/qt/Fonts.h"
#include "platform/graphics/Utf8.h"

#include <cmath>

namespace zel::qt {

// Gathers glyphs of one face at one size, to be drawn at once. Lengths in the painter's units.
class GlyphLine {
  public:
    // Texts that begin within `tolerance` of where the text before ends follow it: the rounding of their
    // given places is taken out.
    GlyphLine(Face& face, double em, double tolerance) : face_(&face), em_(em), tolerance_(tolerance) {}

    // Adds a plain text (Face::IsPlain) whose baseline begins at `at`.
    void Add(std::string_view text, const QPointF& at) {
        const bool follows = follows_ && std::fabs(at.x() - next_.x()) < tolerance_ &&
                             std::fabs(at.y() - next_.y()) < tolerance_;
        QPointF pen = follows ? next_ : at;
        for (std::size_t i = 0; i < text.size();) {
            const Face::Glyph& glyph = face_->GlyphOf(NextCodePoint(text, i));
            if (glyph.index != 0) {
                indexes_.append(glyph.index);
                positions_.append(wholeUnits_ ? QPointF(std::round(pen.x()), std::round(pen.y())) : pen);
            }
            pen.rx() += glyph.advance * em_;
        }
        next_ = pen;
        follows_ = true;
    }
    // For fine units: places take half the room in a file, and nobody sees the difference.
    void PlaceOnWholeUnits() { wholeUnits_ = true; }
    // The next text follows nothing.
    void Break() { follows_ = false; }

    bool IsEmpty() const { return indexes_.isEmpty(); }
    void Draw(QPainter& painter, const QColor& color) const {
        if (indexes_.isEmpty()) return;
        QGlyphRun run;
        run.setRawFont(face_->AtSize(em_));
        run.setGlyphIndexes(indexes_);
        run.setPositions(positions_);
        painter.setPen(color);
        painter.drawGlyphRun(QPointF(0, 0), run);
    }

  private:
    Face* face_;
    double em_;
    double tolerance_;
    QPointF next_;
    bool follows_ = false;
    bool wholeUnits_ = false;
    QList<quint32> indexes_;
    QList<QPointF> positions_;
};

}  // namespace zel::qt
