// A template is read again when its file changes, and never changed by use.
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>

#include "common/library.h"
#include "envelope_support.h"

namespace {

using namespace envtest;

void writeTemplate(const std::string& path, const std::string& body) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << body;
}

TEST(TemplateCache, AnEditedTemplateIsReadAgain) {
    const std::string folder = GetTempDir().str();
    EnvGuard env("CT600_TEMPLATE_DIR", folder.c_str());
    const std::string path = folder + "/cttest.xml";
    CMapStringToString map = boxesOf({{"name", "Acme Ltd"}, {"Q1", "12"}});

    // Same length on purpose for the second edit: the modification time tells.
    const std::pair<const char*, const char*> versions[] = {
        {"<Form><Name>{name}</Name></Form>", "(Name=Acme Ltd)"},
        {"<Form><Box1>{Q1}</Box1><X>{name}</X></Form>", "(Box1=12 X=Acme Ltd)"},
        {"<Form><Box1>{Q1}</Box1><Y>{name}</Y></Form>", "(Box1=12 Y=Acme Ltd)"},
    };
    for (const auto& [body, expected] : versions) {
        writeTemplate(path, body);
        // Two calls per version: the second is served from what the first read.
        for (int call = 0; call < 2; ++call) {
            const std::unique_ptr<CXMLVar> message(quick_govtalk(&map, "cttest"));
            ASSERT_NE(message, nullptr);
            EXPECT_NE(compact(message.get()).find(expected), std::string::npos) << compact(message.get());
        }
        // Let the next edit land on a later modification time.
        std::filesystem::last_write_time(path, std::filesystem::last_write_time(path) - std::chrono::seconds(10));
    }
    std::remove(path.c_str());
    EXPECT_EQ(quick_govtalk(&map, "cttest"), nullptr);
}

}  // namespace
