// The pattern matcher of the schema tests: the xs:pattern dialect the return
// schema uses (literals, ".", classes and negated classes with ranges, "\d",
// escaped punctuation, "*", "+", "?", "{n}", "{n,}", "{n,m}", groups with "|").
// Text and patterns are bytes of the host's single-byte code page, so a class
// may hold bytes above 127 (the pound sign is 0xA3) as plain members.
//
// A pattern is compiled once into a table-driven automaton: byte -> byte class
// -> next state, one lookup per byte of the text, no backtracking and no
// recursion over the text, so a huge value costs time linear in its length.
// Patterns whose automaton would grow too large are matched by simulating the
// state sets instead; the answer is the same.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/cstring.h"

class CSchemaPattern {
public:
    explicit CSchemaPattern(std::string_view pattern);

    // False when the pattern is outside the dialect; such a pattern matches nothing.
    bool IsValid() const noexcept { return valid_; }
    const CString& Text() const noexcept { return text_; }
    // Whole-text match, never a part of the text.
    bool Matches(std::string_view text) const;
    // Size of the compiled automaton; 0 when the state sets are simulated.
    int DfaStates() const noexcept { return useDfa_ ? static_cast<int>(accepting_.size()) : 0; }

    // Limits that keep a hostile pattern from costing unbounded memory.
    static constexpr int kMaxRepeat = 1000;    // n and m of {n,m}
    static constexpr int kMaxNesting = 64;     // groups inside groups
    static constexpr int kMaxNfaStates = 20000;
    static constexpr int kMaxDfaStates = 2000;
    static constexpr long kMaxDfaWork = 1L << 18;  // state-set entries visited while building

private:
    struct NfaState {
        int set = -1;          // index into sets_, or -1 for a state without input
        int next = -1;         // after consuming a byte of the set
        std::vector<int> eps;  // moves without input
    };

    void closure(std::vector<int>& states, std::vector<char>& mark) const;
    void buildDfa();
    bool simulate(std::string_view text) const;

    CString text_;
    bool valid_ = false;
    std::vector<std::array<bool, 256>> sets_;
    std::vector<NfaState> nfa_;
    int start_ = -1;
    int accept_ = -1;

    bool useDfa_ = false;
    std::array<std::uint8_t, 256> classOf_{};
    int classes_ = 0;
    std::vector<std::uint16_t> next_;  // state * classes_ + class; state 0 is dead
    std::vector<std::uint8_t> accepting_;
    int dfaStart_ = 0;
};

// The distinct patterns of the type catalogue, compiled once on first use.
// Null for a pattern that isn't among them.
const CSchemaPattern* knownPattern(std::string_view pattern);

// Non-zero when the whole text matches the pattern. On failure, zero, with the
// text a user sees in message. A pattern of the catalogue is taken ready
// compiled; any other is compiled for the call.
int patternvalidate(const char* pattern, const char* text, CString& message);
int patternvalidate(const CSchemaPattern& pattern, std::string_view text, CString& message);
