// The framework's exceptions: thrown as pointers, released with Delete() by whoever catches them.
#pragma once

#include <zel/platform/Object.h>
#include <zel/platform/String.h>

// Carries a sentence that says what was attempted, on what, and why it failed.
//
//     try { ... } catch (CException* e) { Show(e->Message()); e->Delete(); }
class CException : public CObject {
    DECLARE_DYNAMIC(CException)
  public:
    CException() = default;
    explicit CException(const char* message) : message_(message) {}

    void Delete() { delete this; }
    const CString& Message() const { return message_; }
    // Copies the message into a buffer of `size` bytes, cut and terminated; FALSE when there is no message.
    virtual BOOL GetErrorMessage(char* buffer, UINT size) const;
    // Shows the message in a message box (see AfxMessageBox) and answers its button.
    virtual int ReportError(UINT type = 0, UINT help = 0);

  private:
    CString message_;
};

class CMemoryException : public CException {
    DECLARE_DYNAMIC(CMemoryException)
  public:
    using CException::CException;
};

class CNotSupportedException : public CException {
    DECLARE_DYNAMIC(CNotSupportedException)
  public:
    using CException::CException;
};

class CResourceException : public CException {
    DECLARE_DYNAMIC(CResourceException)
  public:
    using CException::CException;
};

class CUserException : public CException {
    DECLARE_DYNAMIC(CUserException)
  public:
    using CException::CException;
};

class CInvalidArgException : public CException {
    DECLARE_DYNAMIC(CInvalidArgException)
  public:
    using CException::CException;
};

class CArchiveException : public CException {
    DECLARE_DYNAMIC(CArchiveException)
  public:
    enum { none, genericException, readOnly, endOfFile, writeOnly, badIndex, badClass, badSchema };

    CArchiveException(int cause, const char* message) : CException(message), m_cause(cause) {}
    int m_cause;
};

class CFileException : public CException {
    DECLARE_DYNAMIC(CFileException)
  public:
    enum {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    CFileException(int cause, LONG osError, const char* fileName, const char* message)
        : CException(message), m_cause(cause), m_lOsError(osError), m_strFileName(fileName) {}
    // The cause that stands for an errno value.
    static int ErrnoToCause(int error);

    int m_cause;
    LONG m_lOsError;  // errno
    CString m_strFileName;
};

[[noreturn]] void AfxThrowMemoryException();
[[noreturn]] void AfxThrowNotSupportedException(const char* message = nullptr);
[[noreturn]] void AfxThrowResourceException(const char* message = nullptr);
[[noreturn]] void AfxThrowInvalidArgException(const char* message = nullptr);
// `message` is a whole sentence; without one the cause is put into words.
[[noreturn]] void AfxThrowArchiveException(int cause, const char* message = nullptr);
[[noreturn]] void AfxThrowFileException(int cause, LONG osError = -1, const char* fileName = nullptr);

namespace zel {
// Throws CFileException* "Cannot <attempt> "<fileName>": <reason of errno value `error`>".
[[noreturn]] void ThrowFileError(const char* attempt, const char* fileName, int error);
// The message of `e`, which is deleted: for programs that report and go on.
std::string TakeMessage(CException* e);
}  // namespace zel
