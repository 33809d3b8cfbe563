#include <gtest/gtest.h>
#include <lyr/kit.h>

TEST(Components, AreFoundInTests) {
    EXPECT_NE(lyr::TryCreate<IUnknown>("Greeter"), nullptr);
}
TEST(Components, AreFoundInEachTest) {
    EXPECT_NE(lyr::TryCreate<IUnknown>("Greeter"), nullptr);
}
