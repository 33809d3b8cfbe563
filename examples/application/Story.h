#pragma once

/// @file
/// How the example application tells what happens. Nothing here is needed to use components.

#include "LYRComponentModel.h"
#include "Ref.h"

#include <cstdio>
#include <cstring>
#include <dlfcn.h>

/// The count behind an interface: a TIE's own, or that of the object itself.
inline std::uint32_t CountOf(IUnknown* object) {
    object->AddRef();
    return object->Release();
}

/// Says what the class of `object` remembers about an interface.
inline void TellMemory(IUnknown* object, const GUID& iid, const char* name) {
    // Every component object answers this id with itself.
    const auto base = Query<LYRSysTSBaseUnknown>(object, CLSID_LYRSysTSBaseUnknown);
    auto* meta = static_cast<LYRSysTSMetaClassImpl*>(base->GetMetaObject()->ToMetaClassBase());
    const LYRSysTSInterfaceFactory known = meta->_GetInterfaceFactory(iid);
    const char* memory = "remembers what builds it";
    if (known == nullptr) memory = "has not been asked for it before";
    if (known == _LYRSysTSNoSuchInterface) memory = "remembers that it has none";
    std::printf("   ask for %s: the class %s %s\n", name, base->IsA(), memory);
}

/// Says which library implements `answer`, by the place of its virtual table.
inline void TellAnswer(const IUnknown* answer) {
    if (answer == nullptr) {
        std::printf("     no such interface\n");
        return;
    }
    void* table = nullptr;
    std::memcpy(&table, static_cast<const void*>(answer), sizeof table);
    Dl_info info{};
    const char* path = dladdr(table, &info) != 0 ? info.dli_fname : "somebody";
    const char* slash = std::strrchr(path, '/');
    std::printf("     answered by %s\n", slash != nullptr ? slash + 1 : path);
}

/// Asks `object` for an interface and tells the story of the request.
template <class Interface>
Ref<Interface> Ask(const Ref<IUnknown>& object, const GUID& iid, const char* name) {
    TellMemory(object.get(), iid, name);
    Ref<Interface> answer = Query<Interface>(object.get(), iid);
    TellAnswer(answer.get());
    return answer;
}

/// Gives a reference back and tells what became of the count.
inline void GiveBack(Ref<IUnknown> reference, const char* name) {
    std::printf("   give back %s\n", name);
    std::printf("     its count is now %u\n", reference.release()->Release());
}
