// The box calculators, one per generation of the return. Each Calc is one
// ordered pass of box formulas: every row reads what the rows before it wrote.
#pragma once

#include "boxstore/calcbase.h"

// Third generation: every ctv2_, ctv3_ and _ctXv3_ entry.
class CCT600_16Calc : public CBaseCalc {
public:
    void Calc() override;

private:
    void ProfitBlock();
    void Liability();
    void TaxBlock();
    void TotalsBlock();
    void ZeroMarks();
};

// Second generation: ct600_04 to ct600_16, cts_ and the page entries from
// year 04. The shape of the third generation's pass over the older boxes.
class CCT600_05Calc : public CBaseCalc {
public:
    void Calc() override;

private:
    void ProfitBlock();
    bool Liability();  // true when distributions were matched to profits
    void TaxBlock(bool distributionsMatched);
    void TotalsBlock();
    void Pages();
};

// First generation: ct600_02, ct600_03 and their pages. The frame runs it
// twice, under the caller's prefix and under "S".
class CCT600_02Calc : public CBaseCalc {
public:
    void Calc() override;

private:
    void ProfitBlock();
    void Liability();
    void TaxBlock();
    void Pages();
};
