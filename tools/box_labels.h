// What each box of the third-generation return is: its section, its number on
// HMRC's form, its meaning and how its text reads, from the box map tables.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "envelope/envelope.h"

namespace cli {

struct BoxLabel {
    int section = 0;      // index into BoxLabels::sections
    std::string formBox;  // "155", "A10B"; empty where the form has none
    std::string meaning;  // "Net trading profits"
    BoxKind kind = BoxKind::Text;
    int order = 0;        // the row's place in the tables
    int family = 0;       // rows repeated together (one Loan, one Ship) share a family
};

struct FoundLabel {
    const BoxLabel* label = nullptr;
    int row = 0;  // the row number of a repeated box (QA10B.2 is row 2), else 0
};

class BoxLabels {
public:
    // Reads the tables of a box map page: a row's key cell names one or more
    // box keys (a # standing for the row number), its columns are key,
    // element, kind, form box and meaning. The first row of a key wins, except
    // over a row that only records a signature.
    explicit BoxLabels(std::string_view markdown);
    // The box map the build was configured with.
    static const BoxLabels& ThirdGeneration();

    FoundLabel Find(const std::string& key) const;
    const std::vector<std::string>& Sections() const noexcept { return sections_; }
    std::size_t Size() const noexcept { return labels_.size(); }

private:
    std::vector<std::string> sections_;
    std::map<std::string, BoxLabel, std::less<>> labels_;
};

}  // namespace cli
