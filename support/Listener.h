#pragma once

#include "GUID.h"
#include "lyr/explain.h"

#include <chrono>

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

/// How a file of the dictionary was read.
struct FileReading {
    const char* path;
    std::chrono::steady_clock::time_point begin;
    int lines = 0;        ///< that its reader was given
    int badLine = 0;      ///< the one that has ended the reading; 0 for none
    bool isWhole = true;  ///< whether it was read to its end
};

/// Hears of each search and creation, of the dictionary files' lines and of what is refused, for
/// those who look for a fault or for lost time. Called in any thread, under the lock of the object
/// that is asked and under no lock of the tables, unless it says so. It never throws.
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

    /// A creation, by the name or the id that the notes tell, has ended.
    virtual void AfterCreation(Notes& notes, bool isMade) noexcept = 0;

    /// The dictionary files have been read, one of them or, from `begin` to now, all. Under the
    /// dictionary's lock.
    virtual void AfterFile(const FileReading& file) noexcept = 0;
    virtual void AfterScan(std::chrono::steady_clock::time_point begin) noexcept = 0;

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
