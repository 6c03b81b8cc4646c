// The supplementary pages of the third-generation return (A, B, C, E, F, G and
// L, in that order) and the four field checks that end a run without prefix.
#pragma once

#include "entry/calcbase.h"

// Rate of the tax on loans to participators, from the start of the period.
double LoanTaxRate(const char* from, const char* to);

// Tonnage-tax profit of one ship: whole hundreds of net tons in four bands,
// at 60p, 45p, 30p and 15p per hundred tons per day.
double TonnageProfit(double tons, double days);

void CalcPages16(CBaseCalc& calc);
void FieldChecks16(CBaseCalc& calc);
