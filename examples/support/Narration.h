#pragma once

#include <cstdio>

/// @file
/// What the libraries of the example tell the transcript. A real component needs none of it.

/// Tells when its owner, an object, is made and deleted.
class Lifetime {
public:
    explicit Lifetime(const char* name) : _name(name) { std::printf("     . %s is made\n", _name); }
    ~Lifetime() { std::printf("     . %s is deleted\n", _name); }
    Lifetime(const Lifetime&) = delete;
    Lifetime& operator=(const Lifetime&) = delete;

private:
    const char* _name;
};

/// Tells, at namespace scope of a library, that the library is being loaded.
struct LibraryLoaded {
    explicit LibraryLoaded(const char* name) { std::printf("     . %s is loaded\n", name); }
};
