// quick_govtalk: the box map as the GovTalkMessage that the business rules
// and the schema walk read.
#include <fstream>
#include <memory>

#include "common/library.h"
#include "envelope/envelope.h"

namespace {

constexpr const char* kThirdGenerationForm = "ctv3_16";
constexpr const char* kAttachmentClass = "HMRC-SA-SA100-ATT";

}  // namespace

CXMLVar* quick_govtalk(CMapStringToString* boxes, CString form) {
    CMapStringToString none;
    CMapStringToString& box = boxes ? *boxes : none;

    auto templ = std::make_unique<CXMLVar>(CString());
    const bool ctForm = StartsWith(form, "ct") != 0;
    const CString folder = ctForm ? GetCTdir() : GetQuillonDir();
    const CString path = JoinPath(folder, form, ".xml");
    DoLogF("quick_govtalk() template=%s", path.c_str());
    if (!exists(path)) {
        DoLogF("quick_govtalk() %s missing", path.c_str());
        return nullptr;
    }
    templ->OpenPath(path);

    const std::unique_ptr<CXMLVar> data(TaxToXML(box));
    CXMLVar* populated = nullptr;
    CGovTalk filler(populated);
    // The template and data trees share nothing with the document: they go
    // when this call ends.
    std::unique_ptr<CXMLVar> document(filler.Populate(templ.get(), data.get(), 0, CString()));
    filler.RemoveConditionals(document.get());

    // A form's template may hold elements meant for the root itself.
    if (ctForm) {
        if (CXMLVar* move = document->FindChild("MoveToParent")) {
            document->CloneChildren(move);
            document->DeleteChild(move);
        }
    }

    CXMLVar* created = nullptr;
    const int pdfPlaced = attachfiles("", &created, box, 0, document.get());
    delete created;  // only made when there is no document, which cannot happen here

    auto message = std::make_unique<CXMLVar>("GovTalkMessage");
    if (pdfPlaced) message->FromPath("Header/MessageDetails/Class")->value = kAttachmentClass;
    message->GetChild("Body")->GetChild("IRenvelope")->AddChild(document.release(), nullptr);

    // A copy for whoever wants to look at what was validated; nothing reads it back.
    std::ofstream out(NativePath(GetTempDir() + "\\" + "t.xml").c_str(), std::ios::binary | std::ios::trunc);
    if (out) message->Save(out, 1, 0, 0);
    return message.release();
}

CXMLVar* quick_govtalk(CMapStringToString& boxes) { return quick_govtalk(&boxes, kThirdGenerationForm); }
