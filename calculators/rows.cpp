#include "calculators/rows.h"

#include <algorithm>
#include <charconv>

namespace {
// "Q%d" without the printf machinery: these loops make a hundred keys a run.
struct MainBoxKey {
    explicit MainBoxKey(int n) {
        text[0] = 'Q';
        *std::to_chars(text + 1, text + sizeof text - 1, n).ptr = '\0';
    }
    char text[16];
};
}  // namespace

void RateRows(CBaseCalc& calc, std::span<const RateRow> rows) {
    for (const RateRow& row : rows) {
        calc.m_Decimals = 2;
        calc.SetBox(row.box, calc.GetBox(row.amount) * calc.GetBox(row.rate) * 0.01);
    }
}

void ClearBoxes(CBaseCalc& calc, int first, int last, std::initializer_list<int> spared) {
    for (int n = first; n <= last; ++n)
        if (std::find(spared.begin(), spared.end(), n) == spared.end()) calc.SetBox(MainBoxKey(n).text, 0);
}

void MarkZeroes(CBaseCalc& calc, std::span<const int> boxes, std::span<const YearLine> years) {
    for (int n : boxes) calc.MarkZero(MainBoxKey(n).text);
    for (const YearLine& line : years) {
        if (calc.GetBox(line.year) == 0) continue;
        calc.MarkZero(line.portion);
        calc.MarkZero(line.tax);
    }
}

double FlooredAtZero(double value) { return std::max(0.0, value); }
