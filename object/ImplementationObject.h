#pragma once

class LYRSysTSBaseUnknown;
class LYRSysTSMetaClass;

namespace lyr::internal {

/// The object that implements the class `metaClass` for `object`, found or made by `create`; null
/// when there is none. What LYRSysTSTIEInternal::Tie_Construct documents.
LYRSysTSBaseUnknown* FindOrMakeImplementation(LYRSysTSBaseUnknown* object,
                                              LYRSysTSMetaClass* metaClass,
                                              LYRSysTSBaseUnknown* (*create)());

}  // namespace lyr::internal
