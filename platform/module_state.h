// The per-module state bracket: while a guard lives, the module named by it is
// the current one; the caller's state comes back when the guard goes.
#pragma once

struct ModuleState {
    const char* name;
};

// The state in force on this thread; null outside any bracket.
ModuleState* CurrentModuleState() noexcept;

class CModuleStateGuard {
public:
    explicit CModuleStateGuard(ModuleState* state) noexcept;
    ~CModuleStateGuard();
    CModuleStateGuard(const CModuleStateGuard&) = delete;
    CModuleStateGuard& operator=(const CModuleStateGuard&) = delete;

private:
    ModuleState* saved_;
};
