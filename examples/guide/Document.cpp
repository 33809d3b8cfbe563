#include "Document.h"

LYR_DEFINE_COMPONENT(Document);

const char* Document::Title() { return _title.c_str(); }
