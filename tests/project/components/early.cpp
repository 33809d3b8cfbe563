#include "LYRComponentModel.h"

#include <cstdio>

namespace {

/// Wants a component before `main` begins.
[[maybe_unused]] const bool hasLamp = [] {
    if (LYRSysTSCreateExternalObject("Lamp", nullptr, nullptr) != nullptr) return true;
    std::puts("no Lamp before main");
    return false;
}();

}  // namespace
