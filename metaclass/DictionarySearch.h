#pragma once

#include "GUID.h"
#include "LYRSysTSInterfaceFactory.h"
#include "lyr/explain.h"

#include <cstdint>

class LYRSysTSMetaClass;
class LYRSysTSMetaClassBase;
class LYRSysTSMetaClassExt;

namespace lyr::internal {

struct EntryCopy;
class Notes;

/// What a search has found. `mayPass` tells that the next search may find another answer, or one at
/// all, so that nobody remembers this one: something was short on the way, or a library was
/// loading, which registers what it has one by one.
struct SearchResult {
    LYRSysTSInterfaceFactory factory = nullptr;
    bool mayPass = false;
};

/// The search for one interface of one class, in the dictionary and in the libraries that it names.
/// The bases of the class do not count.
class DictionarySearch {
public:
    /// All must outlive the object; `notes`, null as a rule, are told of the road.
    DictionarySearch(const LYRSysTSMetaClass& asked, const GUID& iid, Notes* notes)
        : _asked(asked), _iid(iid), _notes(notes) {}

    SearchResult Run();

private:
    bool EnsureFilesAreRead() const;
    LYRSysTSInterfaceFactory Find();
    LYRSysTSInterfaceFactory FindByNames(const GUID* clsid, short load);
    bool LeafImplements(const char* leaf) const;
    bool Extends(const EntryCopy& entry);
    bool Lists(LYRSysTSMetaClassExt& extension);
    LYRSysTSMetaClassBase* FindOrLoadClass(const char* name, const char* library);
    LYRSysTSInterfaceFactory FindEntryPoint(const EntryCopy& entry, const char* interfaceName);

    /// Tells whoever listens.
    void Note(Cause cause, const char* library = nullptr, const char* other = nullptr,
              const char* symbol = nullptr) const;
    bool MayRemember() const;

    // What a look finds missing is missing for good only if no library has been loading since the
    // look began. One that the search has loaded itself does not count.
    template <typename Ask>
    void* Load(const char* library, const char* symbol, Ask ask);
    void OnShortage();
    void BeginLook();
    bool MayHaveBeenLoading() const;

    const LYRSysTSMetaClass& _asked;
    const GUID& _iid;
    Notes* const _notes;
    const char* _interfaceName = nullptr;  // once it is known
    std::uint64_t _loads = 0;              // marked when the last look began
    bool _filesAreRead = false;
    bool _mayPass = false;
    bool _metLoading = false;
};

}  // namespace lyr::internal
