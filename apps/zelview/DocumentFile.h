// The file of a document, and what protects it.
#pragma once

#include "apps/zelview/History.h"
#include "apps/zelview/Progress.h"

#include <QDateTime>
#include <QLockFile>
#include <QString>

#include <memory>

namespace zel::view {

// Where a document lives: its path, the file as we last knew it, the copy of unsaved work beside it, and a
// lock that says which program has it open. A document without a path keeps its copy in the program's own
// folder.
class DocumentFile {
  public:
    DocumentFile() { Attach({}); }
    ~DocumentFile();
    DocumentFile(const DocumentFile&) = delete;
    DocumentFile& operator=(const DocumentFile&) = delete;

    // Stands for another file from now on; the copy of the one before is removed.
    void Attach(const QString& path);
    const QString& Path() const { return path_; }
    // The name for people.
    QString Name() const;
    // Whether another program holds the file.
    bool IsOpenElsewhere() const { return !locked_; }

    // Writes beside the file and renames. Throws CFileException*; Cancelled, and the old file stays.
    void Save(const Bytes& state, Work& work);
    // Whether somebody else has changed or removed the file since it was attached or saved.
    bool HasChanged() const;
    // The same, once for each change.
    bool HasNews();
    // Takes the file as it is for the one that we know.
    void Acknowledge();

    // The copy of unsaved work: written when the state is a new one, and gone when the work is saved or given
    // up. A copy that an earlier run has left is offered once, by CopyLeft.
    void KeepCopy(const Bytes& state, std::uint64_t number);
    void DropCopy();
    QString CopyLeft() const;
    // Where the copy of a document is kept.
    static QString CopyPath(const QString& path);

  private:
    struct Stamp {
        QDateTime changed;
        qint64 size = -1;
        bool operator==(const Stamp&) const = default;
    };
    static Stamp StampOf(const QString& path);
    void Unlock();

    QString path_;
    Stamp known_;
    Stamp noticed_;
    std::unique_ptr<QLockFile> lock_;
    bool locked_ = false;
    std::uint64_t copied_ = 0;
};

}  // namespace zel::view
