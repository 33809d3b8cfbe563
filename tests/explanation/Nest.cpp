// Libraries that have one another loaded: while LyrTestNest1 is initialised, it asks for what
// LyrTestNest2 has, and so on.

#include "LYRComponentModel.h"

#include <chrono>
#include <string>
#include <thread>

#define LYR_JOIN(a, b) a##b
#define LYR_ENTRY_POINT(number) LYR_JOIN(LYRSysTSCreateI0Nest, number)

extern "C" LYR_EXPORT void LYR_ENTRY_POINT(LYR_NEST)() {}

const bool kHasAsked = [] {
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    const std::string next = "Nest" + std::to_string(LYR_NEST + 1);
    LYRSysTSMetaClass* const meta = LYRSysTSFindOrCreateMetaObject(
        next.c_str(), ImplementationClass, nullptr, nullptr, nullptr);
    const GUID iid{0xA0000000, 0, 0, {}};
    return meta->ToMetaClassBase()->QueryDerivationInterfaceFactory(iid) != nullptr;
}();
