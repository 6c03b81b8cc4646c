#include "common/errors.h"

#include "common/library.h"
#include "common/xmlvar.h"
#include "platform/message_box.h"

CString CError::Lookup(int code) {
    if (code == 0) return CString("Error");
    return FormatString("Error %d", code);
}

CString xmlerrors(const CObList& errors) {
    CXMLVar root(kCalcErrorsRoot);
    for (CObject* item : errors) {
        const auto* error = dynamic_cast<const CError*>(item);
        if (!error) continue;
        CXMLVar* node = root.AddChild("Error", "");
        node->AddChild("Field", error->m_Field);
        node->AddChild("Code", fmt(error->m_Code));
        node->AddChild("Text", error->m_Message.IsEmpty() ? CError::Lookup(error->m_Code) : error->m_Message);
    }
    CString text;
    root.Save(text, 1);
    return text;
}

namespace {

// The desktop dialog's stand-in: one message listing every error, then any
// extra lines; nothing at all when the run found no error.
void showInMessageBox(const CObList& errors, const CStringList* extra, void*) {
    CString text;
    for (CObject* item : errors) {
        const auto* error = dynamic_cast<const CError*>(item);
        if (!error) continue;
        if (!text.IsEmpty()) text += "\n";
        text += error->m_Field + ": " + (error->m_Message.IsEmpty() ? CError::Lookup(error->m_Code) : error->m_Message);
    }
    if (text.IsEmpty()) return;
    if (extra)
        for (const CString& line : *extra)
            if (!line.IsEmpty()) text += "\n" + line;
    AfxMessageBox(text, MB_OK);
}

ErrorSink g_errorSink = showInMessageBox;
void* g_errorContext = nullptr;

}  // namespace

void SetErrorSink(ErrorSink sink, void* context) noexcept {
    g_errorSink = sink ? sink : showInMessageBox;
    g_errorContext = sink ? context : nullptr;
}

void CErrorsDlg::Show(const CStringList* extra) {
    static const CObList kNone;
    g_errorSink(m_pErrors ? *m_pErrors : kNone, extra, g_errorContext);
}
