#pragma once

#include "HRESULT.h"
#include "LYRExport.h"

class LYRSysTSBaseUnknown;

/// One link of the chain in which a component object keeps its extensions. It counts no reference
/// for the extension, and owns neither it nor the next link. Its user locks: the chain belongs to
/// the object's lock.
class LYR_EXPORT LYRSysTSChainExtension {
public:
    /// A link that carries `extension`, which may be null, with no next one.
    explicit LYRSysTSChainExtension(LYRSysTSBaseUnknown* extension);
    virtual ~LYRSysTSChainExtension();
    LYRSysTSChainExtension(const LYRSysTSChainExtension&) = delete;
    LYRSysTSChainExtension& operator=(const LYRSysTSChainExtension&) = delete;

    /// Hangs `next` after this link. E_FAIL, with nothing changed, when it is null or this very
    /// link, or when either has a next link already.
    HRESULT SetNextChainExtension(LYRSysTSChainExtension* next);

    /// The next link, or null.
    LYRSysTSChainExtension* GetNextChainExtension();

    /// The extension that the link carries; E_FAIL, and null, when it carries none.
    HRESULT GetAssociatedExtension(LYRSysTSBaseUnknown*& extension);

private:
    LYRSysTSBaseUnknown* _extension;
    LYRSysTSChainExtension* _next;
};
