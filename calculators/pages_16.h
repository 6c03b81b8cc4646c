// The supplementary pages of the third-generation return (A, B, C, E, F, G and
// L, in that order) and the four field checks that end a run without prefix.
#pragma once

#include "calculators/pages.h"
#include "boxstore/calcbase.h"

void CalcPages16(CBaseCalc& calc);
void FieldChecks16(CBaseCalc& calc);
