#include "entry/module.h"

CCt600App::CCt600App() { InitInstance(); }

int CCt600App::InitInstance() {
    m_pszProfileName = "ardent.ini";
    return 1;
}

CCt600App& TheApp() {
    static CCt600App app;
    return app;
}

ModuleState* ThisModuleState() noexcept {
    static ModuleState state{"ct600"};
    return &state;
}
