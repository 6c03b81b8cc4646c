#include "report.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <tuple>
#include <vector>

#include "box_labels.h"
#include "common/library.h"
#include "envelope/envelope.h"

namespace cli {

namespace {

const char* const kStyle = R"css(
:root { color-scheme: light; --ink: #1d2733; --muted: #5b6876; --rule: #d5dbe1; --band: #f3f5f8; --accent: #1f5f8b; }
* { box-sizing: border-box; }
body { margin: 0; font: 15px/1.45 system-ui, -apple-system, "Segoe UI", Roboto, Arial, sans-serif; color: var(--ink); background: #fff; }
header { background: var(--accent); color: #fff; padding: 1.4rem 2rem 1.2rem; }
header h1 { margin: 0 0 .6rem; font-size: 1.6rem; font-weight: 600; }
header .kind { margin: 0 0 .2rem; text-transform: uppercase; letter-spacing: .08em; font-size: .75rem; opacity: .85; }
dl.facts { display: flex; flex-wrap: wrap; gap: .3rem 2.2rem; margin: 0; }
dl.facts div { display: flex; flex-direction: column; }
dl.facts dt { font-size: .75rem; text-transform: uppercase; letter-spacing: .06em; opacity: .85; }
dl.facts dd { margin: 0; font-weight: 600; }
main { max-width: 60rem; margin: 0 auto; padding: 1rem 2rem 2rem; }
h2 { font-size: 1.25rem; border-bottom: 2px solid var(--accent); padding-bottom: .2rem; margin: 2rem 0 .8rem; }
h3 { font-size: 1rem; margin: 1.4rem 0 .4rem; color: var(--accent); }
table { border-collapse: collapse; width: 100%; }
th, td { padding: .3rem .6rem; vertical-align: top; }
table.boxes th, table.boxes td, table.summary th { text-align: left; }
table.boxes { table-layout: fixed; }
table.boxes th.box { width: 6.5rem; }
table.boxes th.value { width: 15rem; }
table.boxes thead th { font-size: .8rem; text-transform: uppercase; letter-spacing: .05em; color: var(--muted); border-bottom: 1px solid var(--rule); }
table.boxes tbody tr:nth-child(even) { background: var(--band); }
table.boxes td.box { color: var(--muted); font-variant-numeric: tabular-nums; overflow-wrap: anywhere; }
table.boxes .value, table.summary .value { text-align: right; white-space: nowrap; font-variant-numeric: tabular-nums; }
table.boxes td.value.text { text-align: left; white-space: normal; overflow-wrap: anywhere; }
.override { font-size: .7rem; color: var(--accent); border: 1px solid var(--accent); border-radius: 3px; padding: 0 .25rem; margin-left: .4rem; }
table.summary { width: auto; min-width: 24rem; }
table.summary th { font-weight: normal; }
table.summary td { font-weight: 600; font-size: 1.1rem; }
.worked { border: 1px solid var(--rule); border-radius: 4px; padding: .4rem 1rem 1rem; background: #fbfcfd; font-variant-numeric: tabular-nums; }
.worked h1 { font-size: 1.1rem; }
.worked h2 { font-size: 1rem; border: 0; margin: 1rem 0 .3rem; }
.worked table { width: auto; min-width: 20rem; }
.worked td { padding: .1rem .6rem; }
ul.errors { padding-left: 1.2rem; }
ul.errors code { font-weight: 600; margin-right: .5rem; }
p.none { color: var(--muted); }
footer { max-width: 60rem; margin: 0 auto; padding: 1rem 2rem 2rem; color: var(--muted); font-size: .8rem; border-top: 1px solid var(--rule); }
@media print { header { background: none; color: var(--ink); border-bottom: 2px solid var(--ink); } main { max-width: none; } }
)css";

// The library's texts are ISO-8859-1; the labels and file names are UTF-8 already.
std::string esc(const std::string& text) { return escapeMarkup(toUtf8(text)); }
std::string escUtf8(const std::string& text) { return escapeMarkup(text); }

// 1234567.5 as "1,234,567.50"; text that is no plain number stays as it is.
std::string withThousands(const std::string& number) {
    if (number.empty()) return number;
    std::size_t start = number[0] == '-' ? 1 : 0;
    const std::size_t point = std::min(number.find('.'), number.size());
    if (point <= start) return number;
    for (std::size_t i = start; i < point; ++i)
        if (!std::isdigit(static_cast<unsigned char>(number[i]))) return number;
    std::string out = number.substr(0, start);
    for (std::size_t i = start; i < point; ++i) {
        if (i > start && (point - i) % 3 == 0) out += ',';
        out += number[i];
    }
    return out + number.substr(point);
}

// A calculator's figure without its run of trailing noughts: 36199.210000 is 36199.21.
std::string plainNumber(const std::string& text) {
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    if (text.empty() || !end || *end != '\0' || text.find('.') == std::string::npos) return text;
    if (text.find_first_of("eExXnN") != std::string::npos) return text;
    std::string out = text;
    while (out.back() == '0') out.pop_back();
    if (out.back() == '.') out.pop_back();
    return out;
}

struct Shown {
    std::string text;
    bool numeric = false;
    bool override = false;
};

// How a box reads on the page; empty when the form would show nothing.
Shown showBox(const CString& raw, const BoxLabel* label) {
    Shown shown;
    std::string text = raw.str();
    while (!text.empty() && std::isspace(static_cast<unsigned char>(text.back()))) text.pop_back();
    if (!text.empty() && text.back() == '!') {
        shown.override = true;
        text.pop_back();
    }
    const auto first = text.find_first_not_of(" \t\r\n");
    text = first == std::string::npos ? std::string() : text.substr(first);
    if (isBlankOnForm(CString(text))) return {};
    if (!label) {
        shown.text = text == "zero" || text == "ZERO" || text == "Zero" ? "0" : plainNumber(text);
        char* end = nullptr;
        std::strtod(shown.text.c_str(), &end);
        shown.numeric = !shown.text.empty() && end && *end == '\0';
        if (shown.numeric) shown.text = withThousands(shown.text);
        return shown;
    }
    switch (label->kind) {
        case BoxKind::Amount:
            shown.text = withThousands(FormatBox(BoxKind::Amount, text.c_str()).str());
            shown.numeric = true;
            break;
        case BoxKind::Int:
            shown.text = FormatBox(BoxKind::Int, text.c_str()).str();
            shown.numeric = true;
            break;
        case BoxKind::Flag:
        case BoxKind::YesNo:
            shown.text = FormatBox(label->kind, text.c_str()).str();
            break;
        case BoxKind::Date:
        case BoxKind::Text:
        case BoxKind::Signed:
            shown.text = text;
            break;
    }
    if (shown.text.empty()) return {};
    return shown;
}

void valueCell(std::string& out, const Shown& shown) {
    out += shown.numeric ? "<td class=\"value\">" : "<td class=\"value text\">";
    out += esc(shown.text);
    if (shown.override) out += "<span class=\"override\" title=\"entered by the user, not recalculated\">entered</span>";
    out += "</td>";
}

struct Row {
    std::tuple<int, int, int, int> order;  // section, family, row, place in the tables
    std::string box, meaning;
    Shown shown;
};

void tableStart(std::string& out) {
    out += "<table class=\"boxes\"><thead><tr><th class=\"box\">Box</th><th>Description</th>"
           "<th class=\"value\">Value</th></tr></thead><tbody>\n";
}

// A box of the form is Q and a number (QA10B.2, Q155); the rest (form,
// from, fileattach1) and the calculator's own Q1000 are the software's.
bool isFormBox(const std::string& key) {
    if (key == "Q1000" || key.size() < 2 || key[0] != 'Q') return false;
    const std::size_t digit = std::isupper(static_cast<unsigned char>(key[1])) ? 2 : 1;
    return digit < key.size() && std::isdigit(static_cast<unsigned char>(key[digit]));
}

void otherTable(std::string& out, const char* title, std::vector<std::pair<std::string, Shown>>& rows) {
    if (rows.empty()) return;
    std::sort(rows.begin(), rows.end(), [](const auto& a, const auto& b) { return formOrder(a.first, b.first); });
    out += std::string("<h3>") + title + "</h3>\n";
    tableStart(out);
    for (const auto& [key, shown] : rows) {
        out += "<tr><td class=\"box\">" + esc(key) + "</td><td></td>";
        valueCell(out, shown);
        out += "</tr>\n";
    }
    out += "</tbody></table>\n";
}

void figures(std::string& out, const CalcRun& run) {
    const BoxLabels* labels = run.generation == 3 ? &BoxLabels::ThirdGeneration() : nullptr;
    std::vector<Row> mapped;
    std::vector<std::pair<std::string, Shown>> others, internal;
    for (const auto& [key, value] : run.boxes.items()) {
        if (key == kWorkedReportKey) continue;  // shown as the worked computation
        const FoundLabel found = labels ? labels->Find(key.str()) : FoundLabel{};
        Shown shown = showBox(value, found.label);
        if (shown.text.empty()) continue;
        if (!isFormBox(key.str()) && !found.label) {
            internal.emplace_back(key.str(), std::move(shown));
            continue;
        }
        if (!found.label) {
            others.emplace_back(key.str(), std::move(shown));
            continue;
        }
        const BoxLabel& l = *found.label;
        Row row;
        row.order = {l.section, l.family, found.row, l.order};
        row.box = l.formBox.empty() ? key.str() : l.formBox;
        row.meaning = l.meaning;
        if (found.row) row.meaning += " (row " + std::to_string(found.row) + ")";
        row.shown = std::move(shown);
        mapped.push_back(std::move(row));
    }
    std::sort(mapped.begin(), mapped.end(), [](const Row& a, const Row& b) { return a.order < b.order; });

    out += "<section id=\"figures\">\n<h2>Figures of the return</h2>\n";
    if (mapped.empty() && others.empty()) out += "<p class=\"none\">No box holds anything.</p>\n";
    int section = -1;
    for (const Row& row : mapped) {
        if (std::get<0>(row.order) != section) {
            if (section >= 0) out += "</tbody></table>\n";
            section = std::get<0>(row.order);
            out += "<h3>" + escUtf8(labels->Sections()[static_cast<std::size_t>(section)]) + "</h3>\n";
            tableStart(out);
        }
        out += "<tr><td class=\"box\">" + escUtf8(row.box) + "</td><td>" + escUtf8(row.meaning) + "</td>";
        valueCell(out, row.shown);
        out += "</tr>\n";
    }
    if (section >= 0) out += "</tbody></table>\n";
    otherTable(out, labels ? "Other boxes" : "Boxes", others);
    out += "</section>\n";
    if (!internal.empty()) {
        out += "<section id=\"internal\">\n<h2>Entries kept by the software (not boxes of the form)</h2>\n";
        otherTable(out, "Entries", internal);
        out += "</section>\n";
    }
}

std::string firstFilled(const CalcRun& run, std::initializer_list<const char*> keys) {
    for (const char* key : keys) {
        std::string text = boxText(run.boxes, key);
        const auto first = text.find_first_not_of(" \t\r\n");
        if (first != std::string::npos) return text.substr(first);
    }
    return std::string();
}

std::string money(const CalcRun& run, const char* key) {
    return withThousands(fmt2(myatof(boxText(run.boxes, key).c_str())).str());
}

}  // namespace

std::string reportPage(const CalcRun& run, const std::string& workedHtml, const std::string& source,
                       const Validation& validation) {
    // Q1 and Q3 are the company and its reference on the current form only.
    const bool third = run.generation == 3;
    const std::string name = third ? firstFilled(run, {"name", "Q1"}) : firstFilled(run, {"name"});
    const std::string reference = third ? firstFilled(run, {"tax_reference", "Q3"}) : firstFilled(run, {"tax_reference"});
    const GenerationBoxes& g = generationBoxes(run.generation);
    const std::string from = firstFilled(run, {g.from}), to = firstFilled(run, {g.to});
    const std::string form = firstFilled(run, {"form"});
    const std::string title = name.empty() ? "Company tax return" : name;

    std::string out;
    out.reserve(16384 + workedHtml.size());
    out += "<!DOCTYPE html>\n<html lang=\"en-GB\">\n<head>\n<meta charset=\"utf-8\">\n"
           "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
           "<meta name=\"generator\" content=\"ct600\">\n";
    out += "<title>Corporation tax computation: " + esc(title) + "</title>\n";
    out += "<style>" + std::string(kStyle) + "</style>\n</head>\n<body>\n";

    out += "<header>\n<p class=\"kind\">Company tax return, recalculated</p>\n<h1>" + esc(title) + "</h1>\n";
    out += "<dl class=\"facts\">\n";
    auto fact = [&out](const char* term, const std::string& text) {
        out += "<div><dt>" + std::string(term) + "</dt><dd>" + (text.empty() ? "not given" : esc(text)) + "</dd></div>\n";
    };
    fact("Tax reference", reference);
    fact("Period", from.empty() && to.empty() ? std::string() : (from.empty() ? "?" : from) + " to " + (to.empty() ? "?" : to));
    if (!form.empty()) fact("Form", form);
    out += "</dl>\n</header>\n<main>\n";

    out += "<section id=\"summary\">\n<h2>Tax chargeable</h2>\n<table class=\"summary\">\n";
    std::string chargeable = g.chargeableName;
    chargeable[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(chargeable[0])));
    out += "<tr><th>" + chargeable + " (" + g.chargeable + ")</th><td class=\"value\">" + money(run, g.chargeable) +
           "</td></tr>\n";
    out += "<tr><th>Tax payable (" + std::string(g.payable) + ")</th><td class=\"value\">" + money(run, g.payable) +
           "</td></tr>\n";
    out += "</table>\n</section>\n";

    figures(out, run);

    out += "<section id=\"worked\">\n<h2>Worked computation</h2>\n";
    if (workedHtml.empty())
        out += "<p class=\"none\">The run left no worked computation: the return needs its dates for one.</p>\n";
    else
        out += "<div class=\"worked\">\n" + toUtf8(workedHtml) + "\n</div>\n";
    out += "</section>\n";

    out += "<section id=\"errors\">\n<h2>Errors found by the calculator</h2>\n";
    if (run.errors.empty()) {
        out += "<p class=\"none\">None.</p>\n";
    } else {
        out += "<ul class=\"errors\">\n";
        for (const ErrorLine& e : run.errors) out += "<li><code>" + esc(e.field) + "</code>" + esc(e.text) + "</li>\n";
        out += "</ul>\n";
    }
    out += "<h2>Errors found by validation (business rules and schema)</h2>\n";
    if (!validation.problem.empty()) {
        out += "<p class=\"none\">Validation could not run: " + escUtf8(validation.problem) + "</p>\n";
    } else if (validation.lines.empty()) {
        out += "<p class=\"none\">None.</p>\n";
    } else {
        out += "<ul class=\"errors\">\n";
        for (const std::string& line : validation.lines) out += "<li>" + escUtf8(line) + "</li>\n";
        out += "</ul>\n";
    }
    out += "</section>\n</main>\n";
    out += "<footer>Recalculated by ct600 from " + escUtf8(source) + ".</footer>\n</body>\n</html>\n";
    return out;
}

std::string buildReport(const std::string& path, const CalcOptions& options) {
    PrivateTempDir folder("report");
    const CalcRun run = runCalc(path, options);
    std::string worked;
    const auto htm = std::filesystem::path(folder.path()) / "calc.htm";
    if (std::filesystem::exists(htm)) worked = readFile(htm.string());
    Validation validation;
    try {
        requireTemplate();
        const ValidateRun checked = runValidate(path, false);
        for (std::size_t at = 0; at < checked.text.size();) {
            const std::size_t end = std::min(checked.text.find('\n', at), checked.text.size());
            validation.lines.push_back(checked.text.substr(at, end - at));
            at = end + 1;
        }
    } catch (const InputError& e) {
        validation.problem = e.message;
    }
    return reportPage(run, worked, path, validation);
}

}  // namespace cli
