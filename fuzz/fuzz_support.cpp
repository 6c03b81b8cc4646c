#include "fuzz_support.h"

#include <unistd.h>

#include <algorithm>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <string_view>

#include "common/basics.h"
#include "common/library.h"
#include "common/xmlvar.h"
#include "envelope/envelope.h"
#include "platform/message_box.h"

namespace ct600fuzz {

namespace {

const char* const kCalculatorKeys[] = {
#include "calculator_keys.inc"
};

// The words of a box map that are not boxes, and the result keys a host
// may hand back in.
const char* const kWords[] = {
    "from", "to", "From", "To", "Address1", "Address2", "form", "name", "year", "tax_reference",
    "co_type", "forcestandardrate", "fileattach1", "fileattach2", "fileattach3", "return_type",
    "validation", "zxml", "xml/CT/CTchargeable",
};

const char* const kSpecials[] = {
    "zero", "ZERO", "Zero", "0", "-0", "+0", "0.00", "0.000000", "0!", "zero!", "nan", "NaN", "-nan",
    "inf", "-inf", "Infinity", "1e308", "1e309", "-1e309", "1.7976931348623157e308", "4.9e-324",
    "1e-400", "9223372036854775807", "9223372036854775808", "-9223372036854775809", "2147483647",
    "2147483648", "-2147483649", "4294967296", "99999999999999999999999999999", "", " ", "\t",
    "yes", "no", "na", "n/a", "N/A", "x", "X", "y", "true", "false", "1", "ctv3", "CTV3", "ctv3_16",
    "ct600", "CTA", "TF", "!", "!!", "\xA3", "-", "+", ".", ",", "1,000,000", ("\xA3" "1,234.56"),
    "(100)", "100-", "0x10", "1e5", "12abc", "2016", "2017", "P12M", "-P1Y30D", "01/04/2016",
    "31/03/2017", "2016-04-01", "31/12/9999", "00/00/0000", "29/02/2015", "29/02/2016", "31/04/2016",
    "a.pdf", "ctcomp.xml", "accounts.html", "<x>", "&", "&amp;", "]]>", "\xFF\xFE", "\xEF\xBB\xBF",
    "%s%s%n", "{Q155}", "#", "%d",
};

// Reads a record's bytes in order; past the end every read is zero.
class ByteReader {
public:
    ByteReader(std::string_view bytes) : bytes_(bytes) {}
    std::uint8_t Byte() { return pos_ < bytes_.size() ? static_cast<std::uint8_t>(bytes_[pos_++]) : 0; }
    std::uint16_t U16() { return static_cast<std::uint16_t>(Byte() | (Byte() << 8)); }
    std::uint32_t U32() { return U16() | (static_cast<std::uint32_t>(U16()) << 16); }
    std::uint64_t U64() { return U32() | (static_cast<std::uint64_t>(U32()) << 32); }
    std::string Bytes(std::size_t n) {
        n = std::min(n, bytes_.size() - pos_);
        std::string out(bytes_.substr(pos_, n));
        pos_ += n;
        return out;
    }
    std::string Rest() { return Bytes(bytes_.size() - pos_); }

private:
    std::string_view bytes_;
    std::size_t pos_ = 0;
};

std::string printed(const char* format, ...) __attribute__((format(printf, 1, 2)));
std::string printed(const char* format, ...) {
    char buffer[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(buffer, sizeof buffer, format, args);
    va_end(args);
    return buffer;
}

bool hasRowMark(const std::string& key) {
    return key.find("%d") != std::string::npos || key.find('#') != std::string::npos;
}

// Replaces the row mark ("%d" or "#") with the row text; a key without one
// gets the row after a point.
std::string withRow(const std::string& key, const std::string& row) {
    for (const char* mark : {"%d", "#"}) {
        const std::size_t at = key.find(mark);
        if (at != std::string::npos) return key.substr(0, at) + row + key.substr(at + std::strlen(mark));
    }
    return key + "." + row;
}

std::string rowNumber(ByteReader& in) {
    switch (in.Byte() % 6) {
        case 0: return "0";
        case 1: return "-1";
        case 2: return printed("%" PRId32, static_cast<std::int32_t>(in.U32()));
        case 3: return "99999999999999999999";
        case 4: return "01";
        default: return printed("%u", 1u + in.Byte() % 40);
    }
}

std::string makeKey(int mode, ByteReader& in) {
    const auto& vocabulary = BoxVocabulary();
    const std::string& known = vocabulary[in.U16() % vocabulary.size()];
    switch (mode) {
        case 0: return hasRowMark(known) ? withRow(known, printed("%u", 1u + in.Byte() % 12)) : known;
        case 1: return withRow(known, rowNumber(in));
        case 2: {
            const std::string before = in.Bytes(in.Byte() % 4);
            const std::string after = in.Bytes(in.Byte() % 4);
            return before + withRow(known, "1") + after;
        }
        default: return in.Bytes(in.Byte());
    }
}

std::string makeNumber(ByteReader& in) {
    const std::uint8_t how = in.Byte();
    switch (how % 12) {
        case 0: return printed("%" PRId64, static_cast<std::int64_t>(in.U64()));
        case 1:
        case 2:
        case 3:
        case 4: {
            double d = 0;
            const std::uint64_t bits = in.U64();
            std::memcpy(&d, &bits, sizeof d);
            static const char* const formats[] = {"%f", "%.2f", "%.17g", "%e"};
            return printed(formats[how % 12 - 1], d);
        }
        case 5: {
            const auto n = static_cast<std::int32_t>(in.U32());
            std::string digits = printed("%" PRId32, n < 0 ? -(n / 10) : n);
            for (int at = static_cast<int>(digits.size()) - 3; at > 0; at -= 3)
                digits.insert(static_cast<std::size_t>(at), ",");
            return (n < 0 ? "-" : "") + digits;
        }
        case 6: return printed("\xA3%" PRId32 ".%02u", static_cast<std::int32_t>(in.U32()), in.Byte() % 100u);
        case 7: return printed("  %" PRId32 " ", static_cast<std::int16_t>(in.U16()));
        case 8: return printed("+%u", in.U16());
        case 9: return std::string(1 + in.Byte() * 2u, static_cast<char>('1' + in.Byte() % 9));
        case 10: return "0." + std::string(in.Byte() * 2u, '0') + "1";
        default: return printed("%" PRId32, static_cast<std::int32_t>(in.U32()));
    }
}

std::string makeDate(ByteReader& in) {
    const unsigned day = in.Byte() % 40;
    const unsigned month = in.Byte() % 16;
    const std::uint8_t yearHow = in.Byte();
    unsigned year = 0;
    switch (yearHow % 4) {
        case 0: year = 1990u + yearHow % 50u; break;
        case 1: year = in.U16(); break;
        case 2: year = in.U32() % 1000000u; break;
        default: year = 2000u + in.Byte() % 30u; break;
    }
    switch (in.Byte() % 5) {
        case 0: return printed("%02u/%02u/%04u", day, month, year);
        case 1: return printed("%u/%u/%u", day, month, year);
        case 2: return printed("%04u-%02u-%02u", year, month, day);
        case 3: return printed("%02u/%02u/%02u", day, month, year % 100);
        default: return printed("%04u-%02u-%02uZ", year, month, day);
    }
}

std::string makeSpecial(ByteReader& in) { return kSpecials[in.Byte() % std::size(kSpecials)]; }

// Long texts share one budget per input, so that an input's memory stays bounded.
std::string makeLongText(ByteReader& in, std::size_t& budget) {
    const char c = static_cast<char>(in.Byte());
    const std::size_t wanted = (static_cast<std::size_t>(in.U16()) + 1) * (1u + in.Byte() % 16u);
    const std::size_t n = std::min(wanted, budget);
    budget -= n;
    return std::string(n, c ? c : 'A');
}

std::string makeValue(int kind, ByteReader& in, std::size_t& budget) {
    switch (kind) {
        case 0: return makeNumber(in);
        case 1: return makeDate(in);
        case 2: return makeSpecial(in);
        case 3: return makeLongText(in, budget);
        case 4: return in.Rest();
        case 5: return makeNumber(in) + "!";
        case 6: return makeDate(in) + "!";
        default: return makeSpecial(in) + "!";
    }
}

void quiet(const char*, void*) {}

void setDefault(const char* name, const std::string& value) {
    if (!std::getenv(name)) setenv(name, value.c_str(), 1);
}

}  // namespace

void PrepareEnvironment() {
    static const bool done = [] {
        namespace fs = std::filesystem;
        const fs::path temp = fs::temp_directory_path() / ("ct600-fuzz-" + std::to_string(getpid()));
        setDefault("CT600_TEMP_DIR", temp.string());
        setDefault("CT600_TEMPLATE_DIR", CT600_SOURCE_DIR "/envelope/templates");
        setDefault("CT600_TODAY", "15/06/2017");
        std::error_code ignored;
        fs::create_directories(std::getenv("CT600_TEMP_DIR"), ignored);
        SetLogSink(quiet, nullptr);
        SetMessageSink(quiet, nullptr);
        return true;
    }();
    (void)done;
}

const std::vector<std::string>& BoxVocabulary() {
    static const std::vector<std::string> vocabulary = [] {
        PrepareEnvironment();
        std::set<std::string> keys(std::begin(kCalculatorKeys), std::end(kCalculatorKeys));
        keys.insert(std::begin(kWords), std::end(kWords));
        CXMLVar templ;
        templ.OpenPath(JoinPath(GetCTdir(), "ctv3_16", ".xml"));
        for (const BoxMapEntry& entry : ListBoxMap(&templ)) {
            std::string_view sources = entry.sources.view();
            while (!sources.empty()) {
                const std::size_t or_ = sources.find(" or ");
                const std::string_view source = sources.substr(0, or_);
                if (!source.empty() && source.front() != '\'') keys.emplace(source);
                sources = or_ == std::string_view::npos ? std::string_view() : sources.substr(or_ + 4);
            }
        }
        return std::vector<std::string>(keys.begin(), keys.end());
    }();
    return vocabulary;
}

DecodedBoxes DecodeBoxMap(const std::uint8_t* data, std::size_t size) {
    DecodedBoxes out;
    std::size_t budget = 4u << 20;
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    std::size_t start = 0;
    while (start < all.size()) {
        std::size_t end = all.find('\n', start);
        if (end == std::string_view::npos) end = all.size();
        const std::string_view line = all.substr(start, end - start);
        start = end + 1;
        if (line.empty()) continue;

        std::string key;
        std::string value;
        const auto tag = static_cast<unsigned char>(line.front());
        if (tag < 0x20) {
            ByteReader in(line.substr(1));
            key = makeKey(tag & 3, in);
            value = makeValue((tag >> 2) & 7, in, budget);
        } else {
            const std::size_t equals = line.find('=');
            key = std::string(line.substr(0, equals));
            if (equals != std::string_view::npos) value = std::string(line.substr(equals + 1));
        }
        if (key == "#prefix")
            out.prefix = CString(value);
        else
            out.boxes[CString(key)] = CString(value);
    }
    return out;
}

void Require(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "ct600 fuzz: property failed: %s\n", what);
    std::abort();
}

}  // namespace ct600fuzz
