// FormatFixed and CTime::Format against the C library's printf. Amounts are
// worked in integers, so the ties, the carries and the ends of that range are
// checked by name, and a spread of random doubles against printf itself.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <random>
#include <string>

#include "platform/cstring.h"
#include "platform/ctime.h"

namespace {
std::string printfFixed(double value, int decimals) {
    char text[400];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

TEST(FormatFixed, MatchesPrintfAtTiesCarriesAndEdges) {
    const double big = 9007199254740992.0;  // 2^53, where the integer path stops
    const struct {
        double value;
        int decimals;
        const char* text;  // what printf prints, worked by hand
    } cases[] = {
        {0.0, 6, "0.000000"},          {-0.0, 6, "-0.000000"},        {2.5, 0, "2"},  // half to even
        {3.5, 0, "4"},                 {0.125, 2, "0.12"},            {0.375, 2, "0.38"},
        {-0.125, 2, "-0.12"},          {0.999999999, 6, "1.000000"},  {9.995, 2, "9.99"},  // 9.99499999...
        {1234567.891, 2, "1234567.89"}, {-1e-9, 6, "-0.000000"},      {0.00390625, 9, "0.003906250"},
        {0.0039, 6, "0.003900"},       {big - 1, 1, "9007199254740991.0"}, {big, 0, "9007199254740992"},
        {1e300, 0, nullptr},           {0.1, 17, nullptr},            {5e-324, 6, nullptr},
    };
    for (const auto& c : cases) {
        const std::string expected = c.text ? c.text : printfFixed(c.value, c.decimals);
        EXPECT_EQ(FormatFixed(c.value, c.decimals).str(), expected) << c.value << " to " << c.decimals;
        EXPECT_EQ(expected, printfFixed(c.value, c.decimals)) << "the table's own working, " << c.value;
    }
}

TEST(FormatFixed, RandomAmountsReadAsPrintfReadsThem) {
    std::mt19937_64 rng(19);
    for (int i = 0; i < 50000; ++i) {
        const int decimals = static_cast<int>(rng() % 11);
        double value = 0;
        switch (i % 4) {
            case 0: value = static_cast<double>(static_cast<std::int64_t>(rng() % 2000000000000) - 1000000000000) / 100; break;
            case 1: value = std::ldexp(static_cast<double>(rng() >> 11), -static_cast<int>(rng() % 64)); break;
            case 2: value = static_cast<double>(static_cast<std::int64_t>(rng() % 20000001) - 10000000) / 8; break;
            default: {
                const std::uint64_t bits = rng();
                std::memcpy(&value, &bits, sizeof value);
                if (!std::isfinite(value)) value = 0.5;
            }
        }
        ASSERT_EQ(FormatFixed(value, decimals).str(), printfFixed(value, decimals)) << value << " to " << decimals;
    }
}
}  // namespace

// CTime::Format pads as printf's "%02d" and "%03d" do, the sign first. 5 April
// is day 95, or 96 in a leap year: 2016, -12 (divisible by 4) and 123456.
TEST(CTimeFormat, NumbersPadAsPrintf) {
    const struct {
        int year;
        const char* text;
    } cases[] = {{2016, "2016 16 05/04 096"}, {7, "7 07 05/04 095"}, {-12, "-12 88 05/04 096"}, {123456, "123456 56 05/04 096"}};
    for (const auto& c : cases) {
        const CTime day(c.year, 4, 5, 12, 0, 0, -1);
        EXPECT_EQ(day.Format("%Y %y %d/%m %j").str(), c.text) << c.year;
    }
}
