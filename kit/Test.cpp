#include "lyr/test.h"

#include "LYRSysTSMetaClassImpl.h"

#include <cstdio>
#include <cstdlib>

namespace lyr {
inline namespace v1 {
namespace detail {

namespace {

[[noreturn]] void Refuse(const char* interfaceName, const char* className, const char* why) {
    std::fprintf(stderr, "lyr: no other %s for a %s in this test: %s\n", interfaceName, className,
                 why);
    std::abort();
}

}  // namespace

void AnswerInTest(LYRSysTSMetaClass* meta, const char* className, const GUID& iid,
                  const char* interfaceName, LYRSysTSInterfaceFactory factory) {
    auto* const table = dynamic_cast<LYRSysTSMetaClassImpl*>(meta);
    if (table == nullptr) {
        Refuse(interfaceName, className,
               "no such class is known; link it before, or have a dictionary file name it");
    }
    if (table->_GetInterfaceFactory(iid) != nullptr) {
        Refuse(interfaceName, className,
               "the class was asked for it before, and that answer stays; say it earlier");
    }
    table->_AddInterfaceFactory(iid, factory);
}

}  // namespace detail
}  // namespace v1
}  // namespace lyr
