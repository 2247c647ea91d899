// Where Qt's writers put the bytes of a file.
#pragma once

#include <zel/platform/SafeFile.h>

#include <QByteArray>
#include <QIODevice>

class CFileException;

namespace zel::qt {

// A device of Qt's that writes into a SafeFile, in large pieces. Qt's writers tell of a full disk late or
// not at all; Check does, whatever they answered.
class FileSink : public QIODevice {
  public:
    explicit FileSink(SafeFile& file);
    ~FileSink() override;

    // Writes what is still held; raises the file's first failure, once.
    void Check();
    bool isSequential() const override { return true; }

  protected:
    qint64 readData(char* data, qint64 most) override;
    qint64 writeData(const char* data, qint64 count) override;

  private:
    bool Flush();

    SafeFile& file_;
    QByteArray held_;
    CFileException* failure_ = nullptr;
    bool failed_ = false;
};

}  // namespace zel::qt
