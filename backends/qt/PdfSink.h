// What a PDF writer without forms writes, with forms.
#pragma once

#include "backends/qt/FileSink.h"

#include <QByteArray>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace zel::qt {

// Passes on what Qt's writer writes. Its pictures are objects of the file, which pages show: the objects of
// one can be exchanged for others, such as a form that is drawn again and again. The table of the objects'
// places at the end of the file is corrected.
class PdfSink : public FileSink {
  public:
    using FileSink::FileSink;

    // From here on what comes is kept back, until Taken says which objects it was: their numbers, in order.
    // None, with what came passed on, when it was something else than so many whole objects.
    void Take();
    std::vector<int> Taken(std::size_t count);
    // Writes an object in the place of one that was taken: its dictionary, without length, and its stream.
    void WriteStream(int object, const std::string& dictionary, const std::string& stream);
    // Keeps the rest of the file back, until Complete writes it with the places corrected. False when that
    // is not needed or not possible.
    void TakeRest();
    bool Complete();

  protected:
    qint64 writeData(const char* data, qint64 count) override;

  private:
    qint64 PassOn(const QByteArray& bytes);
    std::int64_t ShiftAt(std::int64_t place) const;

    bool taking_ = false;
    QByteArray taken_;
    std::int64_t heard_ = 0;    // bytes of the writer
    std::int64_t written_ = 0;  // bytes of the file
    // From places of the writer on: how much farther back they are in the file.
    std::map<std::int64_t, std::int64_t> shifts_;
    std::map<int, std::int64_t> places_;  // of exchanged objects
};

}  // namespace zel::qt
