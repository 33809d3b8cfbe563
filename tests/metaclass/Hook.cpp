// A component library that calls, while it loads, what the test has registered as the creation
// function of "Hook".

#include "LYRComponentModel.h"

extern "C" LYR_EXPORT void LYRSysTSCreateI1Extra() {}

static const bool kCalled = [] {
    const auto* const hook = LYRSysTSDictionary::QueryDictionary("Hook", "CreateInterface", 0);
    if (hook != nullptr) reinterpret_cast<void (*)()>(hook->creator.load())();
    return hook != nullptr;
}();
