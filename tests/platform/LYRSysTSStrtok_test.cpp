#include "LYRSysTSStrtok.h"

#include <gtest/gtest.h>
#include <string>

TEST(LYRSysTSStrtok, YieldsNoEmptyTokenAndNothingFromNothing) {
    char *save = nullptr, text[] = ":/a::b c;";
    EXPECT_EQ(LYRSysTSStrtok(nullptr, ":;", &save), nullptr);
    EXPECT_STREQ(LYRSysTSStrtok(text, ":;", &save), "/a");
    EXPECT_STREQ(LYRSysTSStrtok(nullptr, ":;", &save), "b c");
    EXPECT_EQ(LYRSysTSStrtok(nullptr, ":;", &save), nullptr);
}
