// Which law the liability engine charges a return by, and the boxes of the
// current form that only current law reads. The engine's own ladder (19 per
// cent on all profits from FY2017 on) is the default; current law (from
// FY2023 a 25 per cent main rate, a 19 per cent small profits rate and
// marginal relief between the limits) is the host's choice.
#pragma once

#include "platform/collections.h"
#include "platform/cstring.h"

enum class RateLadder { Default, CurrentLaw };

// The word that chooses current law, in the box `rates`, in the environment
// variable CT600_RATES and after --rates on the command line.
inline constexpr const char* kCurrentLawWord = "current";

// The box `rates` when it holds any text, else the environment variable
// CT600_RATES: "current" (any case, blanks around it aside) is current law,
// anything else, or nothing, the default. The box map is not changed.
RateLadder ChosenLadder(const CMapStringToString& boxes);

inline bool UnderCurrentLaw(const CMapStringToString& boxes) {
    return ChosenLadder(boxes) == RateLadder::CurrentLaw;
}

// True when the box under prefix holds any text but blanks ("zero" counts).
bool BoxFilled(const CMapStringToString& boxes, const CString& prefix, const char* key);

// Associated companies in the first (secondYear false) or second financial
// year of the period: Q327 or Q328 where filled, else Q326, the number for
// the whole period. A company associated for part of the period counts for
// all of it (CTA 2010 s18E(2)), so the host's count is taken as it stands;
// a negative or unreadable count is none.
int AssociatedCompaniesInYear(const CMapStringToString& boxes, const CString& prefix, bool secondYear);
