#pragma once

#include "TestSupport.h"

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>
#include <vector>

/// How a command ended, and what it said on both streams.
struct Outcome {
    int status;
    std::string text;
};

/// A folder in which libraries are built and looked at, by names without a folder.
class Workshop : public TempDirectory {
public:
    /// Builds the library from records, functions with names of the loader's, and other code;
    /// `options` are the compiler's.
    void Build(const std::string& library, const std::vector<std::string>& records,
               const std::vector<std::string>& functions, const std::string& code = "",
               const std::string& options = "") const {
        std::string source;
        for (const std::string& record : records) {
            source +=
                "__attribute__((used, retain, section(\"lyr_manifest\"))) static const char r" +
                std::to_string(source.size()) + "[] = \"" + record + "\";\n";
        }
        for (const std::string& function : functions) {
            source += "extern \"C\" void " + function + "() {}\n";
        }
        Write(library + ".cpp", source + code);
        const Outcome built = Run("'" LYR_COMPILER "' -shared -fPIC -nostdlib -o '" + library +
                                  "' '" + library + ".cpp' " + options);
        ASSERT_EQ(built.status, 0) << built.text;
    }

    /// Runs the shell's command in the folder.
    Outcome Run(const std::string& command) const {
        const std::string inFolder = "cd '" + path + "' && { " + command + "; } 2>&1";
        std::FILE* const pipe = ::popen(inFolder.c_str(), "r");
        if (pipe == nullptr) return {-1, "no pipe"};
        std::string text;
        std::array<char, 4096> piece{};
        while (std::fgets(piece.data(), piece.size(), pipe) != nullptr) text += piece.data();
        const int status = ::pclose(pipe);
        return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text};
    }

    Outcome Lyr(const std::string& arguments) const {
        return Run("'" LYR_PROGRAM "' " + arguments);
    }

    /// What stands in the file; "none" for a file that is not there.
    std::string Read(const std::string& name) const {
        std::ifstream file(path + "/" + name);
        if (!file) return "none";
        return {std::istreambuf_iterator<char>(file), {}};
    }
};
