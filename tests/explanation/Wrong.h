#pragma once

#include "../lyr/Workshop.h"
#include "TestRoads.h"

/// A workshop with folders d and e of dictionaries and libs of libraries. In d/i.iidts the ids
/// Iid(0) to Iid(9) are called I0 to I9, and Iid(10) IPrinter.
struct Shop : Workshop {
    Shop();

    /// Builds libs/lib<name>.so.
    void Library(const std::string& name, const std::string& code,
                 const std::string& options = "") const;
    /// Writes the lines of d/p.dicts.
    void Pairs(const std::string& lines) const { Write("d/p.dicts", lines); }
};

/// The code of an entry point that answers with the object itself.
std::string Answering(const std::string& entryPoint);

/// One way to get it wrong, and what is said of it.
struct Wrong {
    enum class Asked : std::int8_t { kRequest, kCreation, kCreationById };

    const char* name = "";
    /// The code of libA, which is not there without; the lines of d/p.dicts; what else is made.
    std::string code = {};
    const char* options = "";
    const char* pairs = "";
    void (*make)(const Shop&) = [](const Shop&) {};
    /// The cause that decides, "none" for what is answered; and where its line stands, "" for none.
    const char* root = "";
    const char* place = "";
    /// Parts of the paragraph; nothing of the second is in it.
    const char* told = "";
    const char* untold = "\n\n";
    /// The error of `lyr check`, "FILE:LINE kind"; "" for what it cannot know.
    const char* found = "";

    Asked asked = Asked::kRequest;
    /// Of the interface or class that is asked for; the interface under this name, if any.
    unsigned number = 1;
    const char* interfaceName = nullptr;
};

inline std::ostream& operator<<(std::ostream& stream, const Wrong& wrong) {
    return stream << wrong.name;
}

/// Makes it, and asks for explanations before and after the real request of a Gadget: in a process
/// that loads nothing before, in one that loads for them, and in one that listens. They name the
/// cause and the place, and none contradicts the answer. `lyr check` finds what it can.
void ExpectToldAsItIs(const Wrong& wrong);
