#include "IGreeter.h"
#include "LYRComponentModel.h"
#include "Ref.h"

int main() {
    const Ref<IUnknown> object(
        static_cast<IUnknown*>(LYRSysTSCreateExternalObject("Greeter", nullptr, nullptr)));
    if (!object) return 1;
    const Ref<IGreeter> greeter = Query<IGreeter>(object.get(), IID_IGreeter);
    if (!greeter) return 2;
    greeter->Greet("world");
}
