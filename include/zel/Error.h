// What the functions of the namespace zel throw.
#pragma once

#include <stdexcept>

namespace zel {

// Thrown by value. what() says what was attempted, on what, and why it failed, as a whole sentence.
class Error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace zel
