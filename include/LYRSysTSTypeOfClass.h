#pragma once

#include <cstdint>

/// What kind of class a meta-object describes. Any other value means PlainClass.
enum LYRSysTSTypeOfClass : std::int32_t {
    PlainClass = 0,           ///< a class without interface implementations
    ImplementationClass = 1,  ///< a class whose interfaces factories build
    KeptExtension = 4,        ///< an extension with one instance per object, kept by the object
    TransientExtension = 5,   ///< an extension with a new instance for every request
};
