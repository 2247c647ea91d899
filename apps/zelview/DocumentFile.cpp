#include "apps/zelview/DocumentFile.h"

#include <zel/platform/Exception.h>
#include <zel/platform/SafeFile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <unistd.h>

namespace zel::view {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20;  // bytes written between looks at the user's wishes

constexpr int kMostCopies = 64;  // of one document

void Write(const QString& path, SafeFile::Kind kind, const Bytes& state, Work& work) {
    SafeFile target(QFile::encodeName(path).toStdString(), kind);
    work.all = static_cast<int>(state.size() / kPiece + 1);
    for (std::size_t at = 0; at < state.size(); at += kPiece) {
        work.Check();
        target.Write(state.data() + at, std::min(kPiece, state.size() - at));
        ++work.done;
    }
    work.Check();
    target.Commit();
}

QString Beside(const QString& path, const QString& ending) {
    const QFileInfo file(path);
    return file.absolutePath() + "/." + file.fileName() + ending;
}

// Others can put files where they may write; their work is not the user's.
bool IsOwnFile(const QString& path) {
    const QFileInfo file(path);
    return file.isFile() && !file.isSymLink() && file.ownerId() == ::geteuid();
}

bool IsTaken(const QString& path) {
    const QFileInfo file(path);
    return file.exists() || file.isSymLink();
}

// Held as long as its process lives; null when another one holds it. A folder that cannot be written to is no
// other program.
std::unique_ptr<QLockFile> LockOf(const QString& copy) {
    auto lock = std::make_unique<QLockFile>(copy + ".lock");
    lock->setStaleLockTime(0);
    if (!lock->tryLock() && lock->error() == QLockFile::LockFailedError) lock.reset();
    return lock;
}

}  // namespace

QString DocumentFile::CopyPath(const QString& path, int slot) {
    const QString ending = slot == 0 ? QStringLiteral(".unsaved") : QStringLiteral(".unsaved-%1").arg(slot);
    if (!path.isEmpty()) return Beside(path, ending);
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    return folder + "/untitled" + ending;
}

bool DocumentFile::Hold(int slot) {
    auto lock = LockOf(CopyPath(path_, slot));
    if (!lock) return false;
    lock_ = std::move(lock);
    slot_ = slot;
    ours_ = false;
    return true;
}

// Copies that were left stay where they are until somebody has decided about them.
void DocumentFile::HoldFree() {
    lock_.reset();
    slot_ = -1;
    ours_ = false;
    copied_ = 0;
    for (int slot = 0; slot < kMostCopies && slot_ < 0; ++slot) {
        if (!IsTaken(CopyPath(path_, slot))) Hold(slot);
    }
}

void DocumentFile::Attach(const QString& path) {
    lock_.reset();
    path_ = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    later_.clear();
    elsewhere_ = false;
    for (int slot = 0; slot < kMostCopies && !path_.isEmpty(); ++slot) {
        const QString copy = CopyPath(path_, slot);
        if (QFile::exists(copy + ".lock") && !LockOf(copy)) elsewhere_ = true;
    }
    HoldFree();
    Acknowledge();
}

QString DocumentFile::Name() const {
    return path_.isEmpty() ? QStringLiteral("Untitled") : QFileInfo(path_).fileName();
}

DocumentFile::Stamp DocumentFile::StampOf(const QString& path) {
    const QFileInfo file(path);
    return file.exists() ? Stamp{file.lastModified(), file.size()} : Stamp{};
}

void DocumentFile::Acknowledge() {
    noticed_ = known_ = path_.isEmpty() ? Stamp{} : StampOf(path_);
}

bool DocumentFile::HasChanged() const {
    return !path_.isEmpty() && !(StampOf(path_) == known_);
}

bool DocumentFile::HasNews() {
    const Stamp now = path_.isEmpty() ? Stamp{} : StampOf(path_);
    if (now == noticed_) return false;
    noticed_ = now;
    return HasChanged();
}

void DocumentFile::Save(const Bytes& state, Work& work) {
    Write(path_, SafeFile::Kind::DOCUMENT, state, work);
    Acknowledge();
    DropCopy();
}

void DocumentFile::KeepCopy(const Bytes& state, std::uint64_t number) {
    if (number == copied_) return;
    const QString copy = CopyPath(path_, std::max(slot_, 0));
    if (slot_ < 0) ThrowFileError("keep a copy beside", QFile::encodeName(copy), EEXIST);
    Work unattended;
    Write(copy, SafeFile::Kind::PRIVATE, state, unattended);
    ours_ = true;
    copied_ = number;
}

void DocumentFile::DropCopy() {
    if (ours_) QFile::remove(CopyPath(path_, slot_));
    ours_ = false;
    copied_ = 0;
}

QString DocumentFile::TakeLeft() {
    for (int slot = 0; slot < kMostCopies; ++slot) {
        QString copy = CopyPath(path_, slot);
        if (slot == slot_ || later_.contains(slot) || !IsOwnFile(copy) || !Hold(slot)) continue;
        ours_ = true;
        copied_ = 0;
        return copy;
    }
    return {};
}

void DocumentFile::LeaveForLater() {
    later_.insert(slot_);
    HoldFree();
}

bool DocumentFile::HasUntitledLeft() {
    DocumentFile untitled;
    return !untitled.TakeLeft().isEmpty();
}

}  // namespace zel::view
