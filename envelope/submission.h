// The message a return is filed in: the validation's CompanyTaxReturn inside
// the full GovTalk envelope, with its IRheader and IRmark.
#pragma once

#include "common/xmlvar.h"
#include "platform/collections.h"
#include "platform/cstring.h"

// What the sender brings; never taken from a box map. An empty text leaves
// its element empty.
struct SubmissionSettings {
    CString senderId;
    CString password;  // goes into Authentication/Value and nowhere else
    CString vendorId;  // ChannelRouting/Channel/URI
    bool test = false; // GatewayTest 1: HMRC's test service
};

inline constexpr const char* kEnvelopeNamespace = "http://www.govtalk.gov.uk/CM/envelope";
inline constexpr const char* kCorporationTaxNamespace = "http://www.govtalk.gov.uk/taxation/CT/5";

// The GovTalkMessage for filing, built around the CompanyTaxReturn that
// quick_govtalk gives for the same boxes (attachments included), with the
// IRmark element left empty. The tax reference and period end come from that
// document, so the keys and the return cannot disagree. Null when the
// template is missing. The caller owns the result.
CXMLVar* submission_govtalk(CMapStringToString& boxes, const SubmissionSettings& settings);

// The IRmark of a message held as text: the Body element, with the envelope's
// namespace declared on it and without its IRmark element, in inclusive
// canonical XML 1.0 without comments; SHA-1 of that, in base64. Empty, with
// the reason in problem (when given), when the text is not such a message.
CString ComputeIRmark(const CString& messageText, CString* problem = nullptr);

// submission_govtalk, saved as text with its IRmark filled in. False, with
// text emptied, when the template is missing or the mark can't be made.
bool SubmissionText(CMapStringToString& boxes, const SubmissionSettings& settings, CString& text);
