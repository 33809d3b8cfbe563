#pragma once

#include "GUID.h"
#include "HRESULT.h"
#include "LYRExport.h"

#include <stdexcept>
#include <string>

class IUnknown;

namespace lyr {
inline namespace v1 {

/// Why an operation failed that has to succeed. Those that may fail begin with "Try" and give null.
enum class Reason {
    kNullReference,      ///< a null reference was asked
    kNoInterface,        ///< the object does not answer the interface
    kUnknownClass,       ///< no dictionary file and no code names the class
    kMissingLibrary,     ///< the library that is named for the class does not load
    kMissingEntryPoint,  ///< the library does not export the function that makes the objects
    kNotMade,            ///< that function made no object: a constructor has failed, mostly
};

/// What such an operation throws. what() says what was asked of whom, why it failed and what to do,
/// as <lyr/explain.h> explains it.
class LYR_EXPORT Failure : public std::runtime_error {
public:
    Failure(Reason reason, HRESULT result, const std::string& text);
    Failure(const Failure&) noexcept;
    Failure& operator=(const Failure&) noexcept;
    ~Failure() override;

    Reason Why() const noexcept { return _reason; }
    /// What the operation behind it has answered.
    HRESULT Result() const noexcept { return _result; }

private:
    Reason _reason;
    HRESULT _result;
};

namespace detail {

// They are in the library, so that what is compiled with and without exceptions is the same.

/// Throws the Failure of a request; `object` may be null.
[[noreturn]] LYR_EXPORT void ThrowNoInterface(IUnknown* object, const GUID& iid,
                                              const char* interfaceName, HRESULT result);
/// Throws the Failure of a creation that gave null, or `result`. The name may be null.
[[noreturn]] LYR_EXPORT void ThrowNotCreated(const char* className);
[[noreturn]] LYR_EXPORT void ThrowNotCreated(const GUID& clsid, const GUID& iid, HRESULT result);

/// What `make` makes; null when it throws.
LYR_EXPORT void* MakeOrNull(void* (*make)()) noexcept;

}  // namespace detail
}  // namespace v1
}  // namespace lyr

// A template that throws begins with it.
#if defined(__cpp_exceptions)
#define LYR_KIT_THROWS(T)
#else
#define LYR_KIT_THROWS(T)                                                                      \
    static_assert(sizeof(T) == 0,                                                              \
                  "lyr: this throws, and exceptions are switched off here; use the operation " \
                  "whose name begins with Try, and test the result");
#endif
