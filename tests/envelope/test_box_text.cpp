// Box texts as the document wants them, and the placeholder syntax.
#include <gtest/gtest.h>

#include "envelope/envelope.h"

namespace {

struct FormatCase {
    BoxKind kind;
    const char* text;
    const char* expected;
};

TEST(FormatBox, EachKindWritesTheDocumentsForm) {
    const FormatCase cases[] = {
        // text: as typed, without surrounding blanks
        {BoxKind::Text, "  Example Trading Limited ", "Example Trading Limited"},
        {BoxKind::Text, "Yahoo!", "Yahoo!"},
        {BoxKind::Text, "", ""},
        {BoxKind::Text, "   ", ""},
        // amounts: two decimals, noughts empty unless "zero"
        {BoxKind::Amount, "185000", "185000.00"},
        {BoxKind::Amount, "185000.000000", "185000.00"},
        {BoxKind::Amount, "1,250.5", "1250.50"},
        {BoxKind::Amount, "2400!", "2400.00"},
        {BoxKind::Amount, " 2400.00 ! ", "2400.00"},
        {BoxKind::Amount, "\xA3" "75", "75.00"},
        {BoxKind::Amount, "-1500", "-1500.00"},
        {BoxKind::Amount, "0.125", "0.13"},
        {BoxKind::Amount, "-0.001", "0.00"},
        {BoxKind::Amount, "0", ""},
        {BoxKind::Amount, "0.000000", ""},
        {BoxKind::Amount, "-0.000000", ""},
        {BoxKind::Amount, "zero", "0.00"},
        {BoxKind::Amount, "ZERO!", "0.00"},
        {BoxKind::Amount, "", ""},
        {BoxKind::Amount, "12abc", "12abc"},
        {BoxKind::Amount, "1e5", "1e5"},
        {BoxKind::Amount, "1,,000", "1,,000"},
        {BoxKind::Amount, "inf", "inf"},
        // whole numbers
        {BoxKind::Int, "2016", "2016"},
        {BoxKind::Int, "2016.000000", "2016"},
        {BoxKind::Int, "0", ""},
        {BoxKind::Int, "zero", "0"},
        {BoxKind::Int, "1.5", "1.5"},
        {BoxKind::Int, "seven", "seven"},
        // dates
        {BoxKind::Date, "01/04/2016", "2016-04-01"},
        {BoxKind::Date, "1/4/16", "2016-04-01"},
        {BoxKind::Date, "2016-04-01", "2016-04-01"},
        {BoxKind::Date, " 31/03/2017 ", "2017-03-31"},
        {BoxKind::Date, "31/13/2017", "31/13/2017"},
        {BoxKind::Date, "00/01/2017", "00/01/2017"},
        {BoxKind::Date, "next Tuesday", "next Tuesday"},
        {BoxKind::Date, "", ""},
        // ticks
        {BoxKind::Flag, "yes", "yes"},
        {BoxKind::Flag, "Y", "yes"},
        {BoxKind::Flag, "x", "yes"},
        {BoxKind::Flag, "1", "yes"},
        {BoxKind::Flag, "true", "yes"},
        {BoxKind::Flag, "y!", "yes"},
        {BoxKind::Flag, "no", ""},
        {BoxKind::Flag, "0", ""},
        {BoxKind::Flag, "zero", ""},
        {BoxKind::Flag, "1.00", ""},
        {BoxKind::Flag, "", ""},
        {BoxKind::YesNo, "Y", "yes"},
        {BoxKind::YesNo, "N", "no"},
        {BoxKind::YesNo, "false", "no"},
        {BoxKind::YesNo, "N/A", "na"},
        {BoxKind::YesNo, "na", "na"},
        {BoxKind::YesNo, "maybe", "maybe"},
        {BoxKind::YesNo, "", ""},
        {BoxKind::Signed, "Mary Evans", "yes"},
        {BoxKind::Signed, "  ", ""},
    };
    for (const FormatCase& c : cases)
        EXPECT_EQ(FormatBox(c.kind, c.text), c.expected)
            << BoxKindName(c.kind) << " of \"" << c.text << "\"";
    EXPECT_EQ(FormatBox(BoxKind::Amount, nullptr), "");
}

TEST(BoxKind, NamesRoundTripAndUnknownNamesAreRefused) {
    for (BoxKind kind : {BoxKind::Text, BoxKind::Amount, BoxKind::Int, BoxKind::Date, BoxKind::Flag,
                         BoxKind::YesNo, BoxKind::Signed}) {
        BoxKind back = BoxKind::Text;
        ASSERT_TRUE(ParseBoxKind(BoxKindName(kind), back)) << BoxKindName(kind);
        EXPECT_EQ(back, kind);
    }
    BoxKind kind = BoxKind::Flag;
    EXPECT_FALSE(ParseBoxKind("Amount", kind));
    EXPECT_FALSE(ParseBoxKind("", kind));
    EXPECT_EQ(kind, BoxKind::Flag);
}

struct PlaceholderCase {
    const char* inner;
    bool ok;
    const char* sources;  // as SourcesText gives them
    BoxKind kind;
};

TEST(Placeholder, ParsesSourcesAlternativesAndKind) {
    const PlaceholderCase cases[] = {
        {"Q155:amount", true, "Q155", BoxKind::Amount},
        {"Q155", true, "Q155", BoxKind::Text},
        {" name or Q1 ", true, "name or Q1", BoxKind::Text},
        {"Q4 or '0'", true, "Q4 or '0'", BoxKind::Text},
        {"return_type or 'a new: one'", true, "return_type or 'a new: one'", BoxKind::Text},
        {"Q80C or Q80 : flag", true, "Q80C or Q80", BoxKind::Flag},
        {"QA10B.#:amount", true, "QA10B.#", BoxKind::Amount},
        {"xml/CT/CTchargeable", true, "xml/CT/CTchargeable", BoxKind::Text},
        {"''", true, "''", BoxKind::Text},
        {"", false, "", BoxKind::Text},
        {":amount", false, "", BoxKind::Text},
        {"Q1:money", false, "", BoxKind::Text},
        {"Q1 Q2", false, "", BoxKind::Text},
        {"Q1 or", false, "", BoxKind::Text},
        {"Q1 orange", false, "", BoxKind::Text},
        {"Q1 or 'open", false, "", BoxKind::Text},
        {"Q1 :", false, "", BoxKind::Text},
    };
    for (const PlaceholderCase& c : cases) {
        Placeholder p;
        const bool ok = ParsePlaceholder(c.inner, p);
        EXPECT_EQ(ok, c.ok) << "{" << c.inner << "}";
        if (!ok || !c.ok) continue;
        EXPECT_EQ(p.SourcesText(), c.sources) << "{" << c.inner << "}";
        EXPECT_EQ(p.kind, c.kind) << "{" << c.inner << "}";
    }
}

TEST(Placeholder, QuotedSourcesAreLiterals) {
    Placeholder p;
    ASSERT_TRUE(ParsePlaceholder("Q4 or '0'", p));
    ASSERT_EQ(p.sources.size(), 2u);
    EXPECT_FALSE(p.sources[0].literal);
    EXPECT_EQ(p.sources[0].text, "Q4");
    EXPECT_TRUE(p.sources[1].literal);
    EXPECT_EQ(p.sources[1].text, "0");
}

}  // namespace
