// The filing message as a host export, and its validation.
#include "entry/submission.h"

#include <exception>
#include <memory>

#include "ct600/ct600.h"
#include "entry/module.h"
#include "rules/rulecontext.h"
#include "schema/schema.h"

CXMLVar* ValidateSubmission(CMapStringToString& boxes, const SubmissionSettings& settings) {
    auto* errors = new CXMLVar("Errors");
    CRuleContext context(nullptr, errors);
    context.m_Root = submission_govtalk(boxes, settings);
    context.RunRules();
    if (context.m_Root) schemawalk(context.m_Root, errors);
    delete context.m_Root;
    context.m_Root = nullptr;
    return errors;
}

int ct600lib_submission(CMapStringToString* boxes, const char* senderId, const char* password, const char* vendorId,
                        int test, CString* message) {
    CT600_MANAGE_STATE();
    try {
        // Reading the attachment keys would add them to the host's map: work on a copy.
        CMapStringToString local;
        if (boxes) local = *boxes;
        SubmissionSettings settings;
        settings.senderId = senderId ? senderId : "";
        settings.password = password ? password : "";
        settings.vendorId = vendorId ? vendorId : "";
        settings.test = test != 0;
        CString text;
        const bool built = SubmissionText(local, settings, text);
        if (message) *message = text;
        return built ? 1 : 0;
    } catch (const std::exception&) {
        if (message) message->Empty();
        return 0;
    }
}
