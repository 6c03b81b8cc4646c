// Folders, paths and the existence of files.
#include <dlfcn.h>
#include <errno.h>
#include <sys/stat.h>
#include <limits.h>
#include <stdlib.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>
#include <system_error>

#include "common/library.h"

namespace fs = std::filesystem;

namespace {

// A folder from the environment, without its trailing separators (the root
// folder itself stays "/"). Empty when the variable is unset or empty.
CString folderFromEnv(const char* variable) {
    const char* value = std::getenv(variable);
    if (!value || !*value) return CString();
    std::string folder(value);
    while (folder.size() > 1 && (folder.back() == '/' || folder.back() == '\\')) folder.pop_back();
    return CString(std::move(folder));
}

bool isFolder(const char* path) {
    std::error_code ec;
    return fs::is_directory(fs::path(path), ec);
}

// The templates of an installed tree, found from where this code was loaded:
// PREFIX/lib/libct600.so or PREFIX/bin/ct600 gives PREFIX/share/ct600/templates,
// wherever the tree was installed or moved to. Empty when there is none.
std::string installedTemplates() {
    std::vector<std::string> objects;
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&GetCTdir), &info) && info.dli_fname && *info.dli_fname)
        objects.emplace_back(info.dli_fname);
    objects.emplace_back("/proc/self/exe");  // this code linked into the program itself
    for (const std::string& object : objects) {
        char real[PATH_MAX];
        if (!realpath(object.c_str(), real)) continue;
        const fs::path folder = fs::path(real).parent_path().parent_path() / "share" / "ct600" / "templates";
        if (isFolder(folder.c_str())) return folder.string();
    }
    return std::string();
}

// The system's temporary folder as the standard library finds it: the first
// of these variables that is set, else /tmp.
const char* systemTempBase() {
    for (const char* variable : {"TMPDIR", "TMP", "TEMP", "TEMPDIR"})
        if (const char* value = secure_getenv(variable)) return value;
    return "/tmp";
}

// Made when missing. The folder is usually there already, and one mkdir
// says so where a status check and a creation would ask twice.
bool madeOrThere(const char* folder) { return mkdir(folder, 0777) == 0 || errno == EEXIST; }
}  // namespace

CString GetTempDir() {
    CString folder = folderFromEnv("CT600_TEMP_DIR");
    if (folder.IsEmpty()) {
        // Its ct600 folder made or found proves the base a folder; anything
        // else takes the long way, which falls back to /tmp.
        if (const char* base = systemTempBase(); *base) {
            std::string text(base);
            if (text.back() != '/') text += '/';
            text += "ct600";
            if (madeOrThere(text.c_str())) return CString(std::move(text));
        }
        std::error_code ec;
        fs::path base = fs::temp_directory_path(ec);
        if (ec || base.empty()) base = "/tmp";
        std::string text = (base / "ct600").string();
        while (text.size() > 1 && text.back() == '/') text.pop_back();
        folder = CString(std::move(text));
    }
    if (madeOrThere(folder.c_str())) return folder;
    std::error_code ec;
    fs::create_directories(fs::path(folder.str()), ec);  // a failure shows when a file is opened
    return folder;
}

CString GetCTdir() {
    CString folder = folderFromEnv("CT600_TEMPLATE_DIR");
    if (!folder.IsEmpty()) return folder;
    static const std::string installed = installedTemplates();
    if (!installed.empty()) return CString(installed);
#ifdef CT600_TEMPLATE_INSTALL_DIR
    // Looked for once, like the installed tree above.
    static const bool installDir = isFolder(CT600_TEMPLATE_INSTALL_DIR);
    if (installDir) return CString(CT600_TEMPLATE_INSTALL_DIR);
#endif
#ifdef CT600_TEMPLATE_SOURCE_DIR
    return CString(CT600_TEMPLATE_SOURCE_DIR);
#else
    return CString(".");
#endif
}

CString GetFormatsDir() {
    CString folder = folderFromEnv("CT600_FORMATS_DIR");
    return folder.IsEmpty() ? GetCTdir() : folder;
}

CString GetQuillonDir() {
    CString folder = folderFromEnv("CT600_SUITE_DIR");
    return folder.IsEmpty() ? GetCTdir() : folder;
}

CString JoinPath(const char* folder, const char* name, const char* extension) {
    CString out(folder);
    if (!out.IsEmpty()) {
        const char last = out.GetAt(out.GetLength() - 1);
        if (last != '/' && last != '\\') out += '/';
    }
    out += name;
    out += extension;
    return out;
}

int exists(const char* path) {
    if (!path || !*path) return 0;
    std::error_code ec;
    return fs::is_regular_file(fs::path(NativePath(path).str()), ec) ? 1 : 0;
}

CString NativePath(const char* path) {
    std::string out;
    if (!path) return CString();
    for (const char* p = path; *p; ++p) {
        const char c = *p == '\\' ? '/' : *p;
        if (c == '/' && !out.empty() && out.back() == '/') continue;
        out += c;
    }
    return CString(std::move(out));
}
