#include "explanation/ExplainedSearch.h"

#include "LYRSysTSKnownIds.h"
#include "LYRSysTSMetaClassImpl.h"
#include "metaclass/DictionarySearch.h"
#include "metaclass/PlainTable.h"
#include "registries/Intern.h"
#include "support/Notes.h"

#include <cstdio>

namespace lyr::internal {

namespace {

/// A class of which nothing but the name is known.
class NamedClass final : public LYRSysTSMetaClass {
public:
    explicit NamedClass(const char* name) : _name(InternText(name)) {}

    const char* IsA() const override { return _name; }
    int IsAKindOf(const char*) const override { return 0; }
    int IsAKindOf(const GUID&) const override { return 0; }
    const GUID* GetClassId() const override { return nullptr; }
    LYRSysTSMetaClass* GetMetaObjectOfBaseClass() const override { return nullptr; }
    LYRSysTSMetaClassBase* ToMetaClassBase() override { return nullptr; }

private:
    const char* const _name;
};

bool IsOfEveryObject(const GUID& iid) {
    return iid == IID_IUnknown || iid == CLSID_LYRSysTSBaseUnknown;
}

}  // namespace

bool ExplainedSearch::Run(LYRSysTSMetaClass& metaObject, const GUID& iid, Notes& notes) {
    const char* const className = metaObject.IsA();
    LYRSysTSMetaClassBase* const base = metaObject.ToMetaClassBase();
    if (IsOfEveryObject(iid)) {
        notes.Add(Cause::kKnownAnswer, className, nullptr);
        return true;
    }
    if (base != nullptr && base->CastToMetaExtension() != nullptr) {
        notes.Add(Cause::kPassedOn, className, nullptr);
        return false;
    }
    auto* const table = dynamic_cast<LYRSysTSMetaClassImpl*>(base);
    if (table == nullptr) {
        notes.Add(base != nullptr ? Cause::kNoFactories : Cause::kNoMetaObject, className, nullptr);
        return false;
    }
    if (!IsPlainTable(*table)) {
        notes.Add(Cause::kOwnSearch, className, nullptr);
        return false;
    }
    return table->Ask(iid, &notes).factory != nullptr;
}

bool ExplainedSearch::Run(const char* className, const GUID& iid, Notes& notes) {
    const NamedClass named(className);
    if (named.IsA() == nullptr) return false;
    return DictionarySearch(named, iid, &notes).Run().factory != nullptr;
}

std::string InBraces(const GUID& id) {
    char text[40];
    std::snprintf(text, sizeof text, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", id.Data1,
                  unsigned{id.Data2}, unsigned{id.Data3}, unsigned{id.Data4[0]},
                  unsigned{id.Data4[1]}, unsigned{id.Data4[2]}, unsigned{id.Data4[3]},
                  unsigned{id.Data4[4]}, unsigned{id.Data4[5]}, unsigned{id.Data4[6]},
                  unsigned{id.Data4[7]});
    return text;
}

}  // namespace lyr::internal
