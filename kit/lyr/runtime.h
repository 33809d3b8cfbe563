#pragma once

#include "LYRSysTSDicoCLSIDName.h"
#include "LYRSysTSDicoGUID.h"
#include "LYRSysTSDicoIIDName.h"
#include "LYRSysTSDicoString.h"
#include "LYRSysTSDictionary.h"
#include "LYRSysTSMetaClassBase.h"

namespace lyr {
inline namespace v1 {

/// The first variable of main in a program that gives back all memory at its end, as leak checkers
/// like to see: its destructor frees the component model's tables, in their order. By then there is
/// no component left and no other thread in the component model, and nothing uses it afterwards.
class Runtime {
public:
    Runtime() = default;
    Runtime(const Runtime&) = delete;
    Runtime& operator=(const Runtime&) = delete;
    ~Runtime() {
        LYRSysTSDictionary::_DeleteDictionary();
        LYRSysTSMetaClassBase::Destruct();
        LYRSysTSDicoIIDName::_FreeDictionary();
        LYRSysTSDicoCLSIDName::_FreeDictionary();
        LYRSysTSDicoGUID::_FreeDictionary();
        LYRSysTSDicoString::_FreeDictionary();
    }
};

}  // namespace v1
}  // namespace lyr
