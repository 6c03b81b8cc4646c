#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <string>
#include <vector>

#include "common/library.h"
#include "support/env.h"

TEST(Text, Formatting) {
    // fmt("%s") and fmt("%d %d") take no int and fall back; fmt2 is plain printf on the binary value.
    const std::pair<CString, const char*> cases[] = {
        {fmt(-42), "-42"},     {fmt("%05d", 42), "00042"}, {fmt("Q%dX", 7), "Q7X"},  {fmt("%s", 7), "7"},
        {fmt("%d %d", 7), "7"}, {fmt(nullptr, 7), "7"},     {fmt0(2.5), "2"},         {fmt0(1234.6), "1235"},
        {fmt2(2.675), "2.67"}, {fmt2(roundpenny(-0.001)), "0.00"}, {quote("a b"), "\"a b\""},
        {ToLower("ABC d\xA3"), "abc d\xA3"},
    };
    for (const auto& [got, want] : cases) EXPECT_EQ(got, want);
}

TEST(Text, InsertSpaces) {
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"CompanyName", "Company Name"},     {"CT600A", "CT600A"},
        {"NonUKdividends", "Non UKdividends"}, {"SMEclaim", "SMEclaim"},
        {"periodStartDate", "period Start Date"}, {"", ""},
        {"Already Spaced", "Already Spaced"}, {"a1B", "a1B"},
    };
    for (const auto& [in, out] : cases) EXPECT_EQ(InsertSpaces(in), out) << in;
}

TEST(Text, IsYes) {
    for (const char* yes : {"y", "Y", "yes", "YES", " Yes ", "true", "TRUE", "1", "x", "X"})
        EXPECT_EQ(IsYes(yes), 1) << yes;
    for (const char* no : std::initializer_list<const char*>{"", "n", "no", "false", "0", "yess", "11", "xx", "ye", nullptr})
        EXPECT_EQ(IsYes(no), 0) << (no ? no : "null");
}

TEST(Text, ExtensionsAndPrefixes) {
    struct Case {
        const char* file;
        const char* extension;
        int expected;
    };
    const Case cases[] = {{"accounts.pdf", ".pdf", 1}, {"accounts.html", ".pdf", 0}, {"ACCOUNTS.PDF", ".pdf", 1},
                          {"pdf", ".pdf", 0},          {".pdf", ".pdf", 1},          {"a.pdf.txt", ".pdf", 0},
                          {"a.pdf", "", 0},            {nullptr, ".pdf", 0}};
    for (const auto& c : cases) EXPECT_EQ(ext(c.file, c.extension), c.expected) << (c.file ? c.file : "null");

    EXPECT_EQ(StartsWith("CT600A", "CT600"), 1);
    EXPECT_EQ(StartsWith("CT6", "CT600"), 0);
    EXPECT_EQ(StartsWith(nullptr, "x"), 0);

    CStringArray items;
    items.Add("a");
    items.Add("b c");
    EXPECT_EQ(array2str(items), "a, b c");
    EXPECT_EQ(array2str(CStringArray()), "");
    EXPECT_EQ(contains(items, "b c"), 1);
    EXPECT_EQ(contains(items, "b"), 0);
}

TEST(Numbers, IntegerAndDecimalForms) {
    struct Case {
        const char* text;
        int integer, decimal, positive;
    };
    const Case cases[] = {
        {"0", 1, 1, 0},    {"000", 1, 1, 0},  {"007", 1, 1, 1}, {"+5", 1, 1, 1},  {"-5", 1, 1, 0},
        {"-0", 1, 1, 0},   {"12", 1, 1, 1},   {"", 0, 0, 0},    {" 1", 0, 0, 0},  {"1 ", 0, 0, 0},
        {"+", 0, 0, 0},    {"-", 0, 0, 0},    {"1.", 0, 1, 0},  {".5", 0, 1, 0},  {".", 0, 0, 0},
        {"1.2.3", 0, 0, 0}, {"-1.5", 0, 1, 0}, {"1e3", 0, 0, 0}, {"1,000", 0, 0, 0}, {"--1", 0, 0, 0},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(isInteger(c.text), c.integer) << c.text;
        EXPECT_EQ(isDecimal(c.text), c.decimal) << c.text;
        EXPECT_EQ(isPositiveInteger(c.text), c.positive) << c.text;
    }
    EXPECT_EQ(isInteger(nullptr) + isDecimal(nullptr) + isPositiveInteger(nullptr), 0);
}

TEST(Rounding, HalvesGoAwayFromZero) {
    struct Case {
        double (*round)(double);
        double in, out;
    };
    const Case cases[] = {
        {roundpenny, 2.675, 2.68},         {roundpenny, -2.675, -2.68},    {roundpenny, 1.005, 1.01},
        {roundpenny, 0.004999, 0.0},       {roundpenny, 123456.785, 123456.79},
        {roundpennydown, 0.29, 0.29},      {roundpennydown, 1.999, 1.99},  {roundpennydown, -1.001, -1.01},
        {roundpennydown, 4.35, 4.35},      {roundpennyup, 1.001, 1.01},    {roundpennyup, 0.29, 0.29},
        {roundpennyup, -1.009, -1.0},      {roundnearest, 2.5, 3.0},       {roundnearest, -2.5, -3.0},
        {roundnearest, 2.499999, 2.0},    {roundnearest, 0.4999999999, 1.0},
        {roundpenny, 2e9 + 0.125, 2e9 + 0.13}, {roundnearest, -0.4, 0.0},
    };
    for (const auto& c : cases) EXPECT_DOUBLE_EQ(c.round(c.in), c.out) << c.in;
    EXPECT_FALSE(std::signbit(roundnearest(-0.4)));
    EXPECT_FALSE(std::signbit(roundpennyup(-0.001)));
    EXPECT_EQ(roundpenny(std::numeric_limits<double>::quiet_NaN()), 0.0);
    EXPECT_EQ(roundnearest(std::numeric_limits<double>::infinity()), 0.0);
}

TEST(Base64, KnownVectors) {
    const std::vector<std::pair<std::string, const char*>> cases = {
        {"", ""},         {"f", "Zg=="},         {"fo", "Zm8="},         {"foo", "Zm9v"},
        {"foob", "Zm9vYg=="}, {"fooba", "Zm9vYmE="}, {"foobar", "Zm9vYmFy"},
        {std::string("\xFF\xFE\xFD\x00\x80", 5), "//79AIA="}, {"\xFB\xFF", "+/8="},
    };
    for (const auto& [in, out] : cases)
        EXPECT_EQ(ToBase64(reinterpret_cast<const unsigned char*>(in.data()), static_cast<int>(in.size())), out);
    EXPECT_EQ(ToBase64(nullptr, 3), "");
    EXPECT_EQ(ToBase64(reinterpret_cast<const unsigned char*>("abc"), -1), "");
}

TEST(Base64, FromFile) {
    const CString path = GetTempDir() + "/b64.bin";
    {
        std::ofstream out(path.c_str(), std::ios::binary);
        out.write("foob\0r", 6);
    }
    CXMLVar node("Attachment", "old");
    FileToBase64(GetTempDir() + "\\b64.bin", &node);
    EXPECT_EQ(node.value, "Zm9vYgBy");
    FileToBase64(GetTempDir() + "\\missing.bin", &node);
    EXPECT_EQ(node.value, "");
    FileToBase64(path, nullptr);
}

TEST(Folders, PathsAndOverrides) {
    EXPECT_EQ(NativePath(GetTempDir() + "\\t.xml"), GetTempDir() + "/t.xml");
    EXPECT_EQ(NativePath("a\\\\b//c\\/d"), "a/b/c/d");
    for (const auto& [got, want] : {std::pair<CString, const char*>{JoinPath("dir", "name", ".xml"), "dir/name.xml"},
                                    {JoinPath("dir/", "name", ".xml"), "dir/name.xml"},
                                    {JoinPath("dir\\", "name", ""), "dir\\name"}, {JoinPath("", "name", ".xml"), "name.xml"}})
        EXPECT_EQ(got, want);

    const CString tempFolder = GetTempDir() + "/override";
    {
        EnvGuard temp("CT600_TEMP_DIR", (tempFolder + "//").c_str());
        EXPECT_EQ(GetTempDir(), tempFolder);
        EnvGuard templates("CT600_TEMPLATE_DIR", "/forms/templates/");
        EnvGuard formats("CT600_FORMATS_DIR", nullptr);
        EnvGuard suite("CT600_SUITE_DIR", "/suite");
        EXPECT_EQ(GetCTdir(), "/forms/templates");
        EXPECT_EQ(GetFormatsDir(), "/forms/templates");
        EXPECT_EQ(GetQuillonDir(), "/suite");
    }
    EXPECT_EQ(exists(tempFolder), 0);  // a folder is no file
    const CString file = tempFolder + "/present.txt";
    std::ofstream(file.c_str()) << "x";
    EXPECT_EQ(exists(tempFolder + "\\present.txt"), 1);
    EXPECT_EQ(exists(tempFolder + "\\absent.txt"), 0);
    EXPECT_EQ(exists(""), 0);
    EXPECT_EQ(exists(nullptr), 0);

    EnvGuard templates("CT600_TEMPLATE_DIR", nullptr);
    EXPECT_FALSE(GetCTdir().IsEmpty());
    EXPECT_NE(GetCTdir().Right(1), "/");
}

// Without CT600_TEMP_DIR the folder is "ct600" in the system's temporary
// folder: the first of TMPDIR, TMP, TEMP, TEMPDIR that is set, and /tmp when
// that is no folder.
TEST(Folders, SystemTemporaryFolder) {
    const std::string scratch = (GetTempDir() + "/system-temp").str();
    std::filesystem::remove_all(scratch);
    std::filesystem::create_directories(scratch);
    std::ofstream(scratch + "/file") << "x";
    EnvGuard own("CT600_TEMP_DIR", nullptr);
    struct Case {
        const char* tmpdir;
        const char* tmp;
        std::string want;
    };
    const Case cases[] = {
        {"S", nullptr, "S/ct600"},          {"S/", nullptr, "S/ct600"},
        {"S/missing", nullptr, "/tmp/ct600"}, {"S/file", nullptr, "/tmp/ct600"},
        {"", "S", "/tmp/ct600"},            {nullptr, "S", "S/ct600"},
    };
    const auto scratched = [&scratch](const char* text) {
        std::string out = text ? text : "";
        if (out.starts_with('S')) out.replace(0, 1, scratch);
        return out;
    };
    for (const Case& c : cases) {
        EnvGuard tmpdir("TMPDIR", c.tmpdir ? scratched(c.tmpdir).c_str() : nullptr);
        EnvGuard tmp("TMP", c.tmp ? scratched(c.tmp).c_str() : nullptr);
        EnvGuard temp("TEMP", nullptr), tempdir("TEMPDIR", nullptr);
        const std::string want = scratched(c.want.c_str());
        EXPECT_EQ(GetTempDir().str(), want) << (c.tmpdir ? c.tmpdir : "(unset)");
        EXPECT_TRUE(std::filesystem::is_directory(want));
        // Removed behind the library's back, it is made again.
        if (want != "/tmp/ct600") {
            std::filesystem::remove_all(want);
            EXPECT_EQ(GetTempDir().str(), want);
            EXPECT_TRUE(std::filesystem::is_directory(want));
        }
    }
    std::filesystem::remove_all(scratch);
}

TEST(Subform, BoxesBecomeAMap) {
    CXMLVar tree("");
    ASSERT_EQ(tree.Open("<Return prefix=\"A_\"><Boxes><Q1>100</Q1><form>CT600</form><Q2/></Boxes></Return>"), 1);
    CMapStringToString boxes;
    CStringArray names;
    boxes["A_Q1"] = "old";
    SubformFromXML(&tree, boxes, names);
    EXPECT_EQ(boxes["A_Q1"], "100");
    EXPECT_EQ(boxes["A_form"], "CT600");
    ASSERT_NE(boxes.PLookup("form"), nullptr);
    EXPECT_EQ(*boxes.PLookup("form"), "");
    ASSERT_EQ(names.GetSize(), 3);
    EXPECT_EQ(names[0], "A_Q1");
    EXPECT_EQ(names[2], "A_Q2");

    CMapStringToString only;
    only["form"] = "kept";
    CXMLVar bare("Return");
    SubformFromXML(&bare, only, names);
    EXPECT_EQ(only.GetCount(), 1);
    EXPECT_EQ(only["form"], "kept");
    CMapStringToString none;
    SubformFromXML(nullptr, none, names);
    EXPECT_EQ(none.GetCount(), 1);
}
