#pragma once

// The host side of the conformance harness: GoogleTest as it is. The tests/kernel folder has a
// header of the same name for the driver; a conformance test keeps to what both offer:
//
//   TEST(Suite, Name), TEST_F(Fixture, Name) with a fixture that is an oxt::tFixture
//   EXPECT_ and ASSERT_ with TRUE FALSE EQ NE LT LE GT GE STREQ STRNE, without streamed text
//
// The modules are started before the first test and unloaded after the last.

#include <gtest/gtest.h>

namespace oxt {

using tFixture = ::testing::Test;

}  // namespace oxt
