// What the functions of the namespace zel throw.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

namespace zel {

// Thrown by value. what() says what was attempted, on what, and why it failed, as a whole sentence.
class Error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// A file could not be opened, read or written.
class FileError : public Error {
  public:
    FileError(const std::string& message, std::string path, int number)
        : Error(message), path_(std::move(path)), number_(number) {}

    const std::string& Path() const { return path_; }
    // The system's reason, as in errno; 0 where there is none.
    int Number() const { return number_; }

  private:
    std::string path_;
    int number_;
};

// What was to be read is not of the format that was expected, of a newer version, cut short or damaged; or
// what was to be written cannot be held by the format.
class FormatError : public Error {
  public:
    using Error::Error;
};

}  // namespace zel
