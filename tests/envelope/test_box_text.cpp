// Box texts as the document wants them, and the placeholder syntax.
#include <gtest/gtest.h>

#include "envelope/envelope.h"

namespace {

// Each text of a kind against what the document gets.
void expectFormats(BoxKind kind, std::initializer_list<std::pair<const char*, const char*>> cases) {
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(FormatBox(kind, text), expected) << BoxKindName(kind) << " of \"" << text << "\"";
}

TEST(FormatBox, EachKindWritesTheDocumentsForm) {
    // text: as typed, without surrounding blanks
    expectFormats(BoxKind::Text, {{"  Example Trading Limited ", "Example Trading Limited"}, {"Yahoo!", "Yahoo!"},
        {"", ""}, {"   ", ""}});
    // amounts: two decimals, noughts empty unless "zero"
    expectFormats(BoxKind::Amount, {{"185000", "185000.00"}, {"185000.000000", "185000.00"}, {"1,250.5", "1250.50"},
        {"2400!", "2400.00"}, {" 2400.00 ! ", "2400.00"}, {"\xA3" "75", "75.00"}, {"-1500", "-1500.00"},
        {"0.125", "0.13"}, {"-0.001", "0.00"}, {"0", ""}, {"0.000000", ""}, {"-0.000000", ""}, {"zero", "0.00"},
        {"ZERO!", "0.00"}, {"", ""}, {"12abc", "12abc"}, {"1e5", "1e5"}, {"1,,000", "1,,000"}, {"inf", "inf"}});
    expectFormats(BoxKind::Int, {{"2016", "2016"}, {"2016.000000", "2016"}, {"0", ""}, {"zero", "0"}, {"1.5", "1.5"},
        {"seven", "seven"}});
    expectFormats(BoxKind::Date, {{"01/04/2016", "2016-04-01"}, {"1/4/16", "2016-04-01"}, {"2016-04-01", "2016-04-01"},
        {" 31/03/2017 ", "2017-03-31"}, {"31/13/2017", "31/13/2017"}, {"00/01/2017", "00/01/2017"},
        {"next Tuesday", "next Tuesday"}, {"", ""}});
    expectFormats(BoxKind::Flag, {{"yes", "yes"}, {"Y", "yes"}, {"x", "yes"}, {"1", "yes"}, {"true", "yes"},
        {"y!", "yes"}, {"no", ""}, {"0", ""}, {"zero", ""}, {"1.00", ""}, {"", ""}});
    expectFormats(BoxKind::YesNo, {{"Y", "yes"}, {"N", "no"}, {"false", "no"}, {"N/A", "na"}, {"na", "na"},
        {"maybe", "maybe"}, {"", ""}});
    expectFormats(BoxKind::Signed, {{"Mary Evans", "yes"}, {"  ", ""}});
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

TEST(Placeholder, ParsesSourcesAlternativesAndKind) {
    const struct {
        const char* inner;
        const char* sources;  // as SourcesText gives them
        BoxKind kind;
    } cases[] = {
        {"Q155:amount", "Q155", BoxKind::Amount}, {"Q155", "Q155", BoxKind::Text},
        {" name or Q1 ", "name or Q1", BoxKind::Text}, {"Q4 or '0'", "Q4 or '0'", BoxKind::Text},
        {"return_type or 'a new: one'", "return_type or 'a new: one'", BoxKind::Text},
        {"Q80C or Q80 : flag", "Q80C or Q80", BoxKind::Flag}, {"QA10B.#:amount", "QA10B.#", BoxKind::Amount},
        {"xml/CT/CTchargeable", "xml/CT/CTchargeable", BoxKind::Text}, {"''", "''", BoxKind::Text},
    };
    for (const auto& c : cases) {
        Placeholder p;
        ASSERT_TRUE(ParsePlaceholder(c.inner, p)) << "{" << c.inner << "}";
        EXPECT_EQ(p.SourcesText(), c.sources) << "{" << c.inner << "}";
        EXPECT_EQ(p.kind, c.kind) << "{" << c.inner << "}";
    }
    for (const char* inner : {"", ":amount", "Q1:money", "Q1 Q2", "Q1 or", "Q1 orange", "Q1 or 'open", "Q1 :"}) {
        Placeholder p;
        EXPECT_FALSE(ParsePlaceholder(inner, p)) << "{" << inner << "}";
    }
    // A quoted source is a literal.
    Placeholder p;
    ASSERT_TRUE(ParsePlaceholder("Q4 or '0'", p));
    ASSERT_EQ(p.sources.size(), 2u);
    EXPECT_FALSE(p.sources[0].literal);
    EXPECT_EQ(p.sources[0].text, "Q4");
    EXPECT_TRUE(p.sources[1].literal);
    EXPECT_EQ(p.sources[1].text, "0");
}

}  // namespace
