#pragma once
#include "Interfaces.h"
#include <string>

/// What all documents have; a base for classes of any library.
LYR_DECLARE_COMPONENT(Document, ITitled) {
    explicit Document(const char* title = "untitled") : _title(title) {}
    const char* Title() override;

private:
    const std::string _title;
};
