// Fields of persistent objects, written and read by one statement.
#pragma once

#include <zel/platform/Archive.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace zel {

// Stores each of `fields` when the archive is storing, loads it otherwise, in the order given.
template <class... Fields>
void Exchange(CArchive& ar, Fields&... fields) {
    if (ar.IsStoring()) {
        (void)(ar << ... << fields);
    } else {
        (void)(ar >> ... >> fields);
    }
}

inline bool IsComplete(CArchive& ar) {
    return ar.GetDialect() == CArchive::Dialect::COMPLETE;
}

// Whether the archive has the fields that documents have had since a format version.
inline bool HasSince(CArchive& ar, int version) {
    return IsComplete(ar) && ar.GetDialectVersion() >= version;
}

// A bool as one byte.
inline void ExchangeFlag(CArchive& ar, bool& flag) {
    BYTE byte = flag ? 1 : 0;
    Exchange(ar, byte);
    flag = byte != 0;
}

// A text as CString stores it.
inline void ExchangeText(CArchive& ar, std::string& text) {
    CString copy(text.c_str());
    Exchange(ar, copy);
    text = copy.GetString();
}

// A 32-bit count and the texts.
inline void ExchangeTexts(CArchive& ar, std::vector<std::string>& texts) {
    int count = static_cast<int>(texts.size());
    Exchange(ar, count);
    if (ar.IsLoading()) {
        ar.CheckCount(std::max(count, 0), 1);
        texts.assign(static_cast<std::size_t>(std::max(count, 0)), {});
    }
    for (std::string& text : texts) ExchangeText(ar, text);
}

// So many bytes as they lie in memory.
inline void ExchangeRaw(CArchive& ar, void* data, std::size_t bytes) {
    if (ar.IsStoring()) {
        ar.Write(data, bytes);
    } else {
        ar.ReadExact(data, bytes);
    }
}

// A 32-bit count and the elements as one raw block; a count of 0 or less loads as an empty list. A count that
// the bytes present cannot hold raises CArchiveException* before anything is allocated.
template <class T>
void ExchangeList(CArchive& ar, std::vector<T>& list) {
    static_assert(std::is_arithmetic_v<T>);
    int count = static_cast<int>(list.size());
    Exchange(ar, count);
    if (ar.IsStoring()) {
        if (!list.empty()) ar.Write(list.data(), list.size() * sizeof(T));
        return;
    }
    const auto size = static_cast<std::size_t>(std::max(count, 0));
    ar.CheckCount(static_cast<std::int64_t>(size), sizeof(T));
    list.clear();
    list.reserve(size);
    // Piece by piece: what a piece is cleared with is still near when it is filled.
    constexpr std::size_t kPiece = (std::size_t{1} << 18) / sizeof(T);
    while (list.size() < size) {
        const std::size_t begin = list.size();
        list.resize(std::min(size, begin + kPiece));
        ar.ReadExact(list.data() + begin, (list.size() - begin) * sizeof(T));
    }
}

// Reads an object that the caller owns from here on. An archive object of another class than T, a null
// object, and one that the archive has handed out before (it already has an owner) raise CArchiveException*.
template <class T>
std::unique_ptr<T> ReadOwned(CArchive& ar) {
    return std::unique_ptr<T>(static_cast<T*>(ar.ReadNewObject(T::GetThisClass()).release()));
}

}  // namespace zel
