#pragma once

#include "GUID.h"
#include "lyr/explain.h"

class LYRSysTSMetaClass;

namespace lyr::internal {

class Notes;

/// Why the dictionary refuses an addition. Valid during the call alone; null where there is none.
struct Contradiction {
    const char* className = nullptr;
    const char* interfaceName = nullptr;
    const GUID* clsid = nullptr;
    const GUID* iid = nullptr;
    const char* field = nullptr;  ///< what is said twice, "library"; null when it is not that
    const char* known = nullptr;  ///< where it is a text
    const char* given = nullptr;
};

/// Hears of each search and creation, of the dictionary files' lines and of what is refused, for
/// those who look for a fault. Called in any thread, under the lock of the object that is asked and
/// under no lock of the tables, unless it says so. It never throws.
class Listener {
public:
    /// A search has ended, for an interface that the class has not answered before.
    virtual void AfterSearch(const LYRSysTSMetaClass& asked, const GUID& iid, Notes& notes,
                             bool isFound) noexcept = 0;

    /// A factory has given null for an object of the class, under the object's lock.
    virtual void OnFactoryGaveNull(const LYRSysTSMetaClass& asked, const GUID& iid) noexcept = 0;

    /// No implementation of the class `implementation` is to be had for an object of the class
    /// `asked`; mostly a factory has asked for it, and gives null now. Texts may be null.
    virtual void OnNoImplementation(Cause cause, const char* asked,
                                    const char* implementation) noexcept = 0;

    /// A creation, by name or by id, has given nothing.
    virtual void OnNotCreated(const char* className, Notes& notes) noexcept = 0;
    virtual void OnNotCreated(const GUID& clsid, Notes& notes) noexcept = 0;

    /// This thread reads a line of a dictionary file, cut into words, or is through with it. Under
    /// the dictionary's lock.
    virtual void BeforeLine(const char* path, int line, const char* const* words,
                            int count) noexcept = 0;
    virtual void AfterLine() noexcept = 0;

    /// The dictionary has refused an addition. Under its lock while files are read.
    virtual void OnContradiction(const Contradiction& contradiction) noexcept = 0;

protected:
    ~Listener() = default;
};

/// The listener of the process; null as a rule. The first call looks whether the environment asks
/// for one. It lives as long as the process.
Listener* CurrentListener() noexcept;

}  // namespace lyr::internal
