// Schema conformance speed: patternvalidate on each pattern of the type
// catalogue (with std::regex on the same values for comparison), and the
// walk over a return message.
#include <benchmark/benchmark.h>

#include <cstring>
#include <regex>
#include <string>
#include <vector>

#include "common/xmlvar.h"
#include "schema/model/model.h"
#include "schema/schema.h"

namespace {

// A typical value for each pattern, one the pattern accepts.
struct Sample {
    const char* pattern;
    const char* value;
    const char* label;
};

const std::vector<Sample>& samples() {
    static const std::vector<Sample> all = {
        {"-?(([1-9][0-9]*)|0)\\.[0-9]{2}", "1234567.89", "AmountBase"},
        {".*\\.00", "1234567.00", "WholePounds"},
        {"[0-9]{1,3}\\.[0-9]{2}", "19.00", "PositivePercent"},
        {"[1-9][0-9]{6,7}", "9074729", "ShipNumber"},
        {"[0-9]{8}", "12345678", "EightDigits"},
        {"\\d{4}-\\d{2}-\\d{2}", "2024-03-31", "DateText"},
        {"[A-Za-z0-9 ,\\.\\(\\)/&'\\-\"!%\\*_\\+:@<>\\?=;]*", "Brookfield Joinery (Holdings) Limited", "PlainText"},
        {"[^\xA3$#~\x82\xAC]+", "Brookfield Joinery (Holdings) Limited", "NameText"},
        {"[A-Za-z0-9]*", "AB12345678", "CodeText"},
        {"[A-Za-z0-9 &'\\(\\)\\*,\\-\\./]*", "Pennine Tax (Accountants)", "HeaderText"},
        {"[A-Za-z0-9 ~!\"@#$%&'\\(\\)\\*\\+,\\-\\./:;<=>\\?\\[\\\\\\]^_\\{\\}\xA3\x82\xAC]*", "12 Mill Lane, Flat #2",
         "AddressText"},
        {"[A-Z0-9]{2,8}", "SC123456", "RegistrationText"},
        {"[0-9]{6}", "401234", "SortCode"},
        {"[0-9]{10}", "1234567890", "TenDigits"},
        {"(X[NRT]?|C[RH]|Z[BCDEFGHJKN]|EW|ST|NI)[0-9]{1,9}", "XN123456789", "CharityReference"},
        {"[0-9]{4}\\-v[0-9]{1,3}\\.[0-9]{1,3}(\\.[0-9]{1,3})?", "2022-v1.99.1", "SchemaVersion"},
        {"[A-Za-z][A-Za-z'\\-]*", "Ashworth-O'Neil", "PersonName"},
        {"[A-Za-z0-9 ,\\.\\(\\)/&\\-']+", "O'Neil-Jones (Jr.)", "Surname"},
    };
    return all;
}

void patternBench(benchmark::State& state, const Sample& s) {
    CString message;
    for (auto _ : state) {
        int ok = patternvalidate(s.pattern, s.value, message);
        benchmark::DoNotOptimize(ok);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(std::strlen(s.value)));
}

void stdRegexBench(benchmark::State& state, const Sample& s) {
    const std::regex re(s.pattern);
    const std::string value = s.value;
    for (auto _ : state) {
        bool ok = std::regex_match(value, re);
        benchmark::DoNotOptimize(ok);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(value.size()));
}

// A long value: the cost per byte of the table-driven automaton.
void BM_patternvalidate_long(benchmark::State& state) {
    const std::string value = std::string(static_cast<std::size_t>(state.range(0)), '7') + ".00";
    CString message;
    for (auto _ : state) {
        int ok = patternvalidate(".*\\.00", value.c_str(), message);
        benchmark::DoNotOptimize(ok);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(value.size()));
}
BENCHMARK(BM_patternvalidate_long)->Arg(1 << 10)->Arg(1 << 20);

// A message of the size a full return has: the frame, the header, the first
// sections, and twenty copies of a block of amounts and flags that the walk
// has to look up.
std::string message() {
    std::string blocks;
    for (int i = 0; i < 20; ++i)
        blocks +=
            "<ReturnInfoSummary><ThisPeriod>yes</ThisPeriod><Accounts><ThisPeriodAccounts>yes</ThisPeriodAccounts>"
            "</Accounts><Computations><ThisPeriodComputations>yes</ThisPeriodComputations></Computations>"
            "<SupplementaryPages><CT600A>yes</CT600A><CT600C>yes</CT600C><CT600J>yes</CT600J></SupplementaryPages>"
            "</ReturnInfoSummary><Turnover><Total>250000.00</Total><OtherFinancialConcerns>yes"
            "</OtherFinancialConcerns></Turnover>";
    return "<GovTalkMessage><Body><IRenvelope><IRheader><Keys><Key>1234567890</Key></Keys>"
           "<PeriodEnd>2024-03-31</PeriodEnd><Agent><AgentID>AG1234</AgentID><Address><Line>12 Mill Lane</Line>"
           "<Line>Hebden Bridge</Line><PostCode>HX7 8AA</PostCode></Address></Agent>"
           "<DefaultCurrency>GBP</DefaultCurrency><Manifest/><Sender>Company</Sender></IRheader>"
           "<CompanyTaxReturn><CompanyInformation><CompanyName>Brookfield Joinery Limited</CompanyName>"
           "<RegistrationNumber>08123456</RegistrationNumber><Reference>1234567890</Reference>"
           "<CompanyType>0</CompanyType><PeriodCovered><From>2023-04-01</From><To>2024-03-31</To>"
           "</PeriodCovered></CompanyInformation>" +
           blocks +
           "<CompanyTaxCalculation/><CalculationOfTaxOutstandingOrOverpaid/><Declaration/>"
           "</CompanyTaxReturn></IRenvelope></Body></GovTalkMessage>";
}

int countNodes(const CXMLVar* node) {
    int n = 1;
    for (const CXMLVar* c : node->children) n += countNodes(c);
    return n;
}

void BM_schemawalk(benchmark::State& state) {
    CXMLVar doc;
    doc.Open(message().c_str());
    for (auto _ : state) {
        CXMLVar errors("Errors");
        schemawalk(&doc, &errors);
        benchmark::DoNotOptimize(errors.children.size());
    }
    state.counters["nodes"] = countNodes(&doc);
    state.SetItemsProcessed(static_cast<int64_t>(state.iterations()) * countNodes(&doc));
}
BENCHMARK(BM_schemawalk);

}  // namespace

int main(int argc, char** argv) {
    for (const Sample& s : samples()) {
        benchmark::RegisterBenchmark((std::string("BM_patternvalidate/") + s.label).c_str(), patternBench, s);
        benchmark::RegisterBenchmark((std::string("BM_std_regex/") + s.label).c_str(), stdRegexBench, s);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
