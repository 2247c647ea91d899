#include "apps/zelview/DocumentFile.h"

#include <zel/platform/File.h>
#include <zel/platform/SafeFile.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>

namespace zel::view {
namespace {

constexpr std::size_t kPiece = std::size_t{1} << 20;  // bytes written between looks at the user's wishes

void Write(const QString& path, const Bytes& state, Work& work) {
    const QByteArray name = QFile::encodeName(path);
    SafeFile target(name.constData());
    CFile file(target.TemporaryPath().c_str(), CFile::modeReadWrite);
    work.all = static_cast<int>(state.size() / kPiece + 1);
    for (std::size_t at = 0; at < state.size(); at += kPiece) {
        work.Check();
        file.Write(state.data() + at, std::min(kPiece, state.size() - at));
        ++work.done;
    }
    file.Close();
    work.Check();
    target.Commit();
}

QString Beside(const QString& path, const char* ending) {
    const QFileInfo file(path);
    return file.absolutePath() + "/." + file.fileName() + ending;
}

}  // namespace

DocumentFile::~DocumentFile() {
    Unlock();
}

void DocumentFile::Unlock() {
    if (lock_ && locked_) lock_->unlock();
    lock_.reset();
    locked_ = false;
}

QString DocumentFile::CopyPath(const QString& path) {
    if (!path.isEmpty()) return Beside(path, ".unsaved");
    const QString folder = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
    QDir().mkpath(folder);
    return folder + "/untitled.unsaved";
}

void DocumentFile::Attach(const QString& path) {
    Unlock();
    path_ = path.isEmpty() ? QString() : QFileInfo(path).absoluteFilePath();
    lock_ = std::make_unique<QLockFile>(CopyPath(path_) + ".lock");
    lock_->setStaleLockTime(0);  // held as long as its process lives
    locked_ = lock_->tryLock();
    // A folder that cannot be written to is no other program.
    if (!locked_ && lock_->error() != QLockFile::LockFailedError) locked_ = true;
    copied_ = 0;
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
    Write(path_, state, work);
    Acknowledge();
    DropCopy();
}

void DocumentFile::KeepCopy(const Bytes& state, std::uint64_t number) {
    if (number == copied_ || IsOpenElsewhere()) return;
    Work unattended;
    Write(CopyPath(path_), state, unattended);
    copied_ = number;
}

// A copy that another program keeps is not ours to remove.
void DocumentFile::DropCopy() {
    if (!IsOpenElsewhere()) QFile::remove(CopyPath(path_));
    copied_ = 0;
}

QString DocumentFile::CopyLeft() const {
    const QString copy = CopyPath(path_);
    return !IsOpenElsewhere() && QFile::exists(copy) ? copy : QString();
}

}  // namespace zel::view
