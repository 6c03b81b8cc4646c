#include "platform/ctime.h"

#include <charconv>

namespace {
constexpr std::int64_t kSecondsPerDay = 86400;

std::int64_t floorDiv(std::int64_t a, std::int64_t b) {
    std::int64_t q = a / b;
    if ((a % b != 0) && ((a < 0) != (b < 0))) --q;
    return q;
}

struct Civil {
    int year, month, day, hour, minute, second, yday;
};

Civil split(std::int64_t seconds) {
    std::int64_t days = floorDiv(seconds, kSecondsPerDay);
    std::int64_t rest = seconds - days * kSecondsPerDay;
    Civil c{};
    CivilFromDays(days, c.year, c.month, c.day);
    c.hour = static_cast<int>(rest / 3600);
    c.minute = static_cast<int>(rest / 60 % 60);
    c.second = static_cast<int>(rest % 60);
    c.yday = static_cast<int>(days - DaysFromCivil(c.year, 1, 1));
    return c;
}
}  // namespace

// Howard Hinnant's days-from-civil algorithm.
std::int64_t DaysFromCivil(std::int64_t y, unsigned m, unsigned d) noexcept {
    y -= m <= 2;
    const std::int64_t era = (y >= 0 ? y : y - 399) / 400;
    const unsigned yoe = static_cast<unsigned>(y - era * 400);
    const unsigned doy = (153 * (m > 2 ? m - 3 : m + 9) + 2) / 5 + d - 1;
    const unsigned doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    return era * 146097 + static_cast<std::int64_t>(doe) - 719468;
}

void CivilFromDays(std::int64_t z, int& year, int& month, int& day) noexcept {
    z += 719468;
    const std::int64_t era = (z >= 0 ? z : z - 146096) / 146097;
    const unsigned doe = static_cast<unsigned>(z - era * 146097);
    const unsigned yoe = (doe - doe / 1460 + doe / 36524 - doe / 146096) / 365;
    const std::int64_t y = static_cast<std::int64_t>(yoe) + era * 400;
    const unsigned doy = doe - (365 * yoe + yoe / 4 - yoe / 100);
    const unsigned mp = (5 * doy + 2) / 153;
    const unsigned d = doy - (153 * mp + 2) / 5 + 1;
    const unsigned m = mp < 10 ? mp + 3 : mp - 9;
    year = static_cast<int>(y + (m <= 2));
    month = static_cast<int>(m);
    day = static_cast<int>(d);
}

CTime::CTime(int year, int month, int day, int hour, int minute, int second, int dst) {
    (void)dst;
    // Months roll into years first, then days, hours and the rest roll linearly.
    std::int64_t m0 = static_cast<std::int64_t>(month) - 1;
    std::int64_t y = static_cast<std::int64_t>(year) + floorDiv(m0, 12);
    auto m = static_cast<unsigned>(m0 - floorDiv(m0, 12) * 12 + 1);
    std::int64_t days = DaysFromCivil(y, m, 1) + (static_cast<std::int64_t>(day) - 1);
    seconds_ = days * kSecondsPerDay + static_cast<std::int64_t>(hour) * 3600 +
               static_cast<std::int64_t>(minute) * 60 + second;
}

int CTime::GetYear() const noexcept { return split(seconds_).year; }
int CTime::GetMonth() const noexcept { return split(seconds_).month; }
int CTime::GetDay() const noexcept { return split(seconds_).day; }
int CTime::GetHour() const noexcept { return split(seconds_).hour; }

namespace {
// printf's "%0*d": the sign, then zeros up to the width, then the digits.
void appendNumber(CString& out, int value, int width) {
    char digits[16];
    const unsigned magnitude = value < 0 ? 0u - static_cast<unsigned>(value) : static_cast<unsigned>(value);
    const int length = static_cast<int>(std::to_chars(digits, digits + sizeof digits, magnitude).ptr - digits);
    if (value < 0) out += '-';
    for (int pad = width - length - (value < 0); pad > 0; --pad) out += '0';
    out += CString(digits, static_cast<std::size_t>(length));
}
}  // namespace

CString CTime::Format(const char* pattern) const {
    CString out;
    if (!pattern) return out;
    const Civil c = split(seconds_);
    for (const char* p = pattern; *p; ++p) {
        if (*p != '%' || !p[1]) { out += *p; continue; }
        switch (*++p) {
            case 'd': appendNumber(out, c.day, 2); break;
            case 'm': appendNumber(out, c.month, 2); break;
            case 'Y': appendNumber(out, c.year, 0); break;
            case 'y': appendNumber(out, ((c.year % 100) + 100) % 100, 2); break;
            case 'H': appendNumber(out, c.hour, 2); break;
            case 'M': appendNumber(out, c.minute, 2); break;
            case 'S': appendNumber(out, c.second, 2); break;
            case 'j': appendNumber(out, c.yday + 1, 3); break;
            case '%': out += '%'; break;
            default: out += '%'; out += *p; break;
        }
    }
    return out;
}
