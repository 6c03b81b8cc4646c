// myatof on the texts a run writes and reads most: plain [-]digits[.digits],
// read by a shortcut that must give the correctly rounded double, the C
// library's strtod to the bit, on both sides of the shortcut's limits.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <random>
#include <string>

#include "common/basics.h"

namespace {
// strtod's double, bit for bit, with a nil amount as +0 as myatof gives it.
void expectSameBits(const std::string& text) {
    std::string number = text;
    if (!number.empty() && number.back() == '!') number.pop_back();
    double expected = std::strtod(number.c_str(), nullptr);
    if (expected == 0) expected = 0.0;
    const double got = myatof(text.c_str());
    EXPECT_EQ(std::memcmp(&got, &expected, sizeof got), 0) << text << " read as " << got;
}

TEST(AmountReading, PlainAmountsReadAsStrtodAtTheShortcutsLimits) {
    for (const char* text : {
             "0", "-0", "-0.000000", "0.000000", "1", "12.50", "123456.789000", "-98765.430000!",
             "0.1", "0.3", "2.675", "1.005", "9007199254740991", "9007199254740992",
             "9007199254740993",                  // 2^53 + 1: beyond the shortcut, rounds to even
             "900719925474099.7",                 // sixteen digits: past the shortcut's count
             "0.0000000000000000000001",          // 10^-22, the last power it divides by
             "0.00000000000000000000001",         // 10^-23, left to the general reader
             "123456789012345678901234567890.5",  // far beyond
             "00012.3400", "5!",
         })
        expectSameBits(text);
}

TEST(AmountReading, RandomPlainAmountsReadAsStrtod) {
    std::mt19937_64 rng(7);
    for (int i = 0; i < 50000; ++i) {
        std::string text = rng() % 2 ? "-" : "";
        const int whole = 1 + static_cast<int>(rng() % 17), decimals = static_cast<int>(rng() % 25);
        for (int d = 0; d < whole; ++d) text += static_cast<char>('0' + rng() % 10);
        if (decimals) {
            text += '.';
            for (int d = 0; d < decimals; ++d) text += static_cast<char>('0' + rng() % 10);
        }
        if (rng() % 5 == 0) text += '!';
        expectSameBits(text);
    }
}
}  // namespace
