// Text whose characters cannot be drawn one after another.
#pragma once

#include <zel/platform/GraphicsDevice.h>

#include <span>
#include <string>
#include <string_view>

namespace zel {

// Whether a text (UTF-8) has characters that run from right to left, join or change with their neighbours, or
// stand above and below others. All other text is its characters, each at the end of the one before.
bool IsComplexText(std::string_view text);

// Whether the first character with a direction of its own runs from right to left, and so the whole line.
bool IsRightToLeft(std::string_view text);

// The text of all spans of a line.
std::string WholeOf(std::span<const TextSpan> spans);

}  // namespace zel
