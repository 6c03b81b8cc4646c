// quick_govtalk: the box map as the GovTalkMessage that the business rules
// and the schema walk read.
#include <sys/stat.h>

#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "common/current_law.h"
#include "common/library.h"
#include "common/outfile.h"
#include "envelope/envelope.h"

namespace {

constexpr const char* kThirdGenerationForm = "ctv3_16";
constexpr const char* kAttachmentClass = "HMRC-SA-SA100-ATT";

// A template is parsed once and kept while its file stays the same (same
// file, size and modification time): a suite validates return after return
// against the same few templates. Trees in the cache are only ever read.
// Null when the path is no regular file.
std::shared_ptr<CXMLVar> loadTemplate(const CString& path) {
    struct stat info {};
    if (::stat(NativePath(path), &info) != 0 || !S_ISREG(info.st_mode)) return nullptr;
    struct Entry {
        dev_t device;
        ino_t inode;
        off_t size;
        timespec modified;
        std::shared_ptr<CXMLVar> tree;
    };
    static std::mutex mutex;
    static std::map<std::string, Entry> cache;
    const auto same = [&info](const Entry& e) {
        return e.device == info.st_dev && e.inode == info.st_ino && e.size == info.st_size &&
               e.modified.tv_sec == info.st_mtim.tv_sec && e.modified.tv_nsec == info.st_mtim.tv_nsec;
    };
    {
        std::lock_guard<std::mutex> lock(mutex);
        const auto it = cache.find(path.str());
        if (it != cache.end() && same(it->second)) return it->second.tree;
    }
    auto tree = std::make_shared<CXMLVar>(CString());
    tree->OpenPath(path);
    std::lock_guard<std::mutex> lock(mutex);
    if (cache.size() >= 16) cache.clear();  // a handful of forms in real use
    cache[path.str()] = Entry{info.st_dev, info.st_ino, info.st_size, info.st_mtim, tree};
    return tree;
}

}  // namespace

CXMLVar* quick_govtalk(CMapStringToString* boxes, CString form) {
    CMapStringToString none;
    CMapStringToString& box = boxes ? *boxes : none;

    const bool ctForm = StartsWith(form, "ct") != 0;
    const CString folder = ctForm ? GetCTdir() : GetQuillonDir();
    const CString path = JoinPath(folder, form, ".xml");
    DoLogF("quick_govtalk() template=%s", path.c_str());
    const std::shared_ptr<CXMLVar> templ = loadTemplate(path);
    if (!templ) {
        DoLogF("quick_govtalk() %s missing", path.c_str());
        return nullptr;
    }

    CXMLVar* populated = nullptr;
    CGovTalk filler(populated);
    // The template shares nothing with the document.
    std::unique_ptr<CXMLVar> document(filler.PopulateSettled(templ.get(), box));

    // A form's template may hold elements meant for the root itself.
    if (ctForm) {
        if (CXMLVar* move = document->FindChild("MoveToParent")) {
            document->CloneChildren(move);
            document->DeleteChild(move);
        }
    }

    if (UnderCurrentLaw(box)) AddAssociatedCompanies(document.get(), box);

    CXMLVar* created = nullptr;
    const int pdfPlaced = attachfiles("", &created, box, 0, document.get());
    delete created;  // only made when there is no document, which cannot happen here

    auto message = std::make_unique<CXMLVar>("GovTalkMessage");
    if (pdfPlaced) message->FromPath("Header/MessageDetails/Class")->value = kAttachmentClass;
    message->GetChild("Body")->GetChild("IRenvelope")->AddChild(document.release(), nullptr);

    // A copy for whoever wants to look at what was validated; nothing reads it back.
    ReplaceFile out(NativePath(GetTempDir() + "\\" + "t.xml"));
    if (out) message->Save(out, 1, 0, 0);
    return message.release();
}

CXMLVar* quick_govtalk(CMapStringToString& boxes) { return quick_govtalk(&boxes, kThirdGenerationForm); }
