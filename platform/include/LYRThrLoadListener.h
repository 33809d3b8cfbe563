#pragma once

/// Hears what the library manager meets while it looks for a library or a function in it. The texts
/// are valid during the call alone. It is called in the thread that asks, with no lock of the
/// library manager held, and must not throw.
class LYRThrLoadListener {
public:
    /// Whether a library that is not loaded yet may be loaded. Where not, it counts as missing.
    virtual bool MayLoad() = 0;

    /// A file that may be the library is tried next.
    virtual void OnFile(const char* file) = 0;

    /// What became of it: it is loaded, or was before; or not: then `words` are the dynamic
    /// loader's, and `isMissing` tells whether they say no more than that there is no such file.
    virtual void OnLoaded() = 0;
    virtual void OnNotLoaded(const char* words, bool isMissing) = 0;

    /// The library itself does not define the function, and whether a dependency of it does.
    virtual void OnMissingFunction(const char* symbol, bool isInDependency) = 0;

protected:
    ~LYRThrLoadListener() = default;
};
