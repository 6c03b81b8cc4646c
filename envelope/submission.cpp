// submission_govtalk: the validation's return document inside the envelope
// that HMRC's gateway takes, with the header and keys that filing needs.
#include "envelope/submission.h"

#include <memory>
#include <vector>

#include "common/library.h"
#include "envelope/envelope.h"

#ifndef CT600_VERSION
#error "CT600_VERSION is set by the build"
#endif

namespace {

constexpr const char* kProduct = "ct600";

// The node at a path of names below from, or null; nothing is created.
const CXMLVar* find(const CXMLVar* from, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (!from) return nullptr;
        from = from->FindChild(name);
    }
    return from;
}

CString textAt(const CXMLVar* from, std::initializer_list<const char*> names) {
    const CXMLVar* node = find(from, names);
    return node ? node->value : CString();
}

void addUtrKey(CXMLVar* keys, const CString& utr) {
    // No reference, no key: the rules (5004) and the schema then say so.
    if (utr.IsEmpty()) return;
    keys->AddChild(new CXMLVar("Key", utr), nullptr)->SetAttr("Type", "UTR");
}

}  // namespace

CXMLVar* submission_govtalk(CMapStringToString& boxes, const SubmissionSettings& settings) {
    const std::unique_ptr<CXMLVar> validation(quick_govtalk(&boxes, "ctv3_16"));
    if (!validation) return nullptr;
    CXMLVar* source = validation->FromPath("Body/IRenvelope");
    const CXMLVar* document = source->FindChild("CompanyTaxReturn");
    const CString utr = textAt(document, {"CompanyInformation", "Reference"});
    const CString periodEnd = textAt(document, {"CompanyInformation", "PeriodCovered", "To"});

    auto message = std::make_unique<CXMLVar>("GovTalkMessage");
    message->SetAttr("xmlns", kEnvelopeNamespace);
    message->AddChild("EnvelopeVersion", "2.0");

    CXMLVar* details = message->FromPath("Header/MessageDetails");
    details->AddChild("Class", "HMRC-CT-CT600");
    details->AddChild("Qualifier", "request");
    details->AddChild("Function", "submit");
    details->AddChild("CorrelationID", "");
    details->AddChild("Transformation", "XML");
    details->AddChild("GatewayTest", settings.test ? "1" : "0");

    CXMLVar* id = message->FromPath("Header/SenderDetails/IDAuthentication");
    id->AddChild("SenderID", settings.senderId);
    CXMLVar* authentication = id->GetChild("Authentication");
    authentication->AddChild("Method", "clear");
    authentication->AddChild("Role", "principal");
    authentication->AddChild("Value", settings.password);

    CXMLVar* govTalkDetails = message->GetChild("GovTalkDetails");
    addUtrKey(govTalkDetails->GetChild("Keys"), utr);
    govTalkDetails->FromPath("TargetDetails/Organisation")->value = "HMRC";
    CXMLVar* channel = govTalkDetails->FromPath("ChannelRouting/Channel");
    channel->AddChild("URI", settings.vendorId);
    channel->AddChild("Product", kProduct);
    channel->AddChild("Version", CT600_VERSION);

    CXMLVar* envelope = message->FromPath("Body/IRenvelope");
    envelope->SetAttr("xmlns", kCorporationTaxNamespace);
    CXMLVar* header = envelope->GetChild("IRheader");
    addUtrKey(header->GetChild("Keys"), utr);
    header->AddChild("PeriodEnd", periodEnd);
    header->AddChild("DefaultCurrency", "GBP");
    header->AddChild(new CXMLVar("IRmark"), nullptr)->SetAttr("Type", "generic");
    header->AddChild("Sender", "Company");

    // The return document moves over whole, as validation built it.
    const std::vector<CXMLVar*> moving = source->children;
    for (CXMLVar* child : moving) envelope->AddChild(child, nullptr);
    return message.release();
}

bool SubmissionText(CMapStringToString& boxes, const SubmissionSettings& settings, CString& text) {
    text.Empty();
    const std::unique_ptr<CXMLVar> message(submission_govtalk(boxes, settings));
    if (!message) return false;
    CXMLVar* mark = message->FromPath("Body/IRenvelope/IRheader/IRmark");
    CString unmarked;
    message->Save(unmarked);
    CString problem;
    const CString irmark = ComputeIRmark(unmarked, &problem);
    if (irmark.IsEmpty()) {
        DoLogF("SubmissionText() no IRmark: %s", problem.c_str());
        return false;
    }
    // Only the IRmark's own text changes, so the mark still fits what is saved.
    mark->value = irmark;
    message->Save(text);
    return true;
}
