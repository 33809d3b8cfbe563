// The text of a GUID beside a reading of its own: result, value, what stays untouched, and no look
// behind the text, which ends with its block of memory.
#include "DictionaryModel.h"
#include "LYRSysTSConvertStringToGUID.h"

#include <cstring>

extern "C" int LLVMFuzzerTestOneInput(const char* data, std::size_t size) {
    const std::string text(data, strnlen(data, size));
    const std::vector<char> block(text.c_str(), text.c_str() + text.size() + 1);
    const std::string before(sizeof(GUID), '\xA5');
    GUID guid;
    std::memcpy(&guid, before.data(), sizeof guid);
    const Text expected = ReadId(text);
    Require(LYRSysTSConvertStringToGUID(block.data(), guid) == (expected ? 0 : 1));
    Require(LYRSysTSConvertStringToGUID(nullptr, guid) == 1);
    Require(std::memcmp(&guid, expected.value_or(before).data(), sizeof guid) == 0);
    return 0;
}
