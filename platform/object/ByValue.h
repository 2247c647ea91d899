// Between the framework, which throws pointers, and the functions of the namespace zel, which throw by value.
#pragma once

#include <zel/platform/Exception.h>

namespace zel {

// Deletes `e` and throws what stands for it: FileError, FormatError or Error.
[[noreturn]] void ThrowByValue(CException* e);

// Returns what `action` returns. A framework exception that leaves it is thrown on by value.
template <class Action>
decltype(auto) ByValue(Action&& action) {
    try {
        return action();
    } catch (CException* e) {
        ThrowByValue(e);
    }
}

}  // namespace zel
