#include <zel/platform/Exception.h>
#include <zel/platform/MessageBox.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CMemoryException, CException)
IMPLEMENT_DYNAMIC(CNotSupportedException, CException)
IMPLEMENT_DYNAMIC(CResourceException, CException)
IMPLEMENT_DYNAMIC(CUserException, CException)
IMPLEMENT_DYNAMIC(CInvalidArgException, CException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)

BOOL CException::GetErrorMessage(char* buffer, UINT size) const {
    if (message_.IsEmpty() || size == 0) return FALSE;
    const std::size_t length =
        std::min<std::size_t>(static_cast<std::size_t>(message_.GetLength()), size - 1);
    std::memcpy(buffer, static_cast<const char*>(message_), length);
    buffer[length] = '\0';
    return TRUE;
}

int CException::ReportError(UINT type, UINT help) {
    return AfxMessageBox(message_.IsEmpty() ? "An error without a description." : message_, type, help);
}

int CFileException::ErrnoToCause(int error) {
    switch (error) {
        case 0:
            return none;
        case ENOENT:
            return fileNotFound;
        case ENOTDIR:
        case ENAMETOOLONG:
        case ELOOP:
            return badPath;
        case EMFILE:
        case ENFILE:
            return tooManyOpenFiles;
        case EACCES:
        case EPERM:
        case EROFS:
        case EISDIR:
            return accessDenied;
        case EBADF:
            return invalidFile;
        case ESPIPE:
        case EINVAL:
            return badSeek;
        case EIO:
            return hardIO;
        case ENOSPC:
        case EDQUOT:
        case EFBIG:
            return diskFull;
        default:
            return genericException;
    }
}

void AfxThrowMemoryException() {
    throw new CMemoryException("Out of memory.");
}

void AfxThrowNotSupportedException(const char* message) {
    throw new CNotSupportedException(message ? message : "The operation is not supported.");
}

void AfxThrowResourceException(const char* message) {
    throw new CResourceException(message ? message : "A graphics object could not be made.");
}

void AfxThrowInvalidArgException(const char* message) {
    throw new CInvalidArgException(message ? message : "An argument is outside its range.");
}

void AfxThrowArchiveException(int cause, const char* message) {
    static constexpr const char* kCauses[] = {"No error in the archive.",
                                              "The archive cannot be used.",
                                              "The archive is for reading only.",
                                              "The archive ends too early.",
                                              "The archive is for writing only.",
                                              "The archive refers to an object that is not in it.",
                                              "The archive holds an object of an unknown class.",
                                              "The archive holds a class of another version."};
    throw new CArchiveException(cause, message ? message : kCauses[std::clamp(cause, 0, 7)]);
}

namespace {

std::string Reason(int error) {
    return std::error_code(error, std::generic_category()).message();
}

[[noreturn]] void ThrowFile(int cause, int error, const char* fileName, const std::string& message) {
    throw new CFileException(cause, error, fileName ? fileName : "", message.c_str());
}

}  // namespace

void AfxThrowFileException(int cause, LONG osError, const char* fileName) {
    const std::string subject =
        fileName && *fileName ? "the file \"" + std::string(fileName) + "\"" : "a file";
    const std::string reason = osError > 0 ? Reason(osError) : "cause " + std::to_string(cause);
    ThrowFile(cause, osError, fileName, "Cannot use " + subject + ": " + reason);
}

void zel::ThrowFileError(const char* attempt, const char* fileName, int error) {
    ThrowFile(CFileException::ErrnoToCause(error), error, fileName,
              "Cannot " + std::string(attempt) + " \"" + fileName + "\": " + Reason(error));
}

std::string zel::TakeMessage(CException* e) {
    std::string message = e->Message().GetString();
    e->Delete();
    return message;
}
