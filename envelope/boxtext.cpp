// Box texts as the document wants them, and the placeholders of a template.
#include <algorithm>
#include <cmath>
#include <mutex>
#include <string>
#include <unordered_map>

#include "common/library.h"
#include "envelope/template_text.h"

namespace {

constexpr unsigned char kPound = 0xA3;  // the pound sign in the host's code page

struct KindName {
    BoxKind kind;
    const char* name;
};
constexpr KindName kKinds[] = {
    {BoxKind::Text, "text"},   {BoxKind::Amount, "amount"}, {BoxKind::Int, "int"},       {BoxKind::Date, "date"},
    {BoxKind::Flag, "flag"},   {BoxKind::YesNo, "yesno"},   {BoxKind::Signed, "signed"},
};

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::string_view trimmed(std::string_view s) {
    while (!s.empty() && isBlank(s.front())) s.remove_prefix(1);
    while (!s.empty() && isBlank(s.back())) s.remove_suffix(1);
    return s;
}

// The text without blanks around it and without the override mark "!" that
// a calculator leaves on a user's entry: the mark belongs to the box map.
std::string_view withoutMark(std::string_view s) {
    s = trimmed(s);
    if (!s.empty() && s.back() == '!') s.remove_suffix(1);
    return trimmed(s);
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        char x = a[i], y = b[i];
        if (x >= 'A' && x <= 'Z') x = static_cast<char>(x - 'A' + 'a');
        if (y >= 'A' && y <= 'Z') y = static_cast<char>(y - 'A' + 'a');
        if (x != y) return false;
    }
    return true;
}

// A whole text that is a number as a host writes one: an optional pound sign
// and sign, digits with thousands commas, an optional fraction. myatof reads
// more leniently (the front of any text); only a text that is a number
// through and through is turned into the document's form.
bool isNumberText(std::string_view s) {
    std::size_t i = 0;
    auto at = [&](std::size_t k) { return k < s.size() ? s[k] : '\0'; };
    if (static_cast<unsigned char>(at(i)) == kPound) ++i;
    if (at(i) == '-' || at(i) == '+') ++i;
    if (static_cast<unsigned char>(at(i)) == kPound) ++i;
    int digits = 0;
    while (isDigit(at(i)) || (at(i) == ',' && digits > 0 && isDigit(at(i + 1)))) {
        if (isDigit(at(i))) ++digits;
        ++i;
    }
    if (at(i) == '.') {
        ++i;
        while (isDigit(at(i))) {
            ++digits;
            ++i;
        }
    }
    return digits > 0 && i == s.size();
}

CString formatAmount(std::string_view s, bool whole) {
    if (s.empty()) return CString();
    if (equalsNoCase(s, "zero")) return whole ? CString("0") : CString("0.00");
    if (!isNumberText(s)) return CString(s);
    const double value = myatof(CString(s));
    if (value == 0.0 || !std::isfinite(value)) return CString();
    if (whole) {
        // A fraction is the user's to correct: the schema test says so.
        if (std::floor(value) != value || std::fabs(value) >= 1e15) return CString(s);
        return FormatString("%.0f", value);
    }
    // Pence as the project rounds them: halves away from zero.
    return fmt2(roundpenny(value));
}

CString formatDate(std::string_view s) {
    if (s.empty()) return CString();
    const CString text(s);
    int year = 0, month = 0, day = 0;
    if (!ParseDate(text, year, month, day) || month < 1 || month > 12 || day < 1 || day > 31) return text;
    const CString xml = xmldate(text);
    return xml.IsEmpty() ? text : xml;
}

CString formatYesNo(std::string_view s) {
    if (s.empty()) return CString();
    const CString text(s);
    if (IsYes(text)) return CString("yes");
    for (const char* no : {"n", "no", "false", "0"})
        if (equalsNoCase(s, no)) return CString("no");
    for (const char* na : {"na", "n/a", "not applicable"})
        if (equalsNoCase(s, na)) return CString("na");
    return text;
}

// Reads a box key: anything up to a blank, a colon or the end.
std::string_view readKey(std::string_view s, std::size_t& i) {
    const std::size_t start = i;
    while (i < s.size() && !isBlank(s[i]) && s[i] != ':' && s[i] != '\'' && s[i] != '{' && s[i] != '}') ++i;
    return s.substr(start, i - start);
}

void skipBlanks(std::string_view s, std::size_t& i) {
    while (i < s.size() && isBlank(s[i])) ++i;
}

}  // namespace

bool ParseBoxKind(std::string_view name, BoxKind& kind) {
    for (const KindName& k : kKinds) {
        if (name == k.name) {
            kind = k.kind;
            return true;
        }
    }
    return false;
}

const char* BoxKindName(BoxKind kind) {
    for (const KindName& k : kKinds)
        if (k.kind == kind) return k.name;
    return "text";
}

CString FormatBox(BoxKind kind, const char* text) {
    const std::string_view raw(text ? text : "");
    if (raw.empty()) return CString();  // most of a template's boxes are not filled
    switch (kind) {
        case BoxKind::Text: return CString(trimmed(raw));
        case BoxKind::Amount: return formatAmount(withoutMark(raw), false);
        case BoxKind::Int: return formatAmount(withoutMark(raw), true);
        case BoxKind::Date: return formatDate(withoutMark(raw));
        case BoxKind::Flag: return IsYes(CString(withoutMark(raw))) ? CString("yes") : CString();
        case BoxKind::YesNo: return formatYesNo(withoutMark(raw));
        case BoxKind::Signed: return trimmed(raw).empty() ? CString() : CString("yes");
    }
    return CString();
}

CString Placeholder::SourcesText() const {
    CString out;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (i) out += " or ";
        if (sources[i].literal) out += '\'';
        out += sources[i].text;
        if (sources[i].literal) out += '\'';
    }
    return out;
}

bool ParsePlaceholder(std::string_view inner, Placeholder& out) {
    Placeholder result;
    std::size_t i = 0;
    for (;;) {
        skipBlanks(inner, i);
        PlaceholderSource source;
        if (i < inner.size() && inner[i] == '\'') {
            const std::size_t close = inner.find('\'', i + 1);
            if (close == std::string_view::npos) return false;
            source.text = CString(inner.substr(i + 1, close - i - 1));
            source.literal = true;
            i = close + 1;
        } else {
            const std::string_view key = readKey(inner, i);
            if (key.empty()) return false;
            source.text = CString(key);
        }
        result.sources.push_back(std::move(source));
        skipBlanks(inner, i);
        if (i == inner.size()) break;
        if (inner[i] == ':') {
            const std::string_view kind = trimmed(inner.substr(i + 1));
            if (!ParseBoxKind(kind, result.kind)) return false;
            break;
        }
        // Another source must follow " or ".
        if (inner.substr(i, 2) != "or" || i + 2 >= inner.size() || !isBlank(inner[i + 2])) return false;
        i += 2;
    }
    out = std::move(result);
    return true;
}

std::vector<TemplatePiece> SplitTemplateText(std::string_view text, std::vector<std::string_view>* bad) {
    std::vector<TemplatePiece> pieces;
    std::size_t literalStart = 0;
    std::size_t i = 0;
    auto flushLiteral = [&](std::size_t end) {
        if (end > literalStart) pieces.push_back({text.substr(literalStart, end - literalStart), false, {}});
    };
    while (i < text.size()) {
        if (text[i] != '{') {
            ++i;
            continue;
        }
        const std::size_t close = text.find('}', i + 1);
        if (close == std::string_view::npos) {
            if (bad) bad->push_back(text.substr(i));
            break;
        }
        const std::string_view whole = text.substr(i, close - i + 1);
        Placeholder parsed;
        if (!ParsePlaceholder(text.substr(i + 1, close - i - 1), parsed)) {
            if (bad) bad->push_back(whole);
            i = close + 1;
            continue;
        }
        flushLiteral(i);
        pieces.push_back({whole, true, std::move(parsed)});
        i = close + 1;
        literalStart = i;
    }
    flushLiteral(text.size());
    return pieces;
}

namespace {
// Parsed texts, kept for the life of the process: a template's texts are few
// and are filled again for every return. Entries are never dropped, so the
// references handed out stay good; past the cap, texts are parsed each time.
constexpr std::size_t kMaxRememberedTexts = 8192;
struct ParsedText {
    std::vector<TemplatePiece> pieces;  // views into the key of its entry
    bool anyPlaceholder = false;
};
struct TextHash {
    using is_transparent = void;
    std::size_t operator()(std::string_view text) const noexcept { return std::hash<std::string_view>{}(text); }
};
std::mutex g_parsedMutex;
std::unordered_map<std::string, ParsedText, TextHash, std::equal_to<>> g_parsed;

bool anyPlaceholder(const std::vector<TemplatePiece>& pieces) {
    return std::any_of(pieces.begin(), pieces.end(), [](const TemplatePiece& p) { return p.placeholder; });
}

// The remembered entry for the text, made on first sight; null past the cap.
const ParsedText* remembered(std::string_view text) {
    std::lock_guard<std::mutex> lock(g_parsedMutex);
    const auto found = g_parsed.find(text);
    if (found != g_parsed.end()) return &found->second;
    if (g_parsed.size() >= kMaxRememberedTexts) return nullptr;
    auto [it, added] = g_parsed.emplace(std::string(text), ParsedText{});
    it->second.pieces = SplitTemplateText(it->first);
    it->second.anyPlaceholder = anyPlaceholder(it->second.pieces);
    return &it->second;
}
}  // namespace

const std::vector<TemplatePiece>& TemplatePieces(std::string_view text, std::vector<TemplatePiece>& scratch) {
    if (text.find('{') == std::string_view::npos) {
        scratch.clear();
        if (!text.empty()) scratch.push_back({text, false, {}});
        return scratch;
    }
    if (const ParsedText* parsed = remembered(text)) return parsed->pieces;
    scratch = SplitTemplateText(text);
    return scratch;
}

bool HasPlaceholder(std::string_view text) {
    if (text.find('{') == std::string_view::npos) return false;
    if (const ParsedText* parsed = remembered(text)) return parsed->anyPlaceholder;
    return anyPlaceholder(SplitTemplateText(text));
}
