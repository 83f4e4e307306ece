#pragma once

// The kernel side of the conformance harness: GoogleTest's macros, as far as a conformance test
// uses them, for a driver without heap, streams, exceptions and dynamic initialisers. The folder
// tests/host has a header of the same name; a conformance test keeps to what both offer:
//
//   TEST(Suite, Name), TEST_F(Fixture, Name) with a fixture that is an oxt::tFixture
//   EXPECT_ and ASSERT_ with TRUE FALSE EQ NE LT LE GT GE STREQ STRNE, without streamed text
//
// A test registers itself by a pointer in a linker section that the driver walks. Results go out
// as debugger print, in the lines that conformance/testRun.h describes. The modules are started
// before the first test and unloaded after the last.

#include "conformance/checks.h"
#include "conformance/testRun.h"

namespace oxt {

// What the tests of a suite share: each runs as an operation of an object of its own.
class tFixture {};

}  // namespace oxt

#define OXT_TEST(Suite, Name, body)                                                           \
  static constinit oxt::tTest const Suite##_##Name##_test = {#Suite, #Name, body};            \
  __declspec(allocate("oxt$m"))                                                               \
      __attribute__((used)) static constinit oxt::tTest const* const Suite##_##Name##_entry = \
          &Suite##_##Name##_test

#define TEST(Suite, Name)                        \
  static void Suite##_##Name##_body();           \
  OXT_TEST(Suite, Name, &Suite##_##Name##_body); \
  static void Suite##_##Name##_body()

#define TEST_F(Fixture, Name)                                 \
  namespace {                                                 \
  struct Fixture##_##Name : Fixture {                         \
    void body();                                              \
  };                                                          \
  }                                                           \
  OXT_TEST(Fixture, Name, [] { Fixture##_##Name().body(); }); \
  void Fixture##_##Name::body()

#define OXT_PLACE(text) (oxt::tPlace{__FILE__, __LINE__, text})

// The first form goes on after a failure, the second ends the test function. Both are statements.
#define OXT_EXPECT(held) \
  if (held)              \
    ;                    \
  else                   \
    static_cast<void>(0)
#define OXT_ASSERT(held) \
  if (held)              \
    ;                    \
  else                   \
    return

#define OXT_BOOL(condition, wanted) \
  oxt::checkTruth(OXT_PLACE(#condition), static_cast<bool>(condition), wanted)
#define OXT_RELATION(kind, a, b, text) \
  oxt::checkRelation<oxt::kind>(OXT_PLACE(#a " " text " " #b), a, b)
#define OXT_TEXT(a, b, wanted, text) oxt::checkText(OXT_PLACE(#a " " text " " #b), a, b, wanted)

#define EXPECT_TRUE(condition) OXT_EXPECT(OXT_BOOL(condition, true))
#define EXPECT_FALSE(condition) OXT_EXPECT(OXT_BOOL(condition, false))
#define EXPECT_EQ(a, b) OXT_EXPECT(OXT_RELATION(tEqual, a, b, "=="))
#define EXPECT_NE(a, b) OXT_EXPECT(OXT_RELATION(tUnequal, a, b, "!="))
#define EXPECT_LT(a, b) OXT_EXPECT(OXT_RELATION(tLess, a, b, "<"))
#define EXPECT_LE(a, b) OXT_EXPECT(OXT_RELATION(tLessOrEqual, a, b, "<="))
#define EXPECT_GT(a, b) OXT_EXPECT(OXT_RELATION(tGreater, a, b, ">"))
#define EXPECT_GE(a, b) OXT_EXPECT(OXT_RELATION(tGreaterOrEqual, a, b, ">="))
#define EXPECT_STREQ(a, b) OXT_EXPECT(OXT_TEXT(a, b, true, "=="))
#define EXPECT_STRNE(a, b) OXT_EXPECT(OXT_TEXT(a, b, false, "!="))

#define ASSERT_TRUE(condition) OXT_ASSERT(OXT_BOOL(condition, true))
#define ASSERT_FALSE(condition) OXT_ASSERT(OXT_BOOL(condition, false))
#define ASSERT_EQ(a, b) OXT_ASSERT(OXT_RELATION(tEqual, a, b, "=="))
#define ASSERT_NE(a, b) OXT_ASSERT(OXT_RELATION(tUnequal, a, b, "!="))
#define ASSERT_LT(a, b) OXT_ASSERT(OXT_RELATION(tLess, a, b, "<"))
#define ASSERT_LE(a, b) OXT_ASSERT(OXT_RELATION(tLessOrEqual, a, b, "<="))
#define ASSERT_GT(a, b) OXT_ASSERT(OXT_RELATION(tGreater, a, b, ">"))
#define ASSERT_GE(a, b) OXT_ASSERT(OXT_RELATION(tGreaterOrEqual, a, b, ">="))
#define ASSERT_STREQ(a, b) OXT_ASSERT(OXT_TEXT(a, b, true, "=="))
#define ASSERT_STRNE(a, b) OXT_ASSERT(OXT_TEXT(a, b, false, "!="))
