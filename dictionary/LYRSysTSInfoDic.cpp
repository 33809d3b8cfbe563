#include "LYRSysTSInfoDic.h"

LYRSysTSInfoDic::LYRSysTSInfoDic() noexcept
    : clsid(nullptr),
      iid(nullptr),
      className(nullptr),
      interfaceName(nullptr),
      sharedLibrary(nullptr),
      itfLeaf(nullptr),
      extendedBy(nullptr),
      creator(nullptr) {}

LYRSysTSInfoDic::~LYRSysTSInfoDic() {
    clsid = nullptr;
    iid = nullptr;
    className = nullptr;
    interfaceName = nullptr;
    sharedLibrary = nullptr;
    creator.store(nullptr, std::memory_order_relaxed);  // nobody else has it any more
    itfLeaf = nullptr;
    extendedBy = nullptr;
}
