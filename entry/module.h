// The module's life: the application object made at load and its state, which
// every frame brackets its work with.
#pragma once

#include "platform/cstring.h"
#include "platform/module_state.h"

class CCt600App {
public:
    CCt600App() = default;  // no application name
    // Sets the profile name; the module never opens the profile itself.
    int InitInstance();
    const CString& ProfileName() const noexcept { return m_pszProfileName; }

private:
    CString m_pszProfileName;
};

// Built at load; its InitInstance has run by the time any entry is called.
extern CCt600App theApp;
CCt600App& TheApp();
ModuleState* ThisModuleState() noexcept;

// Brackets a call with this module's state; the caller's comes back after.
#define CT600_MANAGE_STATE() CModuleStateGuard ct600StateGuard_(ThisModuleState())
