#include "LYRSysTSInfoDic.h"

#include "support/SharedField.h"

LYRSysTSInfoDic::LYRSysTSInfoDic() noexcept
    : clsid(nullptr),
      iid(nullptr),
      className(nullptr),
      interfaceName(nullptr),
      sharedLibrary(nullptr),
      itfLeaf(nullptr),
      extendedBy(nullptr),
      creator(nullptr) {}

// Atomic stores: a compiler drops plain ones into a dying object.
LYRSysTSInfoDic::~LYRSysTSInfoDic() {
    for (const GUID** const id : {&clsid, &iid}) lyr::internal::StoreShared(*id, nullptr);
    for (const char** const text : {&className, &interfaceName, &sharedLibrary}) {
        lyr::internal::StoreShared(*text, nullptr);
    }
    creator.store(nullptr, std::memory_order_release);
    for (const char** const text : {&itfLeaf, &extendedBy})
        lyr::internal::StoreShared(*text, nullptr);
}
