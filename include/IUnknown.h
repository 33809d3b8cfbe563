#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"

#include <cstdint>

/// The interface that every other one derives from. An implementation lives as long as its count
/// says and is never deleted through an interface pointer.
class LYR_EXPORT IUnknown {
public:
    /// Asks the object behind this interface for another one. `*out` is set to null first; on
    /// S_OK it holds an interface that the caller owns one count of and gives back with Release.
    virtual HRESULT QueryInterface(const GUID& iid, void** out) = 0;
    /// Takes one count; the result is the new one.
    virtual std::uint32_t AddRef() = 0;
    /// Gives one count back; the result is the new one, and at 0 the object is gone.
    virtual std::uint32_t Release() = 0;

protected:
    // Not virtual: the table of an interface holds its operations alone. Protected in every
    // interface, so that nobody deletes through one.
    ~IUnknown() = default;
};
