// Messages about things that went on with a substitute, such as a font family that is not installed.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zel {

using WarningHandler = std::function<void(const std::string& message)>;

// Receives each warning; the default writes it to standard error. Null goes back to the default. Answers the
// handler that was there before. Any thread may warn: the handler is called under a lock.
WarningHandler SetWarningHandler(WarningHandler handler);

// Passes `message` to the handler, but each different message only once in the life of the process.
void Warn(std::string_view message);

}  // namespace zel
