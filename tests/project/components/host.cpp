#include <dlfcn.h>

// host <library>: a program of others, which loads the library and calls its function.
int main(int, char** words) {
    void* const library = dlopen(words[1], RTLD_NOW);
    if (library == nullptr) return 2;
    return reinterpret_cast<int (*)()>(dlsym(library, "Greet"))();
}
