#include "IGreeter.h"
#include "LYRComponentModel.h"
#include "Ref.h"

#include <cstdio>

namespace {

int Missing(const char* what, const char* lines) {
    std::fprintf(stderr, "greet: %s\n  look for         %s, in a directory of LYRDictionaryPath\n",
                 what, lines);
    const std::string failure = LYRThrLibraryManager::LastFailure();
    if (!failure.empty()) std::fprintf(stderr, "  the loader says  %s\n", failure.c_str());
    return 1;
}

}  // namespace

int main() {
    const Ref<IUnknown> object(
        static_cast<IUnknown*>(LYRSysTSCreateExternalObject("Greeter", nullptr, nullptr)));
    if (!object) return Missing("no Greeter is made", ".dicts: Greeter CreateInterface libGreeter");
    const Ref<IGreeter> greeter = Query<IGreeter>(object.get(), IID_IGreeter);
    if (!greeter)
        return Missing("the Greeter has no IGreeter",
                       ".iidts: the id of IGreeter; .dicts: Greeter IGreeter libGreeter");
    greeter->Greet("world");
}
