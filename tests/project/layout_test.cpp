#include "LYRComponentModel.h"

#include <array>
#include <bit>
#include <cstddef>
#include <gtest/gtest.h>
#include <type_traits>
#include <vector>

namespace {

std::vector<void (*)()>& FieldChecks() {
    static std::vector<void (*)()> checks;
    return checks;
}

/// Instantiated explicitly, which may name private members, it adds a check of the fields' offsets:
/// the first one's, and each next one `step` further.
template <std::ptrdiff_t first, std::ptrdiff_t step, auto... Members>
struct Fields {
    static void Check() {
        std::ptrdiff_t expected = first - step;
        for (const std::ptrdiff_t offset : {std::bit_cast<std::ptrdiff_t>(Members)...})
            EXPECT_EQ(offset, expected += step) << __PRETTY_FUNCTION__;
    }
    static inline const bool added = (FieldChecks().push_back(&Check), true);
};

using Info = LYRSysTSInfoDic;
using Base = LYRSysTSMetaClassBase;
using Impl = LYRSysTSMetaClassImpl;
using Ext = LYRSysTSMetaClassExt;
using Object = LYRSysTSBaseUnknown;
using Link = LYRSysTSChainExtension;

template struct Fields<0, 8, &Info::clsid, &Info::iid, &Info::className, &Info::interfaceName,
                       &Info::sharedLibrary, &Info::itfLeaf, &Info::extendedBy, &Info::creator>;
template struct Fields<0, 8, &DicoStringNode::next, &DicoStringNode::text, &DicoStringNode::length>;
template struct Fields<0, 8, &DicoStringBlock::next, &DicoStringBlock::chars>;
template struct Fields<0, 8, &DicoGUIDNode::next, &DicoGUIDNode::guid>;
template struct Fields<0, 8, &IIDNameRecord::iid, &IIDNameRecord::interfaceName>;
template struct Fields<0, 8, &IIDNameLink::record, &IIDNameLink::next>;
template struct Fields<0, 8, &CLSIDNameRecord::clsid, &CLSIDNameRecord::className,
                       &CLSIDNameRecord::library>;
template struct Fields<0, 8, &CLSIDNameLink::record, &CLSIDNameLink::next>;
template struct Fields<0, 8, &DicEntryLink::info, &DicEntryLink::next>;
template struct Fields<0, 8, &ReadFileLink::name, &ReadFileLink::next>;
template struct Fields<0, 8, &FactoryEntry::interfaceId, &FactoryEntry::factory>;
template struct Fields<8, 8, &Base::_mutex, &Base::_classId, &Base::_className, &Base::_baseMeta,
                       &Base::_nextMeta>;
template struct Fields<48, 8, &Impl::_factoryTable, &Impl::_factoryCount>;
template struct Fields<56, 2, &Impl::_factoryCount, &Impl::_factoryCapacity>;
template struct Fields<64, 8, &Ext::_extendedClasses, &Ext::_extendedCount, &Ext::_typeOfClass,
                       &Ext::_extMutex>;
template struct Fields<72, 4, &Ext::_extendedCount, &Ext::_extendedCapacity>;
template struct Fields<8, 8, &Object::_mutex, &Object::_refCount, &Object::_extensionLink,
                       &Object::_lockDepth>;
template struct Fields<8, 8, &Link::_extension, &Link::_next>;
template struct Fields<8, 8, &LYRSysTSRefCounterUnknown::_refCount>;

static_assert(sizeof(DicoStringNode) == 24 && sizeof(DicoGUIDNode) == 24 &&
              sizeof(CLSIDNameRecord) == 24 && sizeof(LYRSysTSMetaClass) == 8 &&
              sizeof(Base) == 48 && sizeof(Impl) == 64 && sizeof(Ext) == 96 &&
              sizeof(Object) == 40 && sizeof(Link) == 24 &&
              sizeof(LYRSysTSRefCounterUnknown) == 16 && std::is_empty_v<LYRSysTSFillDictionary>);

TEST(Layout, FieldsStandAtTheirOffsets) {
    for (void (*check)() : FieldChecks()) check();
}

/// The slot of a virtual function; its pointer holds 1 + the offset in the table.
template <typename Function>
std::ptrdiff_t Slot(Function function) {
    return std::bit_cast<std::array<std::ptrdiff_t, 2>>(function)[0] /
           std::ptrdiff_t{sizeof(void*)};
}

/// A virtual function added by a derived class stands behind everything that the base has, the two
/// slots of a destructor included.
template <typename Class>
struct Derived : Class {
    using Class::Class;
    virtual void Next() {}

protected:
    ~Derived() = default;  // NOLINT(modernize-use-override): not every Class has a virtual one
};

template <typename Class>
std::ptrdiff_t SlotsOf() {
    return Slot(&Derived<Class>::Next);
}

TEST(Layout, VirtualFunctionsStandInTheirSlots) {
    using Meta = LYRSysTSMetaClass;
    EXPECT_EQ(Slot(&Meta::IsA), 0);
    EXPECT_EQ(Slot<int (Meta::*)(const char*) const>(&Meta::IsAKindOf), 1);
    EXPECT_EQ(Slot(&Meta::GetClassId), 2);
    EXPECT_EQ(Slot<int (Meta::*)(const GUID&) const>(&Meta::IsAKindOf), 3);
    EXPECT_EQ(Slot<int (Meta::*)(const Meta*) const>(&Meta::IsAKindOf), 4);
    EXPECT_EQ(Slot(&Meta::GetMetaObjectOfBaseClass), 5);
    EXPECT_EQ(Slot(&Meta::ToMetaClassBase), 6);
    EXPECT_EQ(SlotsOf<Meta>(), 9);
    EXPECT_EQ(Slot(&Base::QueryDerivationInterfaceFactory), 9);
    EXPECT_EQ(Slot(&Base::CastToMetaExtension), 10);
    EXPECT_EQ(SlotsOf<Ext>(), 11);
    EXPECT_EQ(Slot(&IUnknown::QueryInterface), 0);
    EXPECT_EQ(Slot(&IUnknown::AddRef), 1);
    EXPECT_EQ(Slot(&IUnknown::Release), 2);
    EXPECT_EQ(SlotsOf<IUnknown>(), 3);
    EXPECT_EQ(Slot(&Object::GetMetaObject), 3);
    EXPECT_EQ(SlotsOf<Object>(), 6);
    EXPECT_EQ(SlotsOf<LYRSysTSDictionaryReader>(), 1);
    EXPECT_EQ(SlotsOf<Link>(), 2);
    EXPECT_EQ(SlotsOf<LYRSysTSRefCounterUnknown>(), 2);
}

TEST(Version, IsOneForHeadersLibraryAndPackage) {
    EXPECT_EQ(LYRVersion(), LYR_VERSION);
    EXPECT_STREQ(LYRVersionText(), LYR_PACKAGE_VERSION);
}

}  // namespace
