#include "common/xmlvar.h"

#include <expat.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <unordered_map>

#include "common/library.h"

// Text in the tree is single bytes of the host's code page (Latin-1 /
// Windows-1252). Saved documents declare ISO-8859-1 and carry the bytes raw;
// expat hands us UTF-8, which is folded back to single bytes on the way in.
//
// Element names that XML cannot carry (box keys such as "xml/CT/CTchargeable",
// names starting with a digit, the empty name, or "_x" itself) are written as
// <_x xname="real name">; Open turns such an element back into the real name.

namespace {

constexpr int kMaxDepth = 10000;
// Deeper levels are written at this indentation, so a very deep tree's text
// stays linear in its size.
constexpr int kMaxIndentLevel = 64;
constexpr const char* kEscapedName = "_x";
constexpr const char* kEscapedNameAttr = "xname";

// ---------------------------------------------------------------- helpers

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r'; }

bool allBlank(std::string_view s) {
    return std::all_of(s.begin(), s.end(), isBlank);
}

bool isAsciiLetter(unsigned char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

// ASCII names only: anything else goes through the "_x" escape, which is
// always safe whatever the encoding a reader assumes.
bool isXmlName(std::string_view name) {
    if (name.empty()) return false;
    auto first = static_cast<unsigned char>(name[0]);
    if (!isAsciiLetter(first) && first != '_') return false;
    for (char ch : name) {
        auto c = static_cast<unsigned char>(ch);
        if (!isAsciiLetter(c) && !(c >= '0' && c <= '9') && c != '_' && c != '-' && c != '.' && c != ':')
            return false;
    }
    return true;
}

bool needsEscapedName(std::string_view name) { return !isXmlName(name) || name == kEscapedName; }

// Attribute names have no escape, so a name with Latin-1 letters is written
// as it is (saved text is ISO-8859-1, declared or, for Open, assumed): the
// letters that the parser takes in a name.
bool isLatin1Letter(unsigned char c) {
    return (c >= 0xC0 && c != 0xD7 && c != 0xF7) || c == 0xAA || c == 0xB5 || c == 0xBA;
}

bool isAttrName(std::string_view name) {
    if (name.empty()) return false;
    auto first = static_cast<unsigned char>(name[0]);
    if (!isAsciiLetter(first) && first != '_' && first != ':' && !isLatin1Letter(first)) return false;
    for (char ch : name) {
        auto c = static_cast<unsigned char>(ch);
        if (!isAsciiLetter(c) && !(c >= '0' && c <= '9') && c != '_' && c != '-' && c != '.' && c != ':' &&
            !isLatin1Letter(c) && c != 0xB7)
            return false;
    }
    return true;
}

// Control bytes other than tab, LF and CR cannot appear in XML 1.0 at all,
// not even as character references, so they are dropped on saving.
bool forbiddenInXml(unsigned char c) { return c < 0x20 && c != '\t' && c != '\n' && c != '\r'; }

// Bytes the escape may change or drop, in text or in attributes; runs of
// the others are copied whole.
constexpr auto kSpecialBytes = [] {
    std::array<bool, 256> special{};
    for (int c = 0; c < 0x20; ++c) special[static_cast<std::size_t>(c)] = true;
    for (unsigned char c : {'&', '<', '>', '"'}) special[c] = true;
    return special;
}();

// Text and attribute values share one escape. A literal CR would be folded
// into the line break by the reader; in attributes readers also normalise
// tabs and line feeds to blanks, so those go as references there too.
void appendEscaped(std::string& out, std::string_view text, bool attribute) {
    const char* p = text.data();
    const char* const end = p + text.size();
    while (p != end) {
        const char* run = p;
        while (p != end && !kSpecialBytes[static_cast<unsigned char>(*p)]) ++p;
        out.append(run, p);
        if (p == end) break;
        const char ch = *p++;
        const char* reference = nullptr;
        switch (ch) {
            case '&': reference = "&amp;"; break;
            case '<': reference = "&lt;"; break;
            case '>': reference = "&gt;"; break;
            case '\r': reference = "&#13;"; break;
            case '"': reference = attribute ? "&quot;" : nullptr; break;
            case '\t': reference = attribute ? "&#9;" : nullptr; break;
            case '\n': reference = attribute ? "&#10;" : nullptr; break;
            default: break;
        }
        if (reference) out += reference;
        else if (!forbiddenInXml(static_cast<unsigned char>(ch))) out += ch;
    }
}

void appendText(std::string& out, std::string_view text) { appendEscaped(out, text, false); }
void appendAttrText(std::string& out, std::string_view text) { appendEscaped(out, text, true); }

void appendAttr(std::string& out, std::string_view name, std::string_view value) {
    out += ' ';
    out += name;
    out += "=\"";
    appendAttrText(out, value);
    out += '"';
}

void appendIndent(std::string& out, int level) {
    out.append(static_cast<std::size_t>(std::min(level, kMaxIndentLevel)) * 2, ' ');
}

void appendOpenTag(std::string& out, const CXMLVar& node, bool escaped, bool selfClose) {
    const std::string& name = node.name.str();
    out += '<';
    out += escaped ? kEscapedName : name;
    if (escaped) appendAttr(out, kEscapedNameAttr, name);
    for (const auto& [attrName, attrValue] : node.Attributes()) {
        // An attribute XML cannot name is not written; nor one that would
        // clash with the escape's own attribute.
        if (!isAttrName(attrName.str())) continue;
        if (escaped && attrName == kEscapedNameAttr) continue;
        appendAttr(out, attrName.str(), attrValue.str());
    }
    out += selfClose ? "/>" : ">";
}

void appendCloseTag(std::string& out, const CXMLVar& node, bool escaped) {
    out += "</";
    out += escaped ? kEscapedName : node.name.str();
    out += '>';
}

// Iterative, so that depth is limited by memory rather than by the call stack.
// Each child of a container starts on its own line, indented two blanks a
// level; a leaf's value is written exactly as it is.
void writeTree(const CXMLVar& root, std::string& out) {
    struct Step {
        const CXMLVar* node;
        int level;
        bool closing;
        bool escaped;  // of a closing step: the name goes through the escape
    };
    std::vector<Step> stack{{&root, 0, false, false}};
    while (!stack.empty()) {
        const Step step = stack.back();
        stack.pop_back();
        const CXMLVar& node = *step.node;
        if (step.level > 0 || step.closing) {
            out += '\n';
            appendIndent(out, step.level);
        }
        if (step.closing) {
            appendCloseTag(out, node, step.escaped);
            continue;
        }
        const bool escaped = needsEscapedName(node.name.str());
        if (node.children.empty()) {
            if (node.value.IsEmpty()) {
                appendOpenTag(out, node, escaped, true);
            } else {
                appendOpenTag(out, node, escaped, false);
                appendText(out, node.value.str());
                appendCloseTag(out, node, escaped);
            }
            continue;
        }
        appendOpenTag(out, node, escaped, false);
        appendText(out, node.value.str());
        stack.push_back({&node, step.level, true, escaped});
        for (auto it = node.children.rbegin(); it != node.children.rend(); ++it)
            stack.push_back({*it, step.level + 1, false, false});
    }
}

// Frees a subtree without recursion: every node's children are detached
// before the node itself is deleted.
void freeNodes(std::vector<CXMLVar*>& nodes) {
    std::vector<CXMLVar*> pending;
    pending.swap(nodes);
    while (!pending.empty()) {
        CXMLVar* node = pending.back();
        pending.pop_back();
        if (!node) continue;
        pending.insert(pending.end(), node->children.begin(), node->children.end());
        node->children.clear();
        delete node;
    }
}

// ---------------------------------------------------------------- parsing

// Code points up to 255 become their byte; anything wider cannot be held in
// the host's code page and becomes '?'.
std::string toSingleBytes(std::string_view utf8) {
    std::string out;
    out.reserve(utf8.size());
    std::size_t i = 0;
    while (i < utf8.size()) {
        auto c = static_cast<unsigned char>(utf8[i]);
        std::uint32_t cp = 0;
        std::size_t len = 1;
        if (c < 0x80) {
            cp = c;
        } else if ((c & 0xE0) == 0xC0) {
            cp = c & 0x1Fu;
            len = 2;
        } else if ((c & 0xF0) == 0xE0) {
            cp = c & 0x0Fu;
            len = 3;
        } else if ((c & 0xF8) == 0xF0) {
            cp = c & 0x07u;
            len = 4;
        } else {
            out += '?';
            ++i;
            continue;
        }
        if (i + len > utf8.size()) {
            out += '?';
            break;
        }
        bool ok = true;
        for (std::size_t k = 1; k < len; ++k) {
            auto cc = static_cast<unsigned char>(utf8[i + k]);
            if ((cc & 0xC0) != 0x80) { ok = false; break; }
            cp = (cp << 6) | (cc & 0x3Fu);
        }
        if (!ok) {
            out += '?';
            ++i;
            continue;
        }
        out += cp <= 0xFF ? static_cast<char>(static_cast<unsigned char>(cp)) : '?';
        i += len;
    }
    return out;
}

// The segment before a child holds the layout Save put there: one line break
// and the child's indentation. Only that much is taken off.
void dropLayoutTail(std::string& segment) {
    std::size_t nl = segment.rfind('\n');
    if (nl == std::string::npos) return;
    if (segment.find_first_not_of(' ', nl + 1) == std::string::npos) segment.erase(nl);
}

struct Frame {
    CXMLVar* node;
    std::string segment;  // character data since the last tag, UTF-8
    std::string kept;     // a container's value so far, UTF-8
    bool container = false;
};

struct ParseState {
    XML_Parser parser = nullptr;
    CXMLVar* root = nullptr;
    bool rootSeen = false;
    bool tooDeep = false;
    std::vector<Frame> stack;
};

// A container keeps only the text runs that are not mere layout, so a
// container whose own value is nothing but blanks reads back empty.
void flushSegment(Frame& frame) {
    if (!allBlank(frame.segment)) {
        dropLayoutTail(frame.segment);
        frame.kept += frame.segment;
    }
    frame.segment.clear();
}

void finishFrame(Frame& frame) {
    if (frame.container) {
        flushSegment(frame);
        frame.node->value = toSingleBytes(frame.kept);
    } else {
        frame.node->value = toSingleBytes(frame.segment);
    }
}

void XMLCALL onStart(void* data, const XML_Char* name, const XML_Char** attrs) {
    auto* st = static_cast<ParseState*>(data);
    if (st->stack.size() >= static_cast<std::size_t>(kMaxDepth)) {
        st->tooDeep = true;
        XML_StopParser(st->parser, XML_FALSE);
        return;
    }
    CXMLVar* node = nullptr;
    if (st->stack.empty()) {
        if (st->rootSeen) return;  // expat refuses a second root before this
        st->rootSeen = true;
        node = st->root;
    } else {
        Frame& parent = st->stack.back();
        flushSegment(parent);
        parent.container = true;
        node = parent.node->AddChild(new CXMLVar(), nullptr);
    }
    node->name = toSingleBytes(name ? name : "");
    const bool escaped = node->name == kEscapedName;
    // Distinct names as the parser saw them can fold into one here ('?').
    std::vector<std::pair<CString, CString>> attributes;
    for (const XML_Char** a = attrs; a && a[0]; a += 2) {
        std::string attrName = toSingleBytes(a[0]);
        std::string attrValue = toSingleBytes(a[1] ? a[1] : "");
        if (escaped && attrName == kEscapedNameAttr) {
            node->name = std::move(attrValue);
            continue;
        }
        attributes.emplace_back(std::move(attrName), std::move(attrValue));
    }
    node->SetAttributes(std::move(attributes));
    st->stack.push_back(Frame{node, {}, {}, false});
}

void XMLCALL onEnd(void* data, const XML_Char* /*name*/) {
    auto* st = static_cast<ParseState*>(data);
    if (st->stack.empty()) return;
    finishFrame(st->stack.back());
    st->stack.pop_back();
}

void XMLCALL onText(void* data, const XML_Char* text, int len) {
    auto* st = static_cast<ParseState*>(data);
    if (st->stack.empty() || !text || len <= 0) return;
    st->stack.back().segment.append(text, static_cast<std::size_t>(len));
}

bool equalsNoCase(std::string_view a, std::string_view b) {
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        auto x = static_cast<unsigned char>(a[i]);
        auto y = static_cast<unsigned char>(b[i]);
        if (x >= 'A' && x <= 'Z') x = static_cast<unsigned char>(x - 'A' + 'a');
        if (y >= 'A' && y <= 'Z') y = static_cast<unsigned char>(y - 'A' + 'a');
        if (x != y) return false;
    }
    return true;
}

// Windows hosts label their text windows-1252. Each byte is read as the code
// point of the same number, which folds back to the same byte.
int XMLCALL onUnknownEncoding(void* /*data*/, const XML_Char* name, XML_Encoding* info) {
    if (!name || !info) return XML_STATUS_ERROR;
    if (!equalsNoCase(name, "windows-1252") && !equalsNoCase(name, "cp1252")) return XML_STATUS_ERROR;
    for (int i = 0; i < 256; ++i) info->map[i] = i;
    info->data = nullptr;
    info->convert = nullptr;
    info->release = nullptr;
    return XML_STATUS_OK;
}

// True when the text names its own encoding (or carries a byte order mark);
// otherwise it is bytes of the host's code page.
bool declaresEncoding(std::string_view text) {
    if (text.size() >= 2) {
        auto b0 = static_cast<unsigned char>(text[0]);
        auto b1 = static_cast<unsigned char>(text[1]);
        if ((b0 == 0xFE && b1 == 0xFF) || (b0 == 0xFF && b1 == 0xFE)) return true;
        if (text.size() >= 3 && b0 == 0xEF && b1 == 0xBB && static_cast<unsigned char>(text[2]) == 0xBF)
            return true;
    }
    if (text.substr(0, 5) != "<?xml" || text.size() < 6 || !isBlank(text[5])) return false;
    std::size_t end = text.find("?>");
    if (end == std::string_view::npos) return false;
    return text.substr(0, end).find("encoding") != std::string_view::npos;
}

}  // namespace

// ---------------------------------------------------------------- CXMLVar

CXMLVar::CXMLVar(CString nodeName) : name(std::move(nodeName)) {}

CXMLVar::CXMLVar(CString nodeName, CString nodeValue) : name(std::move(nodeName)), value(std::move(nodeValue)) {}

CXMLVar::~CXMLVar() { freeNodes(children); }

void CXMLVar::Clear() {
    freeNodes(children);
    attributes_.clear();
    value.Empty();
}

int CXMLVar::Open(const CString& text) {
    Clear();
    name.Empty();

    const std::string& bytes = text.str();
    XML_Parser parser = XML_ParserCreate(declaresEncoding(bytes) ? nullptr : "ISO-8859-1");
    if (!parser) return 0;

    ParseState st;
    st.parser = parser;
    st.root = this;
    XML_SetUserData(parser, &st);
    XML_SetElementHandler(parser, onStart, onEnd);
    XML_SetCharacterDataHandler(parser, onText);
    XML_SetUnknownEncodingHandler(parser, onUnknownEncoding, nullptr);
    // No external entity handler: external entities are never loaded.

    bool ok = true;
    constexpr std::size_t kChunk = 1u << 20;
    std::size_t offset = 0;
    do {
        const std::size_t n = std::min(kChunk, bytes.size() - offset);
        const bool last = offset + n == bytes.size();
        if (XML_Parse(parser, bytes.data() + offset, static_cast<int>(n), last ? 1 : 0) != XML_STATUS_OK) {
            ok = false;
            break;
        }
        offset += n;
    } while (offset < bytes.size());
    XML_ParserFree(parser);

    // A document cut short keeps what was read, values included.
    for (Frame& frame : st.stack) finishFrame(frame);
    if (st.tooDeep || !st.rootSeen) ok = false;
    return ok ? 1 : 0;
}

int CXMLVar::OpenPath(const char* path) {
    Clear();
    name.Empty();
    if (!path) return 0;
    std::FILE* file = std::fopen(NativePath(path), "rb");
    if (!file) return 0;
    std::string text;
    char buffer[65536];
    std::size_t n = 0;
    while ((n = std::fread(buffer, 1, sizeof buffer, file)) > 0) text.append(buffer, n);
    std::fclose(file);
    return Open(CString(std::move(text)));
}

// A node without a name and without content is the result of reading nothing;
// it is saved as the declaration alone, which reads back as the same empty
// node. Any other nameless node is written through the name escape.
void CXMLVar::Save(CString& out, int withDeclaration) const {
    std::string text;
    // Room for a report tree, kept under the allocator's large-request size
    // (which would sweep its caches of small blocks first).
    text.reserve(1000);
    if (withDeclaration) text += "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n";
    if (!style_.IsEmpty()) {
        text += "<?xml-stylesheet type=\"text/xsl\" href=\"";
        appendAttrText(text, style_.str());
        text += "\"?>\n";
    }
    const bool nothing = name.IsEmpty() && value.IsEmpty() && children.empty() && attributes_.empty();
    if (!nothing) writeTree(*this, text);
    out = CString(std::move(text));
}

void CXMLVar::Save(std::ostream& out, int withDeclaration, int indent, int unused) const {
    (void)indent;
    (void)unused;
    CString text;
    Save(text, withDeclaration);
    out.write(text.c_str(), static_cast<std::streamsize>(text.GetLength()));
}

// Hosts join folders with backslashes; the stylesheet reference is a URI.
void CXMLVar::AddStyle(const char* path) {
    style_ = path ? path : "";
    style_.Replace('\\', '/');
}

CXMLVar* CXMLVar::GetChild(const char* childName) {
    if (CXMLVar* found = FindChild(childName)) return found;
    return AddChild(new CXMLVar(CString(childName)), nullptr);
}

CXMLVar* CXMLVar::FindChild(const char* childName) const {
    const std::string_view wanted(childName ? childName : "");
    for (CXMLVar* child : children)
        if (child->name.view() == wanted) return child;
    return nullptr;
}

int CXMLVar::CountChildren(const char* childName) const {
    const std::string_view wanted(childName ? childName : "");
    return static_cast<int>(
        std::count_if(children.begin(), children.end(), [&](const CXMLVar* c) { return c->name.view() == wanted; }));
}

// Cursors are the child's index plus one, so that null marks the end.
POSITION CXMLVar::GetFirstChildPosition() const noexcept {
    return children.empty() ? nullptr : reinterpret_cast<POSITION>(static_cast<std::uintptr_t>(1));
}

CXMLVar* CXMLVar::GetNextChild(POSITION& pos) const {
    if (!pos) return nullptr;
    const auto index = static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(pos)) - 1;
    if (index >= children.size()) {
        pos = nullptr;
        return nullptr;
    }
    pos = index + 1 < children.size() ? reinterpret_cast<POSITION>(static_cast<std::uintptr_t>(index + 2)) : nullptr;
    return children[index];
}

CXMLVar* CXMLVar::FromPath(CString path) {
    CXMLVar* node = this;
    const std::string& p = path.str();
    std::size_t start = 0;
    while (start <= p.size()) {
        std::size_t slash = p.find('/', start);
        if (slash == std::string::npos) slash = p.size();
        if (slash > start) node = node->GetChild(p.substr(start, slash - start).c_str());
        start = slash + 1;
    }
    return node;
}

// A node moved here from another parent leaves that parent, so that no node
// is owned twice; a node may not become its own descendant.
CXMLVar* CXMLVar::AddChild(CXMLVar* child, CXMLVar* after) {
    (void)after;
    if (!child || child == this) return nullptr;
    if (!child->children.empty())
        for (const CXMLVar* up = parent; up; up = up->parent)
            if (up == child) return nullptr;
    if (CXMLVar* former = child->parent) {
        auto& siblings = former->children;
        siblings.erase(std::remove(siblings.begin(), siblings.end(), child), siblings.end());
    }
    child->parent = this;
    children.push_back(child);
    return child;
}

CXMLVar* CXMLVar::AddChild(const char* childName, const char* childValue) {
    return AddChild(new CXMLVar(CString(childName), CString(childValue)), nullptr);
}

void CXMLVar::SetChildValue(const char* childName, const char* childValue) {
    GetChild(childName)->value = childValue ? childValue : "";
}

void CXMLVar::DeleteChild(CXMLVar* child) {
    if (!child) return;
    auto it = std::find(children.begin(), children.end(), child);
    if (it == children.end()) return;
    children.erase(it);
    std::vector<CXMLVar*> doomed{child};
    freeNodes(doomed);
}

void CXMLVar::CloneChildren(const CXMLVar* source) {
    if (!source) return;
    // Copy first, attach after: cloning a node into its own subtree must not
    // see its own copies.
    std::vector<CXMLVar*> copies;
    struct Job {
        const CXMLVar* from;
        CXMLVar* into;  // null: a top-level copy
    };
    std::vector<Job> jobs;
    for (auto it = source->children.rbegin(); it != source->children.rend(); ++it) jobs.push_back({*it, nullptr});
    std::vector<std::pair<const CXMLVar*, CXMLVar*>> topLevel;
    while (!jobs.empty()) {
        const Job job = jobs.back();
        jobs.pop_back();
        auto* copy = new CXMLVar(job.from->name, job.from->value);
        copy->attributes_ = job.from->attributes_;
        if (job.into)
            job.into->AddChild(copy, nullptr);
        else
            copies.push_back(copy);
        for (auto it = job.from->children.rbegin(); it != job.from->children.rend(); ++it)
            jobs.push_back({*it, copy});
    }
    for (CXMLVar* copy : copies) AddChild(copy, nullptr);
}

void CXMLVar::Sort(const char* key, int (*compare)(const void*, const void*)) {
    // Only "#name" is in use, and the comparison itself decides the order.
    (void)key;
    if (!compare) return;
    std::stable_sort(children.begin(), children.end(), [compare](const CXMLVar* a, const CXMLVar* b) {
        return compare(static_cast<const void*>(a), static_cast<const void*>(b)) < 0;
    });
}

CString CXMLVar::GetAttr(const char* attrName) const {
    const std::string_view wanted(attrName ? attrName : "");
    for (const auto& [k, v] : attributes_)
        if (k.view() == wanted) return v;
    return CString();
}

void CXMLVar::SetAttr(const char* attrName, const char* attrValue) {
    const std::string_view wanted(attrName ? attrName : "");
    for (auto& [k, v] : attributes_) {
        if (k.view() == wanted) {
            v = attrValue ? attrValue : "";
            return;
        }
    }
    attributes_.emplace_back(CString(attrName), CString(attrValue));
}

void CXMLVar::SetAttributes(std::vector<std::pair<CString, CString>> attributes) {
    attributes_.clear();
    // Reserved up front, so the views that index the names stay valid.
    attributes_.reserve(attributes.size());
    constexpr std::size_t kLinearSearch = 16;
    std::unordered_map<std::string_view, std::size_t> index;
    for (auto& [attrName, attrValue] : attributes) {
        std::size_t found = attributes_.size();
        if (attributes_.size() < kLinearSearch) {
            for (std::size_t i = 0; i < attributes_.size(); ++i)
                if (attributes_[i].first == attrName) found = i;
        } else {
            if (index.empty())
                for (std::size_t i = 0; i < attributes_.size(); ++i) index.emplace(attributes_[i].first.view(), i);
            if (auto it = index.find(attrName.view()); it != index.end()) found = it->second;
        }
        if (found < attributes_.size()) {
            attributes_[found].second = std::move(attrValue);
            continue;
        }
        attributes_.emplace_back(std::move(attrName), std::move(attrValue));
        if (!index.empty()) index.emplace(attributes_.back().first.view(), attributes_.size() - 1);
    }
}

void CXMLVar::SetAttr(const char* attrName, int attrValue) {
    char buffer[16];
    std::snprintf(buffer, sizeof buffer, "%d", attrValue);
    SetAttr(attrName, buffer);
}

// Pre-order without recursion. A callback may change the node it is given
// (its children are read after it returns) but must not delete nodes that
// are still to be visited.
void CXMLVar::foreach(void (*callback)(CXMLVar* node, void* context), void* context, int flag) {
    (void)flag;
    if (!callback) return;
    std::vector<CXMLVar*> pending{this};
    while (!pending.empty()) {
        CXMLVar* node = pending.back();
        pending.pop_back();
        callback(node, context);
        for (auto it = node->children.rbegin(); it != node->children.rend(); ++it) pending.push_back(*it);
    }
}
