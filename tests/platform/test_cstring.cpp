#include <gtest/gtest.h>

#include <limits>

#include "platform/cstring.h"

namespace {

TEST(CString, DefaultIsEmptyAndConcatenatesOnEitherSide) {
    CString s;
    EXPECT_TRUE(s.IsEmpty());
    EXPECT_EQ(s.GetLength(), 0);
    EXPECT_STREQ(s, "");
    CString t = "Q" + CString("15") + '5';
    t += "!";
    t += CString("?");
    EXPECT_EQ(t, "Q155!?");
    EXPECT_EQ(CString(nullptr), "");
}

// The fast fixed-point text must be printf's, character for character.
TEST(CString, FormatFixedMatchesPrintf) {
    const double values[] = {0.0, -0.0, 1.0, -1.0, 0.125, 2.675, 1.005, -2.5, 0.5, 1.5, 1e-7, 5e-7, -4.9999999e-7,
                             123456789.123456789, 1e22, -1e300, 1.7976931348623157e308, 4.9e-324,
                             std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                             std::numeric_limits<double>::quiet_NaN(), -std::numeric_limits<double>::quiet_NaN()};
    for (const int decimals : {0, 2, 6})
        for (const double v : values)
            EXPECT_EQ(FormatFixed(v, decimals), FormatString("%.*f", decimals, v)) << v << " " << decimals;
}

TEST(CString, FormatReplacesAndHandlesLongOutput) {
    CString s = "old";
    s.Format("%f", 60000.0);
    EXPECT_EQ(s, "60000.000000");
    s.Format("%s", std::string(1000, 'x').c_str());
    EXPECT_EQ(s.GetLength(), 1000);
    s.AppendFormat("-%d", 7);
    EXPECT_EQ(s.Right(2), "-7");
    EXPECT_EQ(FormatString("Q%d", 330), "Q330");
}

TEST(CString, SlicesClampAtTheEnds) {
    const CString s = "ctv3_16";
    struct Case {
        CString got;
        const char* want;
    };
    const Case cases[] = {
        {s.Left(4), "ctv3"}, {s.Left(0), ""},    {s.Left(-3), ""},       {s.Left(99), "ctv3_16"},
        {s.Right(2), "16"},  {s.Right(99), "ctv3_16"}, {s.Mid(5), "16"}, {s.Mid(2, 2), "v3"},
        {s.Mid(50), ""},     {s.Mid(5, 99), "16"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.got, c.want);
}

TEST(CString, FindReplaceTrim) {
    CString s = "  a-b-c  ";
    EXPECT_EQ(s.Find('-'), 3);
    EXPECT_EQ(s.Find('-', 4), 5);
    EXPECT_EQ(s.Find("c"), 6);
    EXPECT_EQ(s.Find("zz"), -1);
    EXPECT_EQ(s.Find("a", 100), -1);
    EXPECT_EQ(s.ReverseFind('-'), 5);
    EXPECT_EQ(s.Replace("-", "--"), 2);
    EXPECT_EQ(s, "  a--b--c  ");
    EXPECT_EQ(s.Replace("", "x"), 0);
    s.TrimRight();
    EXPECT_EQ(s, "  a--b--c");
    s.TrimLeft();
    EXPECT_EQ(s, "a--b--c");
    EXPECT_EQ(s.Replace('-', '+'), 4);
    EXPECT_EQ(CString("CTV3").MakeLower(), "ctv3");
}

TEST(CString, ComparesByteForByteAndIndexesWithAnyIntegerType) {
    EXPECT_NE(CString("from"), CString("From"));
    EXPECT_LT(CString("Q155"), CString("Q160"));
    const CString high("\xA3" "5");
    EXPECT_EQ(high.GetLength(), 2);
    EXPECT_EQ(static_cast<unsigned char>(high[0u]), 0xA3);
    EXPECT_EQ(high[std::size_t{1}], '5');
    EXPECT_THROW(high.GetAt(2), std::out_of_range);
}

}  // namespace
