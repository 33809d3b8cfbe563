// Runs a target once, on the file named: a seed as a test, or an input that was found elsewhere.
#include <fstream>
#include <iterator>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size);

int main(int count, char** arguments) {
    if (count != 2) return 2;
    std::ifstream stream(arguments[1], std::ios::binary);
    const std::string input(std::istreambuf_iterator<char>(stream), {});
    return stream.is_open() ? LLVMFuzzerTestOneInput(input.data(), input.size()) : 1;
}
