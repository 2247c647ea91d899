#include "backends/qt/FileSink.h"

#include <zel/platform/Exception.h>

#include <utility>

namespace zel::qt {
namespace {

constexpr qsizetype kPiece = qsizetype{1} << 16;

}  // namespace

FileSink::FileSink(SafeFile& file) : file_(file) {
    held_.reserve(kPiece);
    open(QIODevice::WriteOnly);
}

FileSink::~FileSink() {
    if (failure_) failure_->Delete();
}

void FileSink::Check() {
    Flush();
    if (failure_) throw std::exchange(failure_, nullptr);
}

qint64 FileSink::readData(char*, qint64) {
    return -1;
}

qint64 FileSink::writeData(const char* data, qint64 count) {
    held_.append(data, count);
    if (held_.size() >= kPiece) Flush();
    return failed_ ? -1 : count;
}

// No exception may pass through Qt's writers: the first is kept for Check.
bool FileSink::Flush() {
    if (!failed_ && !held_.isEmpty()) {
        try {
            file_.Write(held_.constData(), static_cast<std::size_t>(held_.size()));
        } catch (CFileException* failure) {
            failure_ = failure;
            failed_ = true;
        }
    }
    held_.clear();
    held_.reserve(kPiece);
    return !failed_;
}

}  // namespace zel::qt
