// The error records of a calculator's field checks, their XML form, and the
// error "dialog": a host-settable sink that is shown each run's list.
#pragma once

#include "platform/collections.h"
#include "platform/cstring.h"

class CError : public CObject {
public:
    CError() = default;
    CError(const char* field, int code, const char* message)
        : m_Field(field), m_Code(code), m_Message(message) {}

    // Message for a code when a check passes none of its own.
    static CString Lookup(int code);

    CString m_Reserved;  // left empty
    CString m_Field;     // box key or field name
    int m_Code = 0;
    CString m_Message;
};

// Name of the root element of the calculators' error document.
inline constexpr const char* kCalcErrorsRoot = "CalcErrors";

// The list as an XML document:
// <CalcErrors><Error><Field>QA15</Field><Code>0</Code><Text>...</Text></Error>...</CalcErrors>
CString xmlerrors(const CObList& errors);

// The error dialog. The sink is called at the end of each run with the list
// (which may be empty). By default nothing is shown for an empty list and
// each error goes to the message sink as "field: message".
using ErrorSink = void (*)(const CObList& errors, const CStringList* extra, void* context);
void SetErrorSink(ErrorSink sink, void* context) noexcept;

class CErrorsDlg {
public:
    explicit CErrorsDlg(void* parent = nullptr) { (void)parent; }
    void SetErrorList(const CObList* errors) noexcept { m_pErrors = errors; }
    void Show(const CStringList* extra);

private:
    const CObList* m_pErrors = nullptr;
};
