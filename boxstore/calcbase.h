// CBaseCalc: the box store every calculator is written against. A form is a
// map from box keys to text; reads and writes go through a run's prefix, a
// computed number never replaces a user's override (text ending in "!"), and
// every computed number is kept in a side store.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "common/basics.h"
#include "common/errors.h"
#include "platform/collections.h"
#include "platform/cstring.h"

// A run's index over the host's box map, built by one walk of the map when
// the run starts: a full key to the text the map stores for it (a map node
// never moves while the run lasts, and nothing removes one) and to its number
// in m_Values. A key without text in the index is missing: the store adds
// what it writes to the index, and when the map has grown by entries the
// store did not make (a liability driver reading through the creating
// operator[]), the next lookup walks the map again. Keys are held inline up
// to 16 bytes; a longer key, or a full table, goes to the map itself.
class BoxIndex {
public:
    // Half a cache line. A slot is taken when it carries the run's stamp, so
    // a table is emptied for the next run by moving the stamp on, not by a
    // sweep; an all-zero slot (Slot{}) is empty in every run.
    struct Slot {
        std::uint64_t head, tail;  // the key's bytes, zero-padded
        CString* text;
        std::uint32_t value;  // 1 + the key's place in m_Values, or 0
        std::uint8_t length;
        std::uint16_t stamp;
    };
    static constexpr std::size_t kMaxKey = 16;
    BoxIndex() = default;
    BoxIndex(const BoxIndex&) = delete;
    BoxIndex& operator=(const BoxIndex&) = delete;
    ~BoxIndex() { Stop(); }
    void Start(const CMapStringToString& boxes);
    void Walk(const CMapStringToString& boxes);
    // Walks again when the map has grown by entries the store did not make.
    void Sync(const CMapStringToString& boxes) {
        if (boxes.items().size() - made != mapSize) Walk(boxes);
    }
    void Stop() noexcept;
    bool Active() const noexcept { return slots_ != nullptr; }
    // The key's slot, claimed if new; null when the key cannot be indexed.
    Slot* Find(std::string_view key);
    // Entries the store itself added to the map during the run, and the
    // count of all others: the map's size at the start, while none came.
    std::size_t made = 0;
    std::size_t mapSize = 0;

private:
    Slot* slots_ = nullptr;  // the thread's table, or own_ when a run is already using that
    std::size_t size_ = 0;
    std::size_t used_ = 0;
    int shift_ = 0;  // 64 less the table's bits
    std::uint16_t stamp_ = 0;
    bool borrowed_ = false;
    std::vector<Slot> own_;
};

// The side store of computed numbers: full key to the last number SetBox
// was given, in the order keys were first written. A run finds a key's place
// through the index; anything else searches.
class ValueStore {
public:
    using Item = std::pair<CString, double>;
    // The key's place, appended (with 0) if new.
    std::size_t Place(std::string_view key);
    // Appends a key known to be new; its place.
    std::size_t Append(std::string_view key);
    double At(std::size_t place) const { return items_[place].second; }
    const double* Find(std::string_view key) const;
    double& operator[](std::size_t place) { return items_[place].second; }
    std::size_t size() const noexcept { return items_.size(); }
    void reserve(std::size_t n) { items_.reserve(n); }
    auto begin() const noexcept { return items_.begin(); }
    auto end() const noexcept { return items_.end(); }

private:
    std::vector<Item> items_;
};

class CBaseCalc {
public:
    CBaseCalc();
    // Shows the errors (when m_ShowErrors is set) and frees them.
    virtual ~CBaseCalc();
    CBaseCalc(const CBaseCalc&) = delete;
    CBaseCalc& operator=(const CBaseCalc&) = delete;

    virtual double Result() { return 0.0; }
    virtual void Calc() = 0;

    CString GetBoxText(const char* key) const;
    double GetBox(const char* key) const;
    double SumBoxes(const char* format, int first, int last) const;
    // GetBox summed over the keys, left to right.
    double Sum(std::initializer_list<const char*> keys) const;
    static CString BoxKey(const char* format, int number);
    void SetBox(const char* key, double value);
    double GetValue(const char* key) const;
    double BoxLength(const char* key) const { return GetBoxText(key).GetLength(); }
    double BoxDateOk(const char* key) const;
    double AddError(int code, const char* key, double ok, const char* message);
    void ShowErrors(const CStringList* list);

    // Writes "zero" when the box reads as 0 (regardless of an override mark).
    void MarkZero(const char* key);
    // Copies every pair of a liability result map into the box map and into
    // m_Changed, replacing even an override.
    void TakeOverResults(const CMapStringToString& results);
    // A direct write under m_Prefix that also lands in m_Changed.
    void WriteChanged(const char* key, const CString& text);

    // The stored text of the box under the run's prefix, or null.
    const CString* FindBox(const char* key) const;

    CMapStringToString* m_pBoxes = nullptr;
    ValueStore m_Values;
    CMapStringToString m_Changed;
    CString m_WritePrefix;
    CString m_Prefix;
    int m_NoWrite = 1;
    int m_Decimals = 0;
    int m_Reserved = 0;
    int m_ShowErrors = 1;
    CObList m_Errors;

    // Set up by Helper for the length of Calc.
    mutable BoxIndex m_Index;

private:
    const CString* LookupFull(std::string_view full) const;
    CString& BoxFor(std::string_view full);
};

// Points the calculator at the box map and prefix, runs Calc, and copies the
// texts the run wrote outside SetBox (m_Changed) into the result map.
void Helper(CBaseCalc* calc, CMapStringToString* boxes, CString* prefix, CMapStringToString* out);

CString xmlerrors(const CBaseCalc* calc);
