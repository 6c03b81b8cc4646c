// The containers the calculators, rules and hosts share: a string map with the
// creating operator[], a string array, and lists/arrays of object pointers.
// POSITION is an opaque cursor, as the callers only test it for null.
#pragma once

#include <cstddef>
#include <map>
#include <string_view>
#include <vector>

#include "platform/cstring.h"

struct PositionTag;
using POSITION = PositionTag*;

// Root of the objects that CObList and CObArray hold.
class CObject {
public:
    virtual ~CObject() = default;
};

// Map from text to text. Iteration runs in key order, which makes output
// reproducible; callers must not rely on any order all the same.
// Orders keys as std::string does (bytes as unsigned chars, a prefix first).
// A key given as a view or as C text is compared as it stands, with no
// CString made for each step of a search; box keys are short, so the bytes
// are compared in place rather than through a library call.
struct KeyLess {
    using is_transparent = void;
    static bool Less(std::string_view a, std::string_view b) noexcept {
        const std::size_t n = a.size() < b.size() ? a.size() : b.size();
        for (std::size_t i = 0; i < n; ++i)
            if (a[i] != b[i]) return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[i]);
        return a.size() < b.size();
    }
    bool operator()(const CString& a, const CString& b) const noexcept { return Less(a.view(), b.view()); }
    bool operator()(const CString& a, std::string_view b) const noexcept { return Less(a.view(), b); }
    bool operator()(std::string_view a, const CString& b) const noexcept { return Less(a, b.view()); }
    bool operator()(const CString& a, const char* b) const noexcept { return Less(a.view(), b); }
    bool operator()(const char* a, const CString& b) const noexcept { return Less(a, b.view()); }
};

class CMapStringToString {
public:
    using Storage = std::map<CString, CString, KeyLess>;

    explicit CMapStringToString(int blockSize = 10) { (void)blockSize; }

    // Creates an empty entry when the key is missing: callers rely on this.
    CString& operator[](const char* key) { return map_[CString(key)]; }
    CString& operator[](const CString& key) { return map_[key]; }

    bool Lookup(const char* key, CString& value) const;
    // Pointer to the stored value, or null; adds nothing.
    const CString* PLookup(const char* key) const;
    void SetAt(const char* key, const char* value) { map_[CString(key)] = value; }
    bool RemoveKey(const char* key);
    void RemoveAll() noexcept { map_.clear(); }

    int GetCount() const noexcept { return static_cast<int>(map_.size()); }
    int GetSize() const noexcept { return GetCount(); }
    bool IsEmpty() const noexcept { return map_.empty(); }

    POSITION GetStartPosition() const noexcept;
    // Returns the entry at pos and moves pos on; null after the last entry.
    void GetNextAssoc(POSITION& pos, CString& key, CString& value) const;

    const Storage& items() const noexcept { return map_; }

private:
    Storage map_;
};

class CStringArray {
public:
    int GetSize() const noexcept { return static_cast<int>(items_.size()); }
    int GetCount() const noexcept { return GetSize(); }
    bool IsEmpty() const noexcept { return items_.empty(); }
    const CString& GetAt(int i) const { return items_.at(static_cast<std::size_t>(i)); }
    CString& ElementAt(int i) { return items_.at(static_cast<std::size_t>(i)); }
    const CString& operator[](int i) const { return GetAt(i); }
    CString& operator[](int i) { return ElementAt(i); }
    // Sets index i, growing the array with empty strings as needed.
    void SetAtGrow(int i, const CString& text);
    int Add(const CString& text) { items_.push_back(text); return GetSize() - 1; }
    void RemoveAll() noexcept { items_.clear(); }

    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::vector<CString> items_;
};

using CStringList = CStringArray;

// List of object pointers. It does not own what it holds.
class CObList {
public:
    explicit CObList(int blockSize = 10) { (void)blockSize; }

    POSITION AddTail(CObject* item);
    POSITION GetHeadPosition() const noexcept;
    // Returns the item at pos and moves pos on; null after the last item.
    CObject* GetNext(POSITION& pos) const;
    int GetCount() const noexcept { return static_cast<int>(items_.size()); }
    bool IsEmpty() const noexcept { return items_.empty(); }
    void RemoveAll() noexcept { items_.clear(); }

    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::vector<CObject*> items_;
};

// Array of object pointers. It does not own what it holds.
class CObArray {
public:
    int GetSize() const noexcept { return static_cast<int>(items_.size()); }
    CObject* GetAt(int i) const { return items_.at(static_cast<std::size_t>(i)); }
    CObject* operator[](int i) const { return GetAt(i); }
    void SetAtGrow(int i, CObject* item);
    // newSize 0 empties the array; the grow-by argument is accepted for form.
    void SetSize(int newSize, int growBy = -1);
    int Add(CObject* item) { items_.push_back(item); return GetSize() - 1; }
    void RemoveAll() noexcept { items_.clear(); }

private:
    std::vector<CObject*> items_;
};
