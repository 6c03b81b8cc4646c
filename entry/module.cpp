#include "entry/module.h"

// The application object stands from load, as the framework of a library
// module makes it, and its start-up runs right after it is built (both in
// this unit, so in this order).
CCt600App theApp;

namespace {
const int kStarted = theApp.InitInstance();
}

int CCt600App::InitInstance() {
    m_pszProfileName = "ardent.ini";
    return 1;
}

CCt600App& TheApp() { return theApp; }

ModuleState* ThisModuleState() noexcept {
    static ModuleState state{"ct600"};
    return &state;
}
