#include "LYRSysTSDictionary.h"
#include "LYRSysTSFindOrCreateMetaObject.h"
#include "LYRSysTSKnownIds.h"
#include "dictionary/Addition.h"
#include "metaclass/ToExtension.h"
#include "registries/Intern.h"
#include "support/AddressCast.h"
#include "support/Listener.h"
#include "support/MutexGuard.h"
#include "support/Shortage.h"
#include "support/Text.h"

#include <memory>
#include <new>

namespace {

/// An id that no other class of this process has. Throws std::bad_alloc.
const GUID* MakeUpClassId() {
    static std::atomic<std::uint32_t> count = 0;
    const GUID clsid = {++count, 0, 0, {}};
    return lyr::internal::InternGUID(&clsid);
}

LYRSysTSMetaClassBase* MakeMetaObject(const char* name, LYRSysTSTypeOfClass type, const GUID* clsid,
                                      LYRSysTSMetaClass* base) {
    switch (type) {
        case ImplementationClass:
            return new LYRSysTSMetaClassImpl(clsid, name, base);
        case KeptExtension:
        case TransientExtension:
            return new LYRSysTSMetaClassExt(clsid, name, base, type);
        default:
            return new LYRSysTSMetaClassBase(clsid, name, base);
    }
}

LYRSysTSTypeOfClass KindOf(LYRSysTSMetaClass& metaObject) {
    LYRSysTSMetaClassExt* const extension = lyr::internal::ToExtension(&metaObject);
    if (extension != nullptr) return extension->GetExtensionType();
    const bool hasFactories = dynamic_cast<LYRSysTSMetaClassImpl*>(&metaObject) != nullptr;
    return hasFactories ? ImplementationClass : PlainClass;
}

/// What tells the class that has a meta-object from the one that now asks for it by the same name;
/// null for nothing.
const char* Difference(LYRSysTSMetaClass& known, LYRSysTSTypeOfClass type, const GUID* clsid,
                       const LYRSysTSMetaClass* base) {
    const GUID* const knownId = known.GetClassId();
    if (clsid != nullptr && knownId != nullptr && *clsid != *knownId) return "class id";
    if (base != nullptr && base != known.GetMetaObjectOfBaseClass()) return "base class";
    return KindOf(known) != type ? "kind of class" : nullptr;
}

/// Tells the listener at its end that two classes of one name share one meta-object, which is the
/// first one's. It stands before the lock is taken.
class Sharing {
public:
    Sharing() = default;
    ~Sharing() {
        if (_difference == nullptr) return;
        lyr::internal::Contradiction contradiction;
        contradiction.className = _className;
        contradiction.interfaceName = "MetaObject";
        contradiction.field = _difference;
        _listener->OnContradiction(contradiction);
    }
    Sharing(const Sharing&) = delete;
    Sharing& operator=(const Sharing&) = delete;

    void Look(LYRSysTSMetaClass& known, LYRSysTSTypeOfClass type, const GUID* clsid,
              const LYRSysTSMetaClass* base) {
        if (_listener == nullptr) return;
        _className = known.IsA();
        _difference = Difference(known, type, clsid, base);
    }

private:
    // Asked for here, as the first who asks may have words said.
    lyr::internal::Listener* const _listener = lyr::internal::CurrentListener();
    const char* _className = nullptr;
    const char* _difference = nullptr;
};

}  // namespace

LYRSysTSMetaClass* LYRSysTSDictionary::CreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                        const GUID* clsid, LYRSysTSMetaClass* base,
                                                        lyr::internal::Refusals& refusals) {
    if (clsid == nullptr) clsid = MakeUpClassId();
    std::unique_ptr<LYRSysTSMetaClassBase, void (*)(LYRSysTSMetaClassBase*)> made(
        MakeMetaObject(name, type, clsid, base), &LYRSysTSMetaClassBase::Discard);
    if (_DictionaryDeleted) return made.release();

    lyr::internal::DictionaryTables::EnsureCleared();
    const LYRSysTSInterfaceFactory creator = lyr::internal::ToCreator(made.get());
    lyr::internal::PairedAddition both{{*clsid, CLSID_LYRSysTSMetaClass, creator},
                                       {name, "MetaObject", nullptr, nullptr, nullptr, creator}};
    both.Make(refusals);
    return made.release();
}

LYRSysTSMetaClass* LYRSysTSDictionary::FindOrCreateMetaObject(const char* name,
                                                              LYRSysTSTypeOfClass type,
                                                              const GUID* clsid,
                                                              LYRSysTSMetaClass* base,
                                                              const char* extendedName) {
    if (name == nullptr || lyr::internal::SameText(name, "LYRNull")) return nullptr;
    lyr::internal::Refusals refusals;
    Sharing sharing;
    const lyr::internal::MutexGuard guard(*GetGlobalDicoMutex());
    LYRSysTSMetaClass* metaObject = QueryMetaObject(name);
    if (metaObject != nullptr) sharing.Look(*metaObject, type, clsid, base);
    if (metaObject == nullptr) metaObject = CreateMetaObject(name, type, clsid, base, refusals);
    LYRSysTSMetaClassExt* const extension = lyr::internal::ToExtension(metaObject);
    if (extension != nullptr && !extension->TryToList(extendedName)) throw std::bad_alloc();
    return metaObject;
}

const GUID* LYRSysTSDictionary::_CreateCLSID() {
    return lyr::internal::RefuseOnShortage(nullptr, [] { return MakeUpClassId(); });
}

LYRSysTSMetaClass* LYRSysTSFindOrCreateMetaObject(const char* name, LYRSysTSTypeOfClass type,
                                                  const GUID* clsid, LYRSysTSMetaClass* base,
                                                  const char* extendedName) {
    return LYRSysTSDictionary::FindOrCreateMetaObject(name, type, clsid, base, extendedName);
}
