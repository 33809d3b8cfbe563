#pragma once

#include "LYRComponentModel.h"
#include "Names.h"

namespace bench {

constexpr std::size_t kMostInterfaces = 64;

/// The ids of interfaces that components have, and as many others.
inline const std::vector<GUID> ids = RandomIds(2 * kMostInterfaces);

/// An object as applications make them, with nothing of its own but so many interfaces. It answers
/// them itself, so that the request alone counts.
template <std::size_t interfaces>
class Component final : public LYRSysTSBaseUnknown {
public:
    using LYRSysTSBaseUnknown::LYRSysTSBaseUnknown;

    static LYRSysTSMetaClass* MetaObject() {
        static LYRSysTSMetaClass* const meta = [] {
            const std::string name = "Component" + std::to_string(interfaces);
            auto* const made = LYRSysTSFindOrCreateMetaObject(name.c_str(), ImplementationClass,
                                                              nullptr, nullptr, nullptr);
            for (std::size_t i = 0; i < interfaces; ++i) {
                LYRSysTSDictionary::AddDictionaryTS(made->GetClassId(), &ids[i], name.c_str(),
                                                    Name(i, 3, "I").c_str(), "Bench", Answer, 0);
            }
            return made;
        }();
        return meta;
    }
    LYRSysTSMetaClass* GetMetaObject() const override { return MetaObject(); }

private:
    static IUnknown* Answer(LYRSysTSBaseUnknown* object, unsigned char) { return object; }
};

}  // namespace bench
