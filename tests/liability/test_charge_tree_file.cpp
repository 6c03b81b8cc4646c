// ctcharge.xml to the byte: the declaration, the style sheet line naming the
// formats folder (backslashes as slashes, "&" escaped), then the same tree as
// the text the results carry, which goes without a style sheet line.
#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "liability/liability.h"
#include "support.h"

namespace {

TEST(ChargeTreeFile, DeclarationStyleSheetThenTheResultsTree) {
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n";
    const struct {
        const char* formats;
        const char* href;
    } cases[] = {
        {"C:\\suite\\formats", "C:/suite/formats/ctcharge.xsl"},
        {"/opt/a&b", "/opt/a&amp;b/ctcharge.xsl"},
    };
    for (const char* profit : {"400000", "0"})
        for (const auto& c : cases) {
            setenv("CT600_FORMATS_DIR", c.formats, 1);
            CMapStringToString boxes, results;
            boxes["from"] = "01/01/2014";
            boxes["to"] = "31/12/2014";
            boxes["Q315"] = profit;
            CTcharge_16(&boxes, "", &results);
            unsetenv("CT600_FORMATS_DIR");
            const std::string text = result(results, "xml/CT/CTchargeable");
            ASSERT_EQ(text.rfind(declaration + "<CTchargeable>", 0), 0u) << text;
            const std::string styleLine = "<?xml-stylesheet type=\"text/xsl\" href=\"" + std::string(c.href) + "\"?>\n";
            EXPECT_EQ(tempFile("ctcharge.xml"), declaration + styleLine + text.substr(declaration.size()))
                << c.formats << ", profit " << profit;
        }
}

}  // namespace
