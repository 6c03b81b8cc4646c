// Patterns found by fuzzing: few states of the automaton but huge state sets,
// which made building the table cost seconds. They are matched by state sets,
// with the same answers.
#include <gtest/gtest.h>

#include <string>

#include "schema/pattern.h"

namespace {

TEST(PatternHostile, HugeStateSetsAreMatchedByStateSets) {
    struct Case {
        const char* pattern;
        std::size_t longest;  // the most a's the pattern takes
    };
    const Case cases[] = {
        {"(a?){1000}", 1000},
        {"((a|b)?){1000}", 1000},
        {"(((a?){100}){99})", 9900},
        {"((a?){1000}){9}", 9000},
    };
    for (const Case& c : cases) {
        const CSchemaPattern p(c.pattern);
        ASSERT_TRUE(p.IsValid()) << c.pattern;
        EXPECT_EQ(p.DfaStates(), 0) << c.pattern;
        EXPECT_TRUE(p.Matches("")) << c.pattern;
        EXPECT_TRUE(p.Matches("aaaa")) << c.pattern;
        EXPECT_TRUE(p.Matches(std::string(c.longest, 'a'))) << c.pattern;
        EXPECT_FALSE(p.Matches(std::string(c.longest + 1, 'a'))) << c.pattern;
        EXPECT_FALSE(p.Matches("aac")) << c.pattern;
        CString message;
        EXPECT_EQ(patternvalidate(c.pattern, "c", message), 0) << c.pattern;
        EXPECT_EQ(message.str(), std::string("does not match the pattern ") + c.pattern);
    }
}

}  // namespace
