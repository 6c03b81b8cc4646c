#include "platform/module_state.h"

namespace {
thread_local ModuleState* g_current = nullptr;
}

ModuleState* CurrentModuleState() noexcept { return g_current; }

CModuleStateGuard::CModuleStateGuard(ModuleState* state) noexcept : saved_(g_current) { g_current = state; }

CModuleStateGuard::~CModuleStateGuard() { g_current = saved_; }
