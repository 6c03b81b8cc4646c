// Building the test table from the model's declarations, running a test,
// and the walk over a document.
#include "schema/table.h"

#include <algorithm>
#include <map>
#include <utility>

#include "common/library.h"
#include "schema/schema.h"

using namespace schemamodel;

namespace {

CString pairText(std::string_view parent, std::string_view element) {
    return "(" + CString(parent) + ", " + CString(element) + ")";
}

// Rows by element name first: most elements stand under one parent only.
bool pairLess(std::string_view parentA, std::string_view elementA, std::string_view parentB,
              std::string_view elementB) {
    if (elementA != elementB) return elementA < elementB;
    return parentA < parentB;
}

}  // namespace

// ---------------------------------------------------------------- running

void CSchemaTest::Run(const char* label, CXMLVar* node, CXMLVar* errors) const {
    if (!node) return;
    switch (shape) {
        case Simple:
            for (const Step& s : steps) {
                switch (s.op) {
                    case Op::MinLength: checkminlength(s.n, label, node, errors); break;
                    case Op::MaxLength: checkmaxlength(s.n, label, node, errors); break;
                    case Op::Length: checklength(s.n, label, node, errors); break;
                    case Op::Pattern:
                        if (s.pattern) checkpattern(*s.pattern, label, node, errors);
                        break;
                    case Op::MaxInclusive: checkmaxinclusive(s.limit, label, node, errors); break;
                    case Op::MinInclusive: checkmininclusive(s.limit, label, node, errors); break;
                    case Op::MinExclusive: checkminexclusive(s.limit, label, node, errors); break;
                    case Op::Integer: checkinteger(label, node, errors); break;
                    case Op::Decimal: checkdecimal(label, node, errors); break;
                    case Op::NonNegative: checknonnegative(label, node, errors); break;
                    case Op::Year: checkyear(label, node, errors); break;
                    case Op::Enumeration: checkenumeration(s.values, label, node, errors); break;
                    case Op::None:
                    case Op::ElementLengths: break;
                }
            }
            break;
        case Sequence: {
            CStringArray seen;
            for (const Child& c : children) {
                if (c.counted)
                    checkoccurs(node, errors, c.name, c.min, c.max, &seen);
                else
                    seen.Add(c.name);
            }
            checknoother(node, errors, &seen);
            break;
        }
        case Choice:
            checkchoice(node, errors, &names);
            break;
    }
}

bool CSchemaTest::operator==(const CSchemaTest& other) const {
    if (shape != other.shape || steps.size() != other.steps.size() || children.size() != other.children.size() ||
        names.GetSize() != other.names.GetSize())
        return false;
    for (std::size_t i = 0; i < steps.size(); ++i) {
        const Step& a = steps[i];
        const Step& b = other.steps[i];
        if (a.op != b.op || a.n != b.n || !(a.limit == b.limit) || a.values.size() != b.values.size()) return false;
        if ((a.pattern ? a.pattern->Text() : CString()) != (b.pattern ? b.pattern->Text() : CString())) return false;
        for (std::size_t v = 0; v < a.values.size(); ++v)
            if (!(CString(a.values[v]) == b.values[v])) return false;
    }
    for (std::size_t i = 0; i < children.size(); ++i) {
        const Child& a = children[i];
        const Child& b = other.children[i];
        if (!(a.name == b.name) || a.counted != b.counted || a.min != b.min || a.max != b.max) return false;
    }
    for (int i = 0; i < names.GetSize(); ++i)
        if (!(names[i] == other.names[i])) return false;
    return true;
}

// ---------------------------------------------------------------- building

struct CSchemaTable::Building {
    std::vector<const Table*> taken;
    std::vector<std::pair<CString, CString>> sharedPairs;  // counted here, their rows elsewhere
};

CSchemaTable::CSchemaTable(std::span<const Table* const> tables) {
    Building b;
    for (const Table* t : tables)
        if (t) addTable(*t, t->parent ? t->parent : "", false, b);

    index_.resize(rows_.size());
    for (std::size_t i = 0; i < index_.size(); ++i) index_[i] = i;
    std::stable_sort(index_.begin(), index_.end(), [this](std::size_t x, std::size_t y) {
        return pairLess(rows_[x].parent.view(), rows_[x].element.view(), rows_[y].parent.view(),
                        rows_[y].element.view());
    });
    for (std::size_t i = 0; i < index_.size(); ++i)
        firstOfPair_.emplace(PairKey{rows_[index_[i]].parent.view(), rows_[index_[i]].element.view()}, i);

    // The rows of one pair must all run the same test: the walk can't tell
    // which declaration a node stands for.
    for (std::size_t i = 1; i < index_.size(); ++i) {
        const Row& a = rows_[index_[i - 1]];
        const Row& c = rows_[index_[i]];
        if (a.parent == c.parent && a.element == c.element && !(*a.test == *c.test))
            problem("pair " + pairText(a.parent.view(), c.element.view()) + " has rows with different tests");
    }
    for (const auto& [parent, element] : b.sharedPairs)
        if (Find(parent.view(), element.view()).empty())
            problem("shared pair " + pairText(parent.view(), element.view()) + " has no row of its own");
}

void CSchemaTable::addTable(const Table& table, const char* parent, bool topCounted, Building& b) {
    if (std::find(b.taken.begin(), b.taken.end(), &table) != b.taken.end()) {
        problem("table under " + CString(parent) + " is taken in twice");
        return;
    }
    b.taken.push_back(&table);

    const std::span<const Decl> rows = table.rows;
    std::vector<const Decl*> path;  // the latest row at each depth above the current one
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const Decl& d = rows[i];
        const CString name(d.name);
        if (d.depth < 0 || d.depth > static_cast<int>(path.size())) {
            problem("row " + name + " under " + CString(parent) + ": depth " + fmt(d.depth) + " does not follow");
            // Its rows below can't be placed either.
            while (i + 1 < rows.size() && rows[i + 1].depth > d.depth) ++i;
            continue;
        }
        path.resize(static_cast<std::size_t>(d.depth));
        const Decl* up = path.empty() ? nullptr : path.back();
        const CString parentName = up ? CString(up->name) : CString(parent);
        path.push_back(&d);
        if (name.IsEmpty()) problem("row without a name under " + parentName);

        // The occurrence must be what the parent's content does with it.
        Occ expected = Occ::NotCounted;
        if (up ? (up->content.kind == Kind::Sequence) : topCounted)
            expected = d.occurs.kind == Occ::Accepted ? Occ::Accepted : Occ::Counted;
        else if (up && up->content.kind == Kind::Choice)
            expected = Occ::Alternative;
        if (d.occurs.kind != expected)
            problem(pairText(parentName.view(), name.view()) + ": occurrence does not fit the parent's content");
        if (d.occurs.kind == Occ::Counted && (d.occurs.min < 0 || d.occurs.min > d.occurs.max))
            problem(pairText(parentName.view(), name.view()) + ": occurrence " + fmt(d.occurs.min) + ".." +
                    fmt(d.occurs.max));

        std::size_t end = i + 1;
        while (end < rows.size() && rows[end].depth > d.depth) ++end;
        const std::span<const Decl> below = rows.subspan(i + 1, end - i - 1);

        if (d.content.kind == Kind::Shared) b.sharedPairs.emplace_back(parentName, name);
        if (std::unique_ptr<CSchemaTest> test = compile(d, below)) {
            rows_.push_back({parentName, name, test.get()});
            tests_.push_back(std::move(test));
        }
        if (d.content.kind == Kind::Sections)
            for (const Table* t : d.content.sections) {
                if (!t) continue;
                if (!(CString(t->parent) == name))
                    problem("table under " + CString(t->parent) + " is taken in under " + name);
                addTable(*t, d.name, true, b);
            }
    }
}

std::unique_ptr<CSchemaTest> CSchemaTable::compile(const Decl& decl, std::span<const Decl> below) {
    auto test = std::make_unique<CSchemaTest>();
    const CString name(decl.name);
    auto addChild = [&](const Decl& child) {
        CSchemaTest::Child c;
        c.name = child.name;
        if (child.occurs.kind == Occ::Counted) {
            c.min = child.occurs.min;
            c.max = child.occurs.max;
        } else if (child.occurs.kind == Occ::Accepted) {
            c.counted = false;
        } else {
            return;  // reported where the child's own row is read
        }
        for (const CSchemaTest::Child& earlier : test->children)
            if (earlier.name == c.name) problem("sequence " + name + " lists " + c.name + " twice");
        test->children.push_back(std::move(c));
    };

    switch (decl.content.kind) {
        case Kind::NoTest:
        case Kind::Shared:
            return nullptr;
        case Kind::NoCheck:
            break;
        case Kind::NoChildren:
            test->shape = CSchemaTest::Sequence;
            break;
        case Kind::Sequence:
            test->shape = CSchemaTest::Sequence;
            for (const Decl& child : below)
                if (child.depth == decl.depth + 1) addChild(child);
            break;
        case Kind::Sections:
            test->shape = CSchemaTest::Sequence;
            for (const Table* t : decl.content.sections)
                if (t)
                    for (const Decl& top : t->rows)
                        if (top.depth == 0) addChild(top);
            break;
        case Kind::Choice:
            test->shape = CSchemaTest::Choice;
            for (const Decl& child : below)
                if (child.depth == decl.depth + 1) test->names.Add(child.name);
            break;
        case Kind::OfType:
            addTypeSteps(decl, *test);
            break;
    }
    if (decl.content.kind != Kind::OfType && decl.content.extra.op != Op::None)
        problem(name + ": a further check needs a type");
    return test;
}

void CSchemaTable::addTypeSteps(const Decl& decl, CSchemaTest& test) {
    const std::span<const TypeDef> catalogue = typeCatalogue();
    const Type t = decl.content.type;
    const CString name(decl.name);
    if (t == NoType || t >= TypeCount || catalogue.size() != TypeCount || catalogue[t].type != t) {
        problem(name + ": type " + fmt(t) + " is not in the catalogue");
        return;
    }
    // Base types first.
    std::vector<Type> chain;
    for (Type x = t; x != NoType && x < TypeCount && chain.size() < TypeCount; x = catalogue[x].base)
        chain.push_back(x);
    if (chain.size() >= TypeCount) problem(name + ": the bases of type " + catalogue[t].name + " go round");
    std::reverse(chain.begin(), chain.end());

    const int minLen = decl.content.minLength, maxLen = decl.content.maxLength;
    if (minLen >= 0 && maxLen >= 0 && minLen > maxLen)
        problem(name + ": " + fmt(minLen) + " to " + fmt(maxLen) + " characters");
    bool lengthsPlaced = false;
    auto lengths = [&] {
        if (lengthsPlaced) return;
        lengthsPlaced = true;
        if (minLen >= 0) addStep(minLength(minLen), decl.name, test);
        if (maxLen >= 0) addStep(maxLength(maxLen), decl.name, test);
    };
    for (Type x : chain)
        for (const Check& c : catalogue[x].checks) {
            if (c.op == Op::ElementLengths)
                lengths();
            else if (c.op != Op::None)
                addStep(c, decl.name, test);
        }
    lengths();
    if (decl.content.extra.op != Op::None) addStep(decl.content.extra, decl.name, test);
}

void CSchemaTable::addStep(const Check& check, const char* where, CSchemaTest& test) {
    CSchemaTest::Step s;
    s.op = check.op;
    s.n = check.n;
    s.limit = check.text;
    s.values = check.values;
    switch (check.op) {
        case Op::Pattern: {
            const CSchemaPattern* p = knownPattern(s.limit.view());
            if (!p) {
                ownPatterns_.push_back(std::make_unique<CSchemaPattern>(s.limit.view()));
                p = ownPatterns_.back().get();
            }
            if (!p->IsValid()) problem(CString(where) + ": pattern " + s.limit + " is not valid");
            s.pattern = p;
            break;
        }
        case Op::MaxInclusive:
        case Op::MinInclusive:
        case Op::MinExclusive:
            if (s.limit.IsEmpty()) problem(CString(where) + ": a limit without its text");
            break;
        case Op::Enumeration:
            for (const char* v : s.values)
                if (!v) problem(CString(where) + ": an enumeration with a missing value");
            break;
        default:
            break;
    }
    test.steps.push_back(std::move(s));
}

// ---------------------------------------------------------------- looking up and walking

template <typename Each>
void CSchemaTable::forPair(std::string_view parent, std::string_view element, Each each) const {
    const auto first = firstOfPair_.find(PairKey{parent, element});
    if (first == firstOfPair_.end()) return;
    for (auto it = index_.begin() + static_cast<std::ptrdiff_t>(first->second); it != index_.end(); ++it) {
        const Row& r = rows_[*it];
        if (r.element.view() != element || r.parent.view() != parent) break;
        each(r);
    }
}

std::vector<const CSchemaTable::Row*> CSchemaTable::Find(std::string_view parent, std::string_view element) const {
    std::vector<const Row*> found;
    forPair(parent, element, [&](const Row& r) { found.push_back(&r); });
    return found;
}

void CSchemaTable::Visit(CXMLVar* node, CXMLVar* errors) const {
    if (!node) return;
    // A node without a parent looks for the parent name "", which only a
    // table under the empty name has.
    const std::string_view parent = node->parent ? node->parent->name.view() : std::string_view();
    // Each row of the pair runs: a pair declared twice tests twice.
    forPair(parent, node->name.view(), [&](const Row& r) { r.test->Run("", node, errors); });
}

void CSchemaTable::Walk(CXMLVar* root, CXMLVar* errors) const {
    if (!root) return;
    struct Context {
        const CSchemaTable* table;
        CXMLVar* errors;
    } context{this, errors};
    root->foreach(
        [](CXMLVar* node, void* c) {
            auto* ctx = static_cast<Context*>(c);
            ctx->table->Visit(node, ctx->errors);
        },
        &context, 0);
}

const CSchemaTable& ReturnSchema() {
    static const CSchemaTable table(returnModel());
    return table;
}

const CSchemaTable& ReturnSchema(RateLadder ladder) {
    if (ladder != RateLadder::CurrentLaw) return ReturnSchema();
    static const CSchemaTable table(returnModelCurrentLaw());
    return table;
}

void schemavisit(CXMLVar* node, void* errors) { ReturnSchema().Visit(node, static_cast<CXMLVar*>(errors)); }

// Nodes are visited in document order, a node before its children, so the
// errors read top to bottom as the return does.
void schemawalk(CXMLVar* root, CXMLVar* errors) {
    if (root) root->foreach(schemavisit, errors, 0);
}

void schemawalk(CXMLVar* root, CXMLVar* errors, RateLadder ladder) {
    if (ladder != RateLadder::CurrentLaw) return schemawalk(root, errors);
    ReturnSchema(ladder).Walk(root, errors);
}
