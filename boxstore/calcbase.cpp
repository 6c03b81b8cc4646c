#include "boxstore/calcbase.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <optional>
#include <span>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {
// The one error dialog of the module, made on first use.
CErrorsDlg& errorsDialog() {
    static CErrorsDlg dialog(nullptr);
    return dialog;
}
}  // namespace

// A full return computes a few hundred boxes: room for them up front spares rehashing.
CBaseCalc::CBaseCalc() { m_Values.reserve(512); }

CBaseCalc::~CBaseCalc() {
    if (m_ShowErrors) ShowErrors(nullptr);
    for (CObject* error : m_Errors) delete error;
    m_Errors.RemoveAll();
}

namespace {
// The one "%d" of a row format splits it into the text before and after the number.
struct RowFormat {
    std::string_view head, tail;
    bool numbered = false;
};
RowFormat splitRowFormat(const char* format) {
    const std::string_view text(format ? format : "");
    const std::size_t at = text.find("%d");
    if (at == std::string_view::npos || text.find('%', at + 2) != std::string_view::npos ||
        text.substr(0, at).find('%') != std::string_view::npos)
        return {text, {}, false};
    return {text.substr(0, at), text.substr(at + 2), true};
}

// The number a key carries in place of "%d", if it is exactly what "%d" prints.
bool rowNumber(std::string_view digits, int& number) {
    if (digits.empty()) return false;
    const bool negative = digits.front() == '-';
    const std::string_view body = negative ? digits.substr(1) : digits;
    if (body.empty() || (body.front() == '0' && body.size() > 1) || (negative && body == "0")) return false;
    const auto [end, ec] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    return ec == std::errc() && end == digits.data() + digits.size();
}
}  // namespace

namespace {
// Each thread keeps its table from run to run: a run only moves the stamp on.
struct ThreadTable {
    std::vector<BoxIndex::Slot> slots;
    std::uint16_t stamp = 0;
    bool busy = false;
};
thread_local ThreadTable threadTable;

// The next stamp of a table; when the count wraps, the table is swept once.
std::uint16_t nextStamp(std::vector<BoxIndex::Slot>& slots, std::uint16_t stamp) {
    if (++stamp != 0) return stamp;
    std::fill(slots.begin(), slots.end(), BoxIndex::Slot{});
    return 1;
}
}  // namespace

void BoxIndex::Start(const CMapStringToString& boxes) {
    Stop();
    // Room for the map and for 256 keys more, at most two thirds full.
    std::size_t size = 256;
    while (2 * size < 3 * (boxes.items().size() + 256)) size *= 2;
    static_assert(std::is_trivial_v<Slot>);
    // A run inside a run (a calculator calling another) has a table of its own.
    std::vector<Slot>& table = threadTable.busy ? own_ : threadTable.slots;
    std::uint16_t& stamp = threadTable.busy ? stamp_ : threadTable.stamp;
    borrowed_ = !threadTable.busy;
    if (borrowed_) threadTable.busy = true;
    if (table.size() < size) {
        table.assign(size, Slot{});
        stamp = 0;
    }
    stamp = nextStamp(table, stamp);
    stamp_ = stamp;
    slots_ = table.data();
    size_ = table.size();
    shift_ = 64 - std::countr_zero(size_);
    used_ = 0;
    made = 0;
    Walk(boxes);
}

void BoxIndex::Stop() noexcept {
    if (borrowed_) threadTable.busy = false;
    borrowed_ = false;
    slots_ = nullptr;
    used_ = 0;
}

namespace {
// Up to seven bytes as one word, zero above them, read in at most three
// loads that never pass the last byte.
[[gnu::always_inline]] inline std::uint64_t shortWord(const char* bytes, std::size_t n) {
    if (n >= 4) {
        std::uint32_t low, high;
        std::memcpy(&low, bytes, 4);
        std::memcpy(&high, bytes + n - 4, 4);
        return low | static_cast<std::uint64_t>(high) << (8 * (n - 4));
    }
    if (n == 0) return 0;
    const auto byte = [bytes](std::size_t i) { return static_cast<std::uint64_t>(static_cast<unsigned char>(bytes[i])) << (8 * i); };
    return byte(0) | byte(n / 2) | byte(n - 1);
}
}  // namespace

// Used only here; inlined into the walk and the lookups.
[[gnu::always_inline]] inline BoxIndex::Slot* BoxIndex::Find(std::string_view key) {
    const std::size_t n = key.size();
    if (n > kMaxKey || !slots_) return nullptr;
    // The key as two words, zero-padded: one multiply hashes it, two compares match it.
    const char* bytes = key.data();
    std::uint64_t head = 0, tail = 0;
    if constexpr (std::endian::native != std::endian::little) {
        std::memcpy(&head, bytes, std::min<std::size_t>(n, 8));
        if (n > 8) std::memcpy(&tail, bytes + 8, n - 8);
    } else if (n >= 8) {
        std::memcpy(&head, bytes, 8);
        // The last eight bytes, shifted down past those the head holds.
        if (n > 8) {
            std::memcpy(&tail, bytes + n - 8, 8);
            tail >>= 8 * (16 - n);
        }
    } else {
        head = shortWord(bytes, n);
    }
    const std::uint64_t mixed = (head ^ (tail * 0xC2B2AE3D27D4EB4Full) ^ n) * 0x9E3779B97F4A7C15ull;
    const std::size_t mask = size_ - 1;
    for (std::size_t i = static_cast<std::size_t>(mixed >> shift_);; i = (i + 1) & mask) {
        Slot& slot = slots_[i];
        if (slot.stamp != stamp_) {
            // Keep the table at most three quarters full, so probes stay short.
            if (4 * (used_ + 1) > 3 * size_) return nullptr;
            ++used_;
            slot = Slot{head, tail, nullptr, 0, static_cast<std::uint8_t>(n), stamp_};
            return &slot;
        }
        if (slot.head == head && slot.tail == tail && slot.length == n) return &slot;
    }
}

// One walk of the map indexes what it holds, so that no key of the run needs
// a search of the map, present or missing.
void BoxIndex::Walk(const CMapStringToString& boxes) {
    for (const auto& [key, text] : boxes.items())
        if (Slot* slot = Find(key.view())) slot->text = const_cast<CString*>(&text);
    mapSize = boxes.items().size() - made;
}

namespace {
// A box key's text. Keys are a few bytes: counted here rather than through a
// library call, which costs more than the count.
[[gnu::always_inline]] inline std::string_view keyText(const char* key) {
    if (!key) return {};
    std::size_t n = 0;
    while (n < 24 && key[n]) ++n;
    return n < 24 ? std::string_view(key, n) : std::string_view(key);
}

// Prefix and key side by side, on the stack when they fit.
class FullKey {
public:
    [[gnu::always_inline]] FullKey(const CString& prefix, const char* key) {
        const std::string_view tail = keyText(key);
        if (prefix.IsEmpty()) {
            view_ = tail;
        } else if (prefix.GetLength() + tail.size() <= sizeof buffer_) {
            std::memcpy(buffer_, prefix.c_str(), static_cast<std::size_t>(prefix.GetLength()));
            std::memcpy(buffer_ + prefix.GetLength(), tail.data(), tail.size());
            view_ = std::string_view(buffer_, static_cast<std::size_t>(prefix.GetLength()) + tail.size());
        } else {
            view_ = long_.emplace(prefix.str()).append(tail);
        }
    }
    std::string_view view() const noexcept { return view_; }

private:
    char buffer_[32];
    std::optional<std::string> long_;
    std::string_view view_;
};
}  // namespace

const CString* CBaseCalc::LookupFull(std::string_view full) const {
    // Entries made behind the store's back since the last walk: walk again.
    if (m_pBoxes->items().size() - m_Index.made != m_Index.mapSize) m_Index.Walk(*m_pBoxes);
    if (BoxIndex::Slot* slot = m_Index.Find(full)) return slot->text;
    const auto& items = m_pBoxes->items();
    const auto it = items.find(full);
    return it == items.end() ? nullptr : &it->second;
}

// The box map's entry for a full key, made empty when missing.
CString& CBaseCalc::BoxFor(std::string_view full) {
    if (CString* text = const_cast<CString*>(LookupFull(full))) return *text;
    const std::size_t before = m_pBoxes->items().size();
    CString& made = (*m_pBoxes)[CString(full)];
    m_Index.made += m_pBoxes->items().size() - before;
    if (BoxIndex::Slot* slot = m_Index.Find(full)) slot->text = &made;
    return made;
}

const CString* CBaseCalc::FindBox(const char* key) const {
    if (!m_pBoxes) return nullptr;
    const FullKey full(m_Prefix, key);
    if (m_Index.Active()) return LookupFull(full.view());
    const auto& items = m_pBoxes->items();
    const auto it = items.find(full.view());
    return it == items.end() ? nullptr : &it->second;
}

CString CBaseCalc::GetBoxText(const char* key) const {
    const CString* text = FindBox(key);
    return text ? *text : CString();
}

double CBaseCalc::GetBox(const char* key) const {
    const CString* text = FindBox(key);
    return text ? myatof(*text) : 0.0;
}

// Rows are sparse: rather than look up every possible row, walk the keys that
// share the row's stem (the map is ordered) and add them in row order, so the
// sum is the same, bit for bit, as adding row 1, 2, 3... with missing rows as 0.
double CBaseCalc::SumBoxes(const char* format, int first, int last) const {
    const RowFormat row = splitRowFormat(format);
    if (!row.numbered || !m_pBoxes) {
        double sum = 0.0;
        for (int n = first; n <= last; ++n) sum += GetBox(BoxKey(format, n));
        return sum;
    }
    // The stem as a CString, so the search compares without a temporary per step.
    const CString stemText(std::string(m_Prefix.view()).append(row.head));
    const std::string_view stem = stemText.view();
    // Rows as they come in key order ("1", "10", "2"...), on the stack while few.
    std::pair<int, double> few[16];
    std::vector<std::pair<int, double>> many;
    std::size_t count = 0;
    const auto& items = m_pBoxes->items();
    for (auto it = items.lower_bound(stemText); it != items.end(); ++it) {
        const std::string_view key = it->first.view();
        if (key.substr(0, stem.size()) != stem) break;
        std::string_view rest = key.substr(stem.size());
        if (rest.size() < row.tail.size() || rest.substr(rest.size() - row.tail.size()) != row.tail) continue;
        rest.remove_suffix(row.tail.size());
        int number = 0;
        if (!rowNumber(rest, number) || number < first || number > last) continue;
        const std::pair<int, double> entry(number, myatof(it->second));
        if (count < std::size(few)) {
            few[count++] = entry;
            continue;
        }
        if (many.empty()) many.assign(few, few + count);
        many.push_back(entry);
    }
    const std::span<std::pair<int, double>> present = many.empty() ? std::span(few, count) : std::span(many);
    std::sort(present.begin(), present.end());
    double sum = 0.0;
    for (const auto& entry : present) sum += entry.second;
    return sum;
}

double CBaseCalc::Sum(std::initializer_list<const char*> keys) const {
    double sum = 0.0;
    for (const char* key : keys) sum += GetBox(key);
    return sum;
}

CString CBaseCalc::BoxKey(const char* format, int number) {
    const RowFormat row = splitRowFormat(format);
    if (!row.numbered) return FormatString(format, number);
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, number).ptr;
    std::string key;
    key.reserve(row.head.size() + static_cast<std::size_t>(end - digits) + row.tail.size());
    key.append(row.head).append(digits, end).append(row.tail);
    return CString(std::move(key));
}

std::size_t ValueStore::Place(std::string_view key) {
    for (std::size_t i = 0; i < items_.size(); ++i)
        if (items_[i].first.view() == key) return i;
    return Append(key);
}

std::size_t ValueStore::Append(std::string_view key) {
    items_.emplace_back(std::piecewise_construct, std::forward_as_tuple(key.data(), key.size()), std::forward_as_tuple(0.0));
    return items_.size() - 1;
}

const double* ValueStore::Find(std::string_view key) const {
    for (const Item& item : items_)
        if (item.first.view() == key) return &item.second;
    return nullptr;
}

void CBaseCalc::SetBox(const char* key, double value) {
    const FullKey full(m_WritePrefix, key);
    BoxIndex::Slot* slot = nullptr;
    if (m_Index.Active()) {
        m_Index.Sync(*m_pBoxes);
        slot = m_Index.Find(full.view());
    }
    if (slot) {
        // The index knows every key of m_Values: one it has no place for is new.
        if (!slot->value) slot->value = static_cast<std::uint32_t>(m_Values.Append(full.view()) + 1);
        m_Values[slot->value - 1] = value;
    } else {
        m_Values[m_Values.Place(full.view())] = value;
    }
    if (m_NoWrite || !m_pBoxes) return;
    // m_Prefix and m_WritePrefix are the same text during a run, so the slot
    // serves the write too; should they differ, the map is asked.
    CString* box = nullptr;
    if (slot && m_Prefix == m_WritePrefix) {
        if (!slot->text) slot->text = &BoxFor(full.view());
        box = slot->text;
    } else {
        box = &(*m_pBoxes)[CString(full.view())];
    }
    if (!box->IsEmpty() && (*box)[box->GetLength() - 1] == '!') return;
    // "%f" of a plain nought, the clearing's value, needs no formatting.
    // A box that already says so is left alone.
    if (value == 0 && !std::signbit(value)) {
        if (box->view() != "0.000000") *box = "0.000000";
    } else
        *box = FormatFixed(value, 6);
}

double CBaseCalc::GetValue(const char* key) const {
    const FullKey full(m_WritePrefix, key);
    if (m_Index.Active())
        if (const BoxIndex::Slot* slot = m_Index.Find(full.view())) return slot->value ? m_Values.At(slot->value - 1) : 0.0;
    const double* value = m_Values.Find(full.view());
    return value ? *value : 0.0;
}

double CBaseCalc::BoxDateOk(const char* key) const {
    const CString text = GetBoxText(key);
    if (text.IsEmpty()) return 1.0;
    int year = 0, month = 0, day = 0;
    if (!ParseDate(text, year, month, day)) return 0.0;
    return (month >= 1 && month <= 12 && day >= 1 && day <= 31) ? 1.0 : 0.0;
}

double CBaseCalc::AddError(int code, const char* key, double ok, const char* message) {
    if (ok != 0) return ok;
    const CString text = message ? CString(message) : CError::Lookup(code);
    m_Errors.AddTail(new CError(key, code, text));
    return ok;
}

void CBaseCalc::ShowErrors(const CStringList* list) {
    if (!m_ShowErrors) return;
    CErrorsDlg& dialog = errorsDialog();
    dialog.SetErrorList(&m_Errors);
    dialog.Show(list);
    dialog.SetErrorList(nullptr);
}

void CBaseCalc::WriteChanged(const char* key, const CString& text) {
    const FullKey full(m_Prefix, key);
    if (m_pBoxes) (m_Index.Active() ? BoxFor(full.view()) : (*m_pBoxes)[CString(full.view())]) = text;
    m_Changed[CString(full.view())] = text;
}

void CBaseCalc::MarkZero(const char* key) {
    if (GetBox(key) != 0) return;
    WriteChanged(key, "zero");
}

void CBaseCalc::TakeOverResults(const CMapStringToString& results) {
    for (const auto& [key, text] : results.items()) WriteChanged(key, text);
}

void Helper(CBaseCalc* calc, CMapStringToString* boxes, CString* prefix, CMapStringToString* out) {
    if (!calc || !boxes) return;
    calc->m_pBoxes = boxes;
    calc->m_Prefix = prefix ? *prefix : CString();
    calc->m_WritePrefix = calc->m_Prefix;
    calc->m_NoWrite = 0;
    struct IndexedRun {
        BoxIndex& index;
        IndexedRun(BoxIndex& i, const CMapStringToString& map) : index(i) { index.Start(map); }
        ~IndexedRun() { index.Stop(); }
    } run(calc->m_Index, *boxes);
    // Numbers kept from an earlier run of the object keep their places.
    for (std::size_t i = 0; i < calc->m_Values.size(); ++i)
        if (BoxIndex::Slot* slot = calc->m_Index.Find(calc->m_Values.begin()[i].first.view())) slot->value = static_cast<std::uint32_t>(i + 1);
    calc->Calc();
    if (out)
        for (const auto& [key, text] : calc->m_Changed.items()) (*out)[key] = text;
}

CString xmlerrors(const CBaseCalc* calc) { return calc ? xmlerrors(calc->m_Errors) : xmlerrors(CObList()); }
