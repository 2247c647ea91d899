#include "platform/object/ByValue.h"

#include <zel/platform/Error.h>

#include <algorithm>

namespace zel {

void ThrowByValue(CException* e) {
    if (const auto* file = dynamic_cast<CFileException*>(e)) {
        const std::string path = file->m_strFileName.GetString();
        const int number = std::max(0, static_cast<int>(file->m_lOsError));
        throw FileError(TakeMessage(e), path, number);
    }
    if (dynamic_cast<CArchiveException*>(e)) throw FormatError(TakeMessage(e));
    throw Error(TakeMessage(e));
}

}  // namespace zel
