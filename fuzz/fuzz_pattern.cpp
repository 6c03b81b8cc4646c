// patternvalidate on each pattern of the type catalogue: the first byte picks
// the pattern, the rest is the text. A first byte past the catalogue takes
// the pattern itself from the input (up to a NUL), for the compiler's sake.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "fuzz_support.h"
#include "schema/model/model.h"
#include "schema/pattern.h"

using ct600fuzz::Require;

namespace {

const std::vector<const char*>& patterns() {
    static const std::vector<const char*> distinct = [] {
        std::vector<const char*> out;
        for (const char* p : schemamodel::cataloguePatterns())
            if (std::find_if(out.begin(), out.end(), [&](const char* q) { return std::string_view(p) == q; }) ==
                out.end())
                out.push_back(p);
        return out;
    }();
    return distinct;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    patterns();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto& known = patterns();
    CString message;
    if (data[0] < known.size()) {
        const CSchemaPattern* compiled = knownPattern(known[data[0]]);
        Require(compiled != nullptr && compiled->IsValid(), "a catalogue pattern is compiled and valid");
        const int whole = patternvalidate(*compiled, rest, message);
        Require(whole == (message.IsEmpty() ? 1 : 0), "a failure, and only a failure, says why");
        // The C entry stops at the first NUL, as the host's text does.
        const std::string text(rest.substr(0, rest.find('\0')));
        CString message2;
        Require(patternvalidate(known[data[0]], text.c_str(), message2) == compiled->Matches(text),
                "both entries agree");
        return 0;
    }
    const std::size_t nul = rest.find('\0');
    const std::string pattern(rest.substr(0, nul));
    const std::string_view text = nul == std::string_view::npos ? std::string_view() : rest.substr(nul + 1);
    const CSchemaPattern compiled(pattern);
    const int matched = patternvalidate(compiled, text, message);
    Require(matched == (message.IsEmpty() ? 1 : 0), "a failure, and only a failure, says why");
    Require(compiled.IsValid() || matched == 0, "a pattern outside the dialect matches nothing");
    return 0;
}
