// Row shapes that the three generations' calculators have in common, over
// each generation's own box numbers.
#pragma once

#include <initializer_list>
#include <span>

#include "boxstore/calcbase.h"

// A box worked as an amount times a percentage rate.
struct RateRow {
    const char* box;
    const char* amount;
    const char* rate;
};

// The rows in their order, with two decimals asked for ahead of each.
void RateRows(CBaseCalc& calc, std::span<const RateRow> rows);

// Boxes "Q%d" from first to last set to 0 through SetBox, so an override
// survives, except the numbers spared.
void ClearBoxes(CBaseCalc& calc, int first, int last, std::initializer_list<int> spared = {});

// A financial year's line of the tax block: when its year box holds a year,
// a nil portion and a nil tax show as "zero".
struct YearLine {
    const char* year;
    const char* portion;
    const char* tax;
};

// MarkZero on each box "Q%d" of the list in its order, then on the year lines.
void MarkZeroes(CBaseCalc& calc, std::span<const int> boxes, std::span<const YearLine> years);

double FlooredAtZero(double value);
