// The files named in the box map, placed under AttachedFiles. In validation
// the elements only need the right shape, so no file is read unless asked.
#include <cstring>

#include "common/library.h"
#include "envelope/envelope.h"

namespace {

// The base64 of the first bytes of a PDF 1.4 file: "%PDF-1.4\n%" and two
// high bytes, which is what a PDF's body starts with.
constexpr const char* kPdfBody = "JVBERi0xLjQKJe++";
constexpr const char* kEmptyXhtml = "<html></html>";
constexpr int kFileKeys = 3;

}  // namespace

int attachfiles(const char* folder, CXMLVar** created, CMapStringToString& boxes, int readfiles,
                CXMLVar* document) {
    if (boxes["fileattach1"].IsEmpty()) return 0;

    CXMLVar* target = document;
    if (!target) {
        // Without a place to keep a root, whatever was made would be lost.
        if (!created) return 0;
        if (!*created) *created = new CXMLVar("xml");
        target = *created;
    }

    CXMLVar* files = target->GetChild("AttachedFiles");
    int placedPdf = 0;
    for (int i = 1; i <= kFileKeys; ++i) {
        const CString name = boxes[fmt("fileattach%d", i)];
        if (name.IsEmpty()) continue;
        if (ext(name, ".pdf")) {
            CXMLVar* attachment = files->AddChild(new CXMLVar("Attachment", ""), nullptr);
            attachment->SetAttr("Filename", name);
            attachment->SetAttr("FileFormat", "pdf");
            if (readfiles)
                FileToBase64(JoinPath(folder ? folder : "", name, ""), attachment);
            else
                attachment->value = kPdfBody;
            placedPdf = 1;
            continue;
        }
        const char* kind = name.Find("ctcomp") >= 0 ? "Computation" : "Accounts";
        CXMLVar* submission = files->GetChild("XBRLsubmission");
        CXMLVar* instance = submission->GetChild(kind)->GetChild("Instance");
        submission->Sort("#name", xmlcompareR);
        const CString encoded =
            ToBase64(reinterpret_cast<const unsigned char*>(kEmptyXhtml), static_cast<int>(std::strlen(kEmptyXhtml)));
        instance->SetChildValue("EncodedInlineXBRLDocument", encoded);
    }
    files->Sort("#name", xmlcompareR);
    return placedPdf;
}
