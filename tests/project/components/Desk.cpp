#include "IGreeter.h"
#include "LYRComponentModel.h"
#include "Ref.h"

namespace {

[[gnu::used, gnu::retain, gnu::section("lyr_manifest")]] const char classDesk[] =
    "lyr1 class Desk - -";

}  // namespace

/// For programs that know nothing of components: greets with what lies beside this library.
extern "C" LYR_EXPORT int Greet() {
    const Ref<IUnknown> object(
        static_cast<IUnknown*>(LYRSysTSCreateExternalObject("Greeter", nullptr, nullptr)));
    if (!object) return 1;
    const Ref<IGreeter> greeter = Query<IGreeter>(object.get(), IID_IGreeter);
    if (!greeter) return 1;
    greeter->Greet("host");
    return 0;
}
