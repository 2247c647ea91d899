// Growing arrays under the framework's names.
#pragma once

#include <zel/platform/Archive.h>
#include <zel/platform/Exception.h>
#include <zel/platform/Object.h>
#include <zel/platform/String.h>

#include <cstddef>
#include <vector>

using INT_PTR = std::ptrdiff_t;

namespace zel {

// The operations that all arrays share. An index out of range raises CInvalidArgException*.
template <class T>
class ArrayOf : public CObject {
  public:
    INT_PTR GetSize() const { return static_cast<INT_PTR>(items_.size()); }
    INT_PTR GetCount() const { return GetSize(); }
    INT_PTR GetUpperBound() const { return GetSize() - 1; }
    bool IsEmpty() const { return items_.empty(); }
    void SetSize(INT_PTR size) { items_.resize(static_cast<std::size_t>(size)); }
    const T& GetAt(INT_PTR i) const { return items_[Checked(i)]; }
    T& ElementAt(INT_PTR i) { return items_[Checked(i)]; }
    void SetAt(INT_PTR i, T item) { items_[Checked(i)] = std::move(item); }
    // Grows the array when `i` lies behind its end.
    void SetAtGrow(INT_PTR i, T item) {
        if (i < 0) AfxThrowInvalidArgException();
        if (i >= GetSize()) SetSize(i + 1);
        SetAt(i, std::move(item));
    }
    INT_PTR Add(T item) {
        items_.push_back(std::move(item));
        return GetUpperBound();
    }
    void InsertAt(INT_PTR i, T item, INT_PTR count = 1) {
        if (i < 0 || count < 0) AfxThrowInvalidArgException();
        if (i > GetSize()) SetSize(i);
        items_.insert(items_.begin() + i, static_cast<std::size_t>(count), std::move(item));
    }
    void RemoveAt(INT_PTR i, INT_PTR count = 1) {
        if (i < 0 || count < 0 || i + count > GetSize()) AfxThrowInvalidArgException();
        items_.erase(items_.begin() + i, items_.begin() + i + count);
    }
    void RemoveAll() { items_.clear(); }
    INT_PTR Append(const ArrayOf& other) {
        const INT_PTR first = GetSize();
        const std::vector<T> added = other.items_;
        items_.insert(items_.end(), added.begin(), added.end());
        return first;
    }
    void Copy(const ArrayOf& other) { items_ = other.items_; }
    T* GetData() { return items_.data(); }
    const T* GetData() const { return items_.data(); }
    const T& operator[](INT_PTR i) const { return GetAt(i); }
    T& operator[](INT_PTR i) { return ElementAt(i); }

  protected:
    std::size_t Checked(INT_PTR i) const {
        if (i < 0 || i >= GetSize()) AfxThrowInvalidArgException();
        return static_cast<std::size_t>(i);
    }
    // Stores the count, or loads it, checks it against the bytes present and sizes the array.
    void ExchangeCount(CArchive& ar, std::size_t leastElementSize) {
        if (ar.IsStoring()) {
            ar.WriteCount(items_.size());
            return;
        }
        const std::uint64_t count = ar.ReadCount();
        ar.CheckCount(static_cast<std::int64_t>(count), leastElementSize);
        items_.assign(count, T());
    }

    std::vector<T> items_;
};

}  // namespace zel

// Pointers to objects; the array does not own them.
class CObArray : public zel::ArrayOf<CObject*> {
    DECLARE_SERIAL(CObArray)
  public:
    void Serialize(CArchive& ar) override;
};

class CUIntArray : public zel::ArrayOf<UINT> {
    DECLARE_DYNAMIC(CUIntArray)
  public:
    void Serialize(CArchive& ar) override;
};

class CStringArray : public zel::ArrayOf<CString> {
    DECLARE_SERIAL(CStringArray)
  public:
    void Serialize(CArchive& ar) override;
};
