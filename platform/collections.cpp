#include "platform/collections.h"

#include <cstdint>

namespace {
// Cursors over vectors are the index plus one, so that null marks the end.
POSITION indexToPosition(std::size_t index) {
    return reinterpret_cast<POSITION>(static_cast<std::uintptr_t>(index + 1));
}
std::size_t positionToIndex(POSITION pos) {
    return static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(pos)) - 1;
}
}  // namespace

bool CMapStringToString::Lookup(const char* key, CString& value) const {
    const CString* found = PLookup(key);
    if (!found) return false;
    value = *found;
    return true;
}

const CString* CMapStringToString::PLookup(const char* key) const {
    auto it = map_.find(std::string_view(key ? key : ""));
    return it == map_.end() ? nullptr : &it->second;
}

bool CMapStringToString::RemoveKey(const char* key) {
    auto it = map_.find(std::string_view(key ? key : ""));
    if (it == map_.end()) return false;
    map_.erase(it);
    return true;
}

// A map cursor points at the stored pair; the next one is found by key, so a
// cursor stays valid while other entries are added.
POSITION CMapStringToString::GetStartPosition() const noexcept {
    if (map_.empty()) return nullptr;
    return reinterpret_cast<POSITION>(const_cast<Storage::value_type*>(&*map_.begin()));
}

void CMapStringToString::GetNextAssoc(POSITION& pos, CString& key, CString& value) const {
    const auto* entry = reinterpret_cast<const Storage::value_type*>(pos);
    if (!entry) return;
    key = entry->first;
    value = entry->second;
    auto next = map_.upper_bound(entry->first);
    pos = next == map_.end() ? nullptr
                             : reinterpret_cast<POSITION>(const_cast<Storage::value_type*>(&*next));
}

void CStringArray::SetAtGrow(int i, const CString& text) {
    if (i < 0) return;
    auto index = static_cast<std::size_t>(i);
    if (index >= items_.size()) items_.resize(index + 1);
    items_[index] = text;
}

POSITION CObList::AddTail(CObject* item) {
    items_.push_back(item);
    return indexToPosition(items_.size() - 1);
}

POSITION CObList::GetHeadPosition() const noexcept {
    return items_.empty() ? nullptr : indexToPosition(0);
}

CObject* CObList::GetNext(POSITION& pos) const {
    if (!pos) return nullptr;
    std::size_t index = positionToIndex(pos);
    if (index >= items_.size()) { pos = nullptr; return nullptr; }
    pos = index + 1 < items_.size() ? indexToPosition(index + 1) : nullptr;
    return items_[index];
}

void CObArray::SetAtGrow(int i, CObject* item) {
    if (i < 0) return;
    auto index = static_cast<std::size_t>(i);
    if (index >= items_.size()) items_.resize(index + 1, nullptr);
    items_[index] = item;
}

void CObArray::SetSize(int newSize, int growBy) {
    (void)growBy;
    items_.resize(newSize > 0 ? static_cast<std::size_t>(newSize) : 0, nullptr);
}
