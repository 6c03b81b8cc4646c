#include <gtest/gtest.h>

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "platform/collections.h"

namespace {

TEST(CMapStringToString, IndexCreatesTheEntryLookupDoesNot) {
    CMapStringToString map;
    CString value;
    EXPECT_FALSE(map.Lookup("Q155", value));
    EXPECT_EQ(map.GetCount(), 0);
    EXPECT_EQ(map["Q155"], "");  // a read through [] leaves an empty entry
    EXPECT_EQ(map.GetCount(), 1);
    EXPECT_TRUE(map.Lookup("Q155", value));
    map["Q155"] = "100";
    EXPECT_EQ(*map.PLookup("Q155"), "100");
    EXPECT_EQ(map.PLookup("q155"), nullptr);
    EXPECT_TRUE(map.RemoveKey("Q155"));
    EXPECT_FALSE(map.RemoveKey("Q155"));
    EXPECT_TRUE(map.IsEmpty());
}

// Keys run in the order of their bytes read as unsigned (Latin-1 letters
// after ASCII), a key before its own extensions, as std::string orders them;
// a search finds each key however it is given.
TEST(CMapStringToString, KeysRunInByteOrder) {
    const std::string keys[] = {"Q5", "Q10", "Q1", "", "q1", "Q\xE9", "Q1\xA3", "QB5F.10", "QB5F.1", "QB5F.2",
                                "Q1 ", std::string("Q\0x", 3), "xml/CT/CTchargeable", "\x7F", "\x80"};
    const std::set<std::string> expected(std::begin(keys), std::end(keys));
    CMapStringToString map;
    for (const std::string& key : keys) map[CString(key)] = CString(key + "!");
    std::vector<std::string> order;
    for (const auto& [key, value] : map.items()) order.push_back(key.str());
    EXPECT_EQ(order, std::vector<std::string>(expected.begin(), expected.end()));
    for (const std::string& key : keys) {
        const auto found = map.items().find(std::string_view(key));
        ASSERT_NE(found, map.items().end()) << key;
        EXPECT_EQ(found->second.str(), key + "!");
    }
    EXPECT_EQ(map.items().find(std::string_view("Q")), map.items().end());
    EXPECT_EQ(map.items().lower_bound(std::string_view("QB5F."))->first, "QB5F.1");
}

}  // namespace
