// The template filler: the box map as a tree, the filling of a template's
// placeholders and repeats, and the removal of what is left empty.
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <unordered_set>
#include <utility>

#include "common/library.h"
#include "envelope/template_text.h"

namespace {

// A template deeper than this is cut off there: the form's is eight levels
// deep, and the filling recurses.
constexpr int kMaxTemplateDepth = 200;
// A row number is at most this many digits, so that its value fits an unsigned long.
constexpr std::size_t kMaxRowDigits = 9;

// Views into the data tree, which outlives the filling.
using BoxIndex = std::map<std::string_view, const CString*, std::less<>>;

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isMarkup(const CString& attrName) { return attrName == kIfAttr || attrName == kRepeatAttr; }

bool blankText(const CString& text) {
    for (const char c : text.view())
        if (c != ' ' && c != '\t' && c != '\r' && c != '\n') return false;
    return true;
}

// CXMLVar has no way to drop one attribute, so the node is rebuilt in place
// with the attributes it keeps; its children are set aside and put back.
template <typename Drop>
void dropAttributes(CXMLVar* node, Drop drop) {
    const auto& current = node->Attributes();
    if (std::none_of(current.begin(), current.end(), [&](const auto& a) { return drop(a.first); })) return;
    const auto attributes = current;  // a copy: Clear empties the node's own
    std::vector<CXMLVar*> children;
    children.swap(node->children);
    const CString value = node->value;
    node->Clear();
    node->value = value;
    node->children.swap(children);
    for (const auto& [name, attrValue] : attributes)
        if (!drop(name)) node->SetAttr(name, attrValue);
}

class Filler {
public:
    // settle: the conditional elements left empty go as they are made and no
    // mark-up is written, which is what RemoveConditionals would make of the
    // document afterwards.
    Filler(const CXMLVar* data, CString prefix, bool settle = false) : prefix_(std::move(prefix)), settle_(settle) {
        if (!data) return;
        // The first entry of a key wins, as a map lookup would have it.
        for (const CXMLVar* box : data->children) index_.emplace(box->name.view(), &box->value);
    }
    // Straight from the box map, which outlives the filling: no data tree and
    // no index of its own, the map's order being the index's.
    Filler(const CMapStringToString& boxes, bool settle) : settle_(settle), boxes_(&boxes.items()) {}

    // True when into is conditional: it is marked (or, settling, would have
    // been marked) with a non-empty if.
    bool Fill(const CXMLVar* from, CXMLVar* into, const std::string& row, int depth) {
        bool conditional = false;
        std::vector<TemplatePiece> scratch;
        for (const auto& [name, value] : from->Attributes()) {
            if (name == kRepeatAttr) continue;
            const std::vector<TemplatePiece>* pieces = name == kIfAttr ? nullptr : placeholderPieces(value, scratch);
            if (!pieces) {
                if (name == kIfAttr) conditional = conditional || !value.IsEmpty();
                if (!settle_ || name != kIfAttr) into->SetAttr(name, value);
                continue;
            }
            const CString filled = Expand(*pieces, row);
            if (!filled.IsEmpty()) into->SetAttr(name, filled);
        }
        if (const std::vector<TemplatePiece>* pieces = placeholderPieces(from->value, scratch)) {
            into->value = Expand(*pieces, row);
            if (!settle_) into->SetAttr(kIfAttr, kFilled);
            conditional = true;
        } else {
            into->value = from->value;
        }
        if (depth >= kMaxTemplateDepth) {
            if (!from->children.empty())
                DoLogF("Populate() template deeper than %d levels, cut at %s", depth, from->name.c_str());
            return conditional;
        }
        for (const CXMLVar* child : from->children) {
            const bool repeated = !child->GetAttr(kRepeatAttr).IsEmpty();
            // Repeats don't nest: inside a row, a repeated element is one more
            // element of that row.
            if (!repeated || !row.empty()) {
                CXMLVar* copy = into->AddChild(new CXMLVar(child->name), nullptr);
                const bool marked = Fill(child, copy, row, depth + 1);
                if (repeated && !settle_) copy->SetAttr(kIfAttr, kFilled);
                settle(into, copy, marked || repeated);
                continue;
            }
            for (const std::string& r : Rows(child)) {
                CXMLVar* copy = into->AddChild(new CXMLVar(child->name), nullptr);
                Fill(child, copy, r, depth + 1);
                if (!settle_) copy->SetAttr(kIfAttr, kFilled);
                settle(into, copy, true);
            }
        }
        return conditional;
    }

private:
    // Settling, a conditional copy just filled (its own children settled
    // already) goes when nothing is left in it.
    void settle(CXMLVar* into, CXMLVar* copy, bool conditional) const {
        if (!settle_ || !conditional) return;
        if (!copy->children.empty() || !blankText(copy->value) || !copy->Attributes().empty()) return;
        into->children.pop_back();
        delete copy;
    }

    CString Lookup(const CString& key) const {
        if (boxes_) {
            const auto it = prefix_.IsEmpty() ? boxes_->find(key) : boxes_->find(prefix_ + key);
            return it == boxes_->end() ? CString() : it->second;
        }
        const auto it = prefix_.IsEmpty() ? index_.find(key.view()) : index_.find((prefix_ + key).view());
        return it == index_.end() ? CString() : *it->second;
    }

    static CString WithRow(const CString& key, const std::string& row) {
        if (key.Find(kRowMark) < 0) return key;
        std::string out;
        for (const char c : key.view()) {
            if (c == kRowMark)
                out += row;
            else
                out += c;
        }
        return CString(std::move(out));
    }

    CString Resolve(const Placeholder& p, const std::string& row) const {
        for (const PlaceholderSource& source : p.sources) {
            const CString raw = source.literal ? source.text : Lookup(WithRow(source.text, row));
            CString text = FormatBox(p.kind, raw);
            if (!text.IsEmpty()) return text;
        }
        return CString();
    }

    // The pieces of a text that holds a placeholder (one look-up where
    // HasPlaceholder and then TemplatePieces would make two); null for any
    // other text. They stay valid until scratch is next used.
    static const std::vector<TemplatePiece>* placeholderPieces(const CString& text,
                                                               std::vector<TemplatePiece>& scratch) {
        if (text.view().find('{') == std::string_view::npos) return nullptr;
        const std::vector<TemplatePiece>& pieces = TemplatePieces(text.view(), scratch);
        return std::any_of(pieces.begin(), pieces.end(), [](const TemplatePiece& p) { return p.placeholder; })
                   ? &pieces
                   : nullptr;
    }

    // The placeholders' texts in place. When every placeholder is empty the
    // whole text is: the literal words around an empty box say nothing.
    CString Expand(const std::vector<TemplatePiece>& pieces, const std::string& row) const {
        CString out;
        bool anyFilled = false;
        for (const TemplatePiece& piece : pieces) {
            if (!piece.placeholder) {
                out += CString(piece.text);
                continue;
            }
            const CString value = Resolve(piece.parsed, row);
            anyFilled = anyFilled || !value.IsEmpty();
            out += value;
        }
        return anyFilled ? out : CString();
    }

    // The row numbers of a repeated element: every run of digits that stands
    // for "#" in a key of the box map that one of its placeholders names,
    // in the order of the numbers. Each row is kept as written, so QA10B.01
    // and QA10B.1 are two rows.
    std::vector<std::string> Rows(const CXMLVar* element) const {
        std::vector<std::pair<std::string, std::string>> patterns;  // text before and after "#"
        std::vector<const CXMLVar*> pending{element};
        while (!pending.empty()) {
            const CXMLVar* node = pending.back();
            pending.pop_back();
            auto collect = [&](const CString& text) {
                std::vector<TemplatePiece> scratch;
                for (const TemplatePiece& piece : TemplatePieces(text.view(), scratch)) {
                    if (!piece.placeholder) continue;
                    for (const PlaceholderSource& source : piece.parsed.sources) {
                        const int mark = source.literal ? -1 : source.text.Find(kRowMark);
                        if (mark < 0) continue;
                        const std::string key = (prefix_ + source.text).str();
                        const std::size_t at = static_cast<std::size_t>(prefix_.GetLength() + mark);
                        std::string after = key.substr(at + 1);
                        if (after.find(kRowMark) != std::string::npos) continue;  // one row mark a key
                        patterns.emplace_back(key.substr(0, at), std::move(after));
                    }
                }
            };
            collect(node->value);
            for (const auto& attribute : node->Attributes()) collect(attribute.second);
            for (const CXMLVar* child : node->children) pending.push_back(child);
        }

        std::set<std::pair<unsigned long, std::string>> rows;
        for (const auto& [before, after] : patterns) {
            // False once past the keys that start with before.
            const auto consider = [&, &before = before, &after = after](std::string_view key) {
                if (key.compare(0, before.size(), before) != 0) return false;
                if (key.size() < before.size() + after.size() + 1) return true;
                if (key.compare(key.size() - after.size(), after.size(), after) != 0) return true;
                const std::string middle(key.substr(before.size(), key.size() - before.size() - after.size()));
                if (middle.size() > kMaxRowDigits || !std::all_of(middle.begin(), middle.end(), isDigit)) return true;
                rows.emplace(std::stoul(middle), middle);
                return true;
            };
            if (boxes_) {
                for (auto it = boxes_->lower_bound(CString(before)); it != boxes_->end(); ++it)
                    if (!consider(it->first.view())) break;
            } else {
                for (auto it = index_.lower_bound(before); it != index_.end(); ++it)
                    if (!consider(it->first)) break;
            }
        }
        std::vector<std::string> out;
        out.reserve(rows.size());
        for (const auto& row : rows) out.push_back(row.second);
        return out;
    }

    CString prefix_;
    bool settle_ = false;
    const CMapStringToString::Storage* boxes_ = nullptr;  // else index_ over a data tree
    BoxIndex index_;
};

// Document order, each node with its path below the root.
void listNode(const CXMLVar* node, const CString& path, std::vector<BoxMapEntry>& out,
              std::vector<CString>* problems, int depth) {
    auto add = [&](const CString& text, const CString& where) {
        std::vector<std::string_view> bad;
        for (const TemplatePiece& piece : SplitTemplateText(text.view(), &bad))
            if (piece.placeholder)
                out.push_back({piece.parsed.SourcesText(), where, BoxKindName(piece.parsed.kind)});
        if (problems)
            for (const std::string_view b : bad) problems->push_back(where + ": " + CString(b));
    };
    for (const auto& [name, value] : node->Attributes()) {
        if (isMarkup(name)) continue;
        add(value, path.IsEmpty() ? "@" + name : path + "/@" + name);
    }
    add(node->value, path);
    if (depth >= kMaxTemplateDepth) return;
    for (const CXMLVar* child : node->children)
        listNode(child, path.IsEmpty() ? child->name : path + "/" + child->name, out, problems, depth + 1);
}

}  // namespace

CXMLVar* TaxToXML(const CMapStringToString& boxes) {
    auto* root = new CXMLVar("Boxes");
    for (const auto& [key, value] : boxes.items()) root->AddChild(new CXMLVar(key, value), nullptr);
    return root;
}

CGovTalk::CGovTalk(CXMLVar*& document) : document_(document) {}

CGovTalk::~CGovTalk() = default;

CXMLVar* CGovTalk::Populate(CXMLVar* templ, CXMLVar* data, int reserved, CString prefix) {
    (void)reserved;
    auto* document = new CXMLVar(templ ? templ->name : CString());
    if (templ) Filler(data, std::move(prefix)).Fill(templ, document, std::string(), 0);
    document_ = document;
    return document;
}

CXMLVar* CGovTalk::PopulateSettled(CXMLVar* templ, const CMapStringToString& boxes) {
    auto* document = new CXMLVar(templ ? templ->name : CString());
    if (templ) Filler(boxes, true).Fill(templ, document, std::string(), 0);
    document_ = document;
    return document;
}

void CGovTalk::RemoveConditionals(CXMLVar* document) {
    if (!document) return;
    // Pre-order, then backwards: every node comes after all of its children,
    // so a section sees its children already settled.
    std::vector<CXMLVar*> order;
    std::vector<CXMLVar*> pending{document};
    while (!pending.empty()) {
        CXMLVar* node = pending.back();
        pending.pop_back();
        order.push_back(node);
        for (auto it = node->children.rbegin(); it != node->children.rend(); ++it) pending.push_back(*it);
    }
    std::unordered_set<const CXMLVar*> doomed;
    for (auto it = order.rbegin(); it != order.rend(); ++it) {
        CXMLVar* node = *it;
        auto& kids = node->children;
        // Kept children close up in their order; no scratch buffer per node.
        if (!doomed.empty()) {
            std::size_t kept = 0;
            for (CXMLVar* kid : kids) {
                if (doomed.erase(kid))
                    delete kid;  // already without children of its own
                else
                    kids[kept++] = kid;
            }
            kids.resize(kept);
        }

        const bool conditional = !node->GetAttr(kIfAttr).IsEmpty();
        dropAttributes(node, isMarkup);
        const bool empty = kids.empty() && blankText(node->value) && node->Attributes().empty();
        if (conditional && empty && node != document) doomed.insert(node);
    }
}

std::vector<BoxMapEntry> ListBoxMap(const CXMLVar* templ, std::vector<CString>* problems) {
    std::vector<BoxMapEntry> out;
    if (templ) listNode(templ, CString(), out, problems, 0);
    return out;
}
