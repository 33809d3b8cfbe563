#include "LYRComponentModel.h"

namespace {

[[gnu::used, gnu::retain, gnu::section("lyr_manifest")]] const char classLamp[] =
    "lyr1 class Lamp - -";
[[gnu::used, gnu::retain, gnu::section("lyr_manifest")]] const char creatableLamp[] =
    "lyr1 creatable Lamp";

}  // namespace

extern "C" LYR_EXPORT void* fctLYRSysTSCreateLamp(void*) {
    static int lamp;
    return &lamp;
}
