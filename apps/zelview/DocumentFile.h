// The file of a document, and what protects it.
#pragma once

#include "apps/zelview/History.h"
#include "apps/zelview/Progress.h"

#include <QDateTime>
#include <QLockFile>
#include <QString>

#include <memory>
#include <set>

namespace zel::view {

// Where a document lives: its path, the file as we last knew it, and the copy of unsaved work beside it. Each
// window that has the document open keeps a copy of its own, with a lock that says that it lives. A document
// without a path keeps its copies in the program's own folder.
class DocumentFile {
  public:
    DocumentFile() { Attach({}); }
    DocumentFile(const DocumentFile&) = delete;
    DocumentFile& operator=(const DocumentFile&) = delete;

    // Stands for another file from now on. The copy of the one before stays, unless it was dropped.
    void Attach(const QString& path);
    const QString& Path() const { return path_; }
    // The name for people.
    QString Name() const;
    // Whether another window had the file open when it was attached.
    bool IsOpenElsewhere() const { return elsewhere_; }

    // Writes beside the file and renames. Throws CFileException*; Cancelled, and the old file stays.
    void Save(const Bytes& state, Work& work);
    // Whether somebody else has changed or removed the file since it was attached or saved.
    bool HasChanged() const;
    // The same, once for each change.
    bool HasNews();
    // Takes the file as it is for the one that we know.
    void Acknowledge();

    // The copy of unsaved work: written when the state is a new one, and gone when the work is saved or given
    // up. Throws CFileException*.
    void KeepCopy(const Bytes& state, std::uint64_t number);
    void DropCopy();
    // A copy that an earlier run has left, one of the user's own; empty when there is no further one. It is
    // the document's copy from now on, until it is dropped or left for later.
    QString TakeLeft();
    void LeaveForLater();
    // Whether earlier runs have left work on drawings that never had a file.
    static bool HasUntitledLeft();
    // Where the copies of a document are kept.
    static QString CopyPath(const QString& path, int slot = 0);

  private:
    struct Stamp {
        QDateTime changed;
        qint64 size = -1;
        bool operator==(const Stamp&) const = default;
    };
    static Stamp StampOf(const QString& path);
    bool Hold(int slot);
    void HoldFree();

    QString path_;
    Stamp known_;
    Stamp noticed_;
    int slot_ = -1;  // of our copy; -1 when there is no room for it
    std::unique_ptr<QLockFile> lock_;
    bool elsewhere_ = false;
    bool ours_ = false;  // the copy in the slot, if there is one
    std::set<int> later_;
    std::uint64_t copied_ = 0;
};

}  // namespace zel::view
