// Pattern compiler: parse into a small syntax tree, build a Thompson automaton
// from it, then a deterministic table by subset construction over byte
// classes (bytes that no set tells apart share a column).
#include "schema/pattern.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>

#include "schema/model/model.h"

namespace {

using ByteSet = std::array<bool, 256>;

struct Node {
    enum Kind { Set, Seq, Alt, Repeat } kind = Seq;
    int set = -1;
    std::vector<int> kids;
    int min = 1;
    int max = 1;  // -1: no upper bound
};

ByteSet emptySet() {
    ByteSet s;
    s.fill(false);
    return s;
}

ByteSet digitSet() {
    ByteSet s = emptySet();
    for (int c = '0'; c <= '9'; ++c) s[static_cast<std::size_t>(c)] = true;
    return s;
}

// The single-character escapes of the schema dialect (a letter n, r or t
// stands for the control character).
bool singleEscape(unsigned char c, unsigned char& out) {
    switch (c) {
        case 'n': out = '\n'; return true;
        case 'r': out = '\r'; return true;
        case 't': out = '\t'; return true;
        case '\\': case '|': case '.': case '?': case '*': case '+': case '(': case ')':
        case '{': case '}': case '-': case '[': case ']': case '^':
            out = c;
            return true;
        default:
            return false;
    }
}

class Parser {
public:
    Parser(std::string_view pattern, std::vector<ByteSet>& sets, std::vector<Node>& nodes)
        : p_(pattern), sets_(sets), nodes_(nodes) {}

    bool Parse(int& root) {
        root = alternation(0);
        if (pos_ != p_.size()) ok_ = false;
        return ok_;
    }

private:
    bool more() const { return pos_ < p_.size(); }
    unsigned char peek() const { return static_cast<unsigned char>(p_[pos_]); }
    bool eat(char c) {
        if (more() && p_[pos_] == c) {
            ++pos_;
            return true;
        }
        return false;
    }
    int fail() {
        ok_ = false;
        return addSet(emptySet());
    }
    int add(Node n) {
        nodes_.push_back(std::move(n));
        return static_cast<int>(nodes_.size()) - 1;
    }
    int addSet(const ByteSet& s) {
        sets_.push_back(s);
        Node n;
        n.kind = Node::Set;
        n.set = static_cast<int>(sets_.size()) - 1;
        return add(std::move(n));
    }

    int alternation(int depth) {
        Node alt;
        alt.kind = Node::Alt;
        alt.kids.push_back(sequence(depth));
        while (ok_ && eat('|')) alt.kids.push_back(sequence(depth));
        if (alt.kids.size() == 1) return alt.kids.front();
        return add(std::move(alt));
    }

    int sequence(int depth) {
        Node seq;
        seq.kind = Node::Seq;
        while (ok_ && more() && peek() != '|' && peek() != ')') {
            const int a = atom(depth);
            if (!ok_) break;
            seq.kids.push_back(quantified(a));
        }
        return add(std::move(seq));
    }

    int atom(int depth) {
        const unsigned char c = peek();
        ++pos_;
        switch (c) {
            case '(': {
                if (depth + 1 > CSchemaPattern::kMaxNesting) return fail();
                const int inner = alternation(depth + 1);
                if (!eat(')')) return fail();
                return inner;
            }
            case '[':
                return charClass();
            case '.': {
                ByteSet all;
                all.fill(true);
                return addSet(all);
            }
            case '\\': {
                if (!more()) return fail();
                const unsigned char e = peek();
                ++pos_;
                if (e == 'd') return addSet(digitSet());
                unsigned char lit = 0;
                if (!singleEscape(e, lit)) return fail();
                return literal(lit);
            }
            case '?': case '*': case '+': case '{': case '}': case ']':
                return fail();
            default:
                return literal(c);
        }
    }

    int literal(unsigned char c) {
        ByteSet s = emptySet();
        s[c] = true;
        return addSet(s);
    }

    // One member of a class that can end a range: a byte or a single escape.
    bool classChar(unsigned char& out) {
        if (!more()) return false;
        const unsigned char c = peek();
        if (c == '[' || c == ']') return false;
        ++pos_;
        if (c != '\\') {
            out = c;
            return true;
        }
        if (!more()) return false;
        const unsigned char e = peek();
        ++pos_;
        return singleEscape(e, out);
    }

    int charClass() {
        const bool negated = eat('^');
        ByteSet s = emptySet();
        bool first = true;
        for (;;) {
            if (!more()) return fail();
            const unsigned char c = peek();
            if (c == ']') {
                if (first) return fail();  // an empty class
                ++pos_;
                break;
            }
            if (c == '[') return fail();  // class subtraction is outside the dialect
            // An unescaped hyphen is a member only at either end of the class.
            if (c == '-' && !first && !(pos_ + 1 < p_.size() && p_[pos_ + 1] == ']')) return fail();
            if (c == '\\' && pos_ + 1 < p_.size() && p_[pos_ + 1] == 'd') {
                pos_ += 2;
                const ByteSet d = digitSet();
                for (std::size_t i = 0; i < 256; ++i) s[i] = s[i] || d[i];
                first = false;
                continue;
            }
            unsigned char lo = 0;
            if (!classChar(lo)) return fail();
            unsigned char hi = lo;
            if (more() && peek() == '-' && pos_ + 1 < p_.size() && p_[pos_ + 1] != ']') {
                ++pos_;
                if (!classChar(hi) || hi < lo) return fail();
            }
            for (int b = lo; b <= hi; ++b) s[static_cast<std::size_t>(b)] = true;
            first = false;
        }
        if (negated)
            for (auto& member : s) member = !member;
        return addSet(s);
    }

    bool number(int& out) {
        if (!more() || peek() < '0' || peek() > '9') return false;
        out = 0;
        while (more() && peek() >= '0' && peek() <= '9') {
            out = out * 10 + (peek() - '0');
            ++pos_;
            if (out > CSchemaPattern::kMaxRepeat) return false;
        }
        return true;
    }

    int quantified(int atomNode) {
        if (!more()) return atomNode;
        int min = 1, max = 1;
        switch (peek()) {
            case '*': min = 0; max = -1; ++pos_; break;
            case '+': min = 1; max = -1; ++pos_; break;
            case '?': min = 0; max = 1; ++pos_; break;
            case '{':
                ++pos_;
                if (!number(min)) return fail();
                max = min;
                if (eat(',')) {
                    max = -1;
                    if (more() && peek() != '}' && (!number(max) || max < min)) return fail();
                }
                if (!eat('}')) return fail();
                break;
            default:
                return atomNode;
        }
        Node r;
        r.kind = Node::Repeat;
        r.kids.push_back(atomNode);
        r.min = min;
        r.max = max;
        return add(std::move(r));
    }

    std::string_view p_;
    std::size_t pos_ = 0;
    bool ok_ = true;
    std::vector<ByteSet>& sets_;
    std::vector<Node>& nodes_;
};

}  // namespace

// ---------------------------------------------------------------- compiling

namespace {

struct Emitter {
    const std::vector<Node>& nodes;
    std::vector<int>& sets;     // per state: set index or -1
    std::vector<int>& nexts;    // per state: target after a byte
    std::vector<std::vector<int>>& eps;
    bool overflow = false;
    long steps = 0;  // an empty group repeated inside repeats costs steps but no states

    int newState() {
        if (static_cast<int>(sets.size()) >= CSchemaPattern::kMaxNfaStates) {
            overflow = true;
            return 0;
        }
        sets.push_back(-1);
        nexts.push_back(-1);
        eps.emplace_back();
        return static_cast<int>(sets.size()) - 1;
    }

    // The start of a fragment matching the node and going on to next.
    int emit(int index, int next) {
        if (overflow || ++steps > 10L * CSchemaPattern::kMaxNfaStates) {
            overflow = true;
            return next;
        }
        const Node& n = nodes[static_cast<std::size_t>(index)];
        switch (n.kind) {
            case Node::Set: {
                const int s = newState();
                if (overflow) return next;
                sets[static_cast<std::size_t>(s)] = n.set;
                nexts[static_cast<std::size_t>(s)] = next;
                return s;
            }
            case Node::Seq:
                for (auto it = n.kids.rbegin(); it != n.kids.rend() && !overflow; ++it) next = emit(*it, next);
                return next;
            case Node::Alt: {
                std::vector<int> starts;
                for (int kid : n.kids) starts.push_back(emit(kid, next));
                const int s = newState();
                if (overflow) return next;
                eps[static_cast<std::size_t>(s)] = std::move(starts);
                return s;
            }
            case Node::Repeat: {
                const int kid = n.kids.front();
                int chain = next;
                if (n.max < 0) {
                    const int loop = newState();
                    if (overflow) return next;
                    const int body = emit(kid, loop);
                    eps[static_cast<std::size_t>(loop)] = {body, next};
                    chain = loop;
                } else {
                    for (int i = 0; i < n.max - n.min && !overflow; ++i) {
                        const int body = emit(kid, chain);
                        const int skip = newState();
                        if (overflow) return next;
                        eps[static_cast<std::size_t>(skip)] = {body, next};
                        chain = skip;
                    }
                }
                for (int i = 0; i < n.min && !overflow; ++i) chain = emit(kid, chain);
                return chain;
            }
        }
        return next;
    }
};

}  // namespace

CSchemaPattern::CSchemaPattern(std::string_view pattern) : text_(pattern) {
    std::vector<Node> nodes;
    int root = -1;
    Parser parser(pattern, sets_, nodes);
    if (!parser.Parse(root)) return;

    std::vector<int> stateSets, stateNexts;
    std::vector<std::vector<int>> stateEps;
    Emitter emitter{nodes, stateSets, stateNexts, stateEps};
    const int accept = emitter.newState();
    const int start = emitter.emit(root, accept);
    if (emitter.overflow) return;

    nfa_.resize(stateSets.size());
    for (std::size_t i = 0; i < nfa_.size(); ++i) {
        nfa_[i].set = stateSets[i];
        nfa_[i].next = stateNexts[i];
        nfa_[i].eps = std::move(stateEps[i]);
    }
    start_ = start;
    accept_ = accept;
    valid_ = true;
    buildDfa();
}

// Extends the states to everything reachable without input. mark is all
// zero on entry and is left so.
void CSchemaPattern::closure(std::vector<int>& states, std::vector<char>& mark) const {
    std::vector<int> stack;
    stack.swap(states);
    for (int s : stack) mark[static_cast<std::size_t>(s)] = 1;
    states = stack;
    while (!stack.empty()) {
        const int s = stack.back();
        stack.pop_back();
        for (int t : nfa_[static_cast<std::size_t>(s)].eps) {
            if (mark[static_cast<std::size_t>(t)]) continue;
            mark[static_cast<std::size_t>(t)] = 1;
            states.push_back(t);
            stack.push_back(t);
        }
    }
    for (int s : states) mark[static_cast<std::size_t>(s)] = 0;
}

void CSchemaPattern::buildDfa() {
    // Byte classes: bytes that belong to exactly the same sets.
    std::map<std::vector<bool>, int> signatures;
    std::vector<unsigned char> representative;
    for (int b = 0; b < 256; ++b) {
        std::vector<bool> sig(sets_.size());
        for (std::size_t i = 0; i < sets_.size(); ++i) sig[i] = sets_[i][static_cast<std::size_t>(b)];
        auto [it, added] = signatures.emplace(std::move(sig), static_cast<int>(representative.size()));
        if (added) representative.push_back(static_cast<unsigned char>(b));
        classOf_[static_cast<std::size_t>(b)] = static_cast<std::uint8_t>(it->second);
    }
    classes_ = static_cast<int>(representative.size());

    std::vector<char> mark(nfa_.size(), 0);
    // A state of the table is the sorted list of the automaton states that
    // read a byte, plus the accepting state; the rest are bookkeeping.
    auto key = [this](std::vector<int> states) {
        std::vector<int> k;
        for (int s : states)
            if (nfa_[static_cast<std::size_t>(s)].set >= 0 || s == accept_) k.push_back(s);
        std::sort(k.begin(), k.end());
        return k;
    };

    std::map<std::vector<int>, int> ids;
    std::vector<std::vector<int>> states;
    auto intern = [&](std::vector<int> k) -> int {
        auto it = ids.find(k);
        if (it != ids.end()) return it->second;
        const int id = static_cast<int>(states.size());
        ids.emplace(k, id);
        states.push_back(std::move(k));
        return id;
    };

    intern({});  // 0: dead
    std::vector<int> seed{start_};
    closure(seed, mark);
    dfaStart_ = intern(key(std::move(seed)));

    std::vector<std::uint16_t> table;
    // Each step costs the size of the state set it reaches, so a pattern
    // whose sets are huge gives up long before the count of states would.
    long work = 0;
    for (std::size_t i = 0; i < states.size(); ++i) {
        if (static_cast<int>(states.size()) > kMaxDfaStates || work > kMaxDfaWork) return;  // simulate instead
        for (int c = 0; c < classes_; ++c) {
            const unsigned char b = representative[static_cast<std::size_t>(c)];
            std::vector<int> moved;
            for (int s : states[i]) {
                const NfaState& st = nfa_[static_cast<std::size_t>(s)];
                if (st.set >= 0 && sets_[static_cast<std::size_t>(st.set)][b]) moved.push_back(st.next);
            }
            std::sort(moved.begin(), moved.end());
            moved.erase(std::unique(moved.begin(), moved.end()), moved.end());
            closure(moved, mark);
            work += static_cast<long>(moved.size()) + 1;
            table.push_back(static_cast<std::uint16_t>(intern(key(std::move(moved)))));
        }
    }
    if (static_cast<int>(states.size()) > kMaxDfaStates || work > kMaxDfaWork) return;

    next_ = std::move(table);
    accepting_.resize(states.size());
    for (std::size_t i = 0; i < states.size(); ++i)
        accepting_[i] = std::binary_search(states[i].begin(), states[i].end(), accept_) ? 1 : 0;
    useDfa_ = true;
}

bool CSchemaPattern::simulate(std::string_view text) const {
    std::vector<char> mark(nfa_.size(), 0);
    std::vector<int> current{start_};
    closure(current, mark);
    std::vector<int> moved;
    for (char ch : text) {
        const auto b = static_cast<unsigned char>(ch);
        moved.clear();
        for (int s : current) {
            const NfaState& st = nfa_[static_cast<std::size_t>(s)];
            if (st.set >= 0 && sets_[static_cast<std::size_t>(st.set)][b] &&
                !mark[static_cast<std::size_t>(st.next)]) {
                mark[static_cast<std::size_t>(st.next)] = 1;
                moved.push_back(st.next);
            }
        }
        for (int s : moved) mark[static_cast<std::size_t>(s)] = 0;
        if (moved.empty()) return false;
        current.swap(moved);
        closure(current, mark);
    }
    return std::find(current.begin(), current.end(), accept_) != current.end();
}

bool CSchemaPattern::Matches(std::string_view text) const {
    if (!valid_) return false;
    if (!useDfa_) return simulate(text);
    const std::uint16_t* next = next_.data();
    const int classes = classes_;
    int state = dfaStart_;
    for (char ch : text) {
        state = next[state * classes + classOf_[static_cast<unsigned char>(ch)]];
        if (state == 0) return false;
    }
    return accepting_[static_cast<std::size_t>(state)] != 0;
}

// ---------------------------------------------------------------- the registry

namespace {

struct KnownPatterns {
    std::vector<std::unique_ptr<CSchemaPattern>> compiled;
    std::unordered_map<std::string_view, const CSchemaPattern*> byText;

    KnownPatterns() {
        for (const char* text : schemamodel::cataloguePatterns()) {
            if (byText.count(text)) continue;
            compiled.push_back(std::make_unique<CSchemaPattern>(text));
            // The key views the compiled copy's own text, which lives as long as the map.
            byText.emplace(compiled.back()->Text().view(), compiled.back().get());
        }
    }
};

const KnownPatterns& known() {
    static const KnownPatterns patterns;
    return patterns;
}

}  // namespace

const CSchemaPattern* knownPattern(std::string_view pattern) {
    const auto& k = known();
    auto it = k.byText.find(pattern);
    return it == k.byText.end() ? nullptr : it->second;
}

int patternvalidate(const CSchemaPattern& pattern, std::string_view text, CString& message) {
    if (pattern.Matches(text)) return 1;
    // The pattern itself, as the filing service names it in its own message,
    // so that a user can see which characters or form the value lacks.
    if (pattern.IsValid())
        message = "does not match the pattern " + pattern.Text();
    else
        message = "cannot be checked: the pattern " + pattern.Text() + " is not valid";
    return 0;
}

int patternvalidate(const char* pattern, const char* text, CString& message) {
    const std::string_view p(pattern ? pattern : "");
    const std::string_view t(text ? text : "");
    if (const CSchemaPattern* compiled = knownPattern(p)) return patternvalidate(*compiled, t, message);
    const CSchemaPattern once(p);
    return patternvalidate(once, t, message);
}
