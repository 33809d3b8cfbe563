#include "Interfaces.h"
#include "Speller.h"

LYR_COMPONENT(Spelling, ISpelling) {
    bool IsRight(const char* word) override { return _speller.Check(word); }

private:
    Speller _speller;
};
