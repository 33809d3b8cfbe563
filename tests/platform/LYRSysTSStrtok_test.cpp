#include "LYRSysTSStrtok.h"

#include <gtest/gtest.h>
#include <string>

TEST(LYRSysTSStrtok, YieldsNoEmptyTokenAndNothingFromNothing) {
    char* save = nullptr;
    EXPECT_EQ(LYRSysTSStrtok(nullptr, ":", &save), nullptr);
    const char* const cases[][2] = {
        {"", ""}, {"::", ""}, {":/a::b c:", "/a|b c|"}, {"a;b", "a|b|"}};
    for (const auto& [text, expected] : cases) {
        std::string copy = text, tokens;
        char* token = LYRSysTSStrtok(copy.data(), ":;", &save);
        for (; token != nullptr; token = LYRSysTSStrtok(nullptr, ":;", &save)) {
            tokens += std::string(token) + "|";
        }
        EXPECT_EQ(tokens, expected) << text;
    }
}
