#include "calculators/calculators.h"

// The first-generation formulas are not written yet: a run leaves the box map
// as it found it and reports no errors.
void CCT600_02Calc::Calc() {}
