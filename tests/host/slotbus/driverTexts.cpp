// The texts that the driver makes of the values in its service key.

#include <gtest/gtest.h>

#include <string>

#include "slotbus/component/tKernelPath.h"
#include "slotbus/component/tNarrowText.h"

using namespace nSLOTBUS100;

namespace {

std::string narrow(wchar_t const* wide) {
  tNarrowText text(wide);
  return text.get();
}

std::string path(wchar_t const* first, wchar_t const* second = L"") {
  return narrow(tKernelPath(first, second).get());
}

// As the library's own wide texts have 16 bits a unit, the C++ library's functions for them do not
// fit; this makes one of `length` times the same unit.
class tWide {
 public:
  explicit tWide(u32 length) {
    for (u32 index = 0; index < length; ++index) text[index] = L'x';
    text[length] = L'\0';
  }
  wchar_t const* get() const { return text; }

 private:
  wchar_t text[2000];
};

}  // namespace

TEST(SlotbusKernelPath, ADriveLetterGetsTheKernelsPrefix) {
  EXPECT_EQ(path(L"C:\\racks\\bench3.txt"), "\\??\\C:\\racks\\bench3.txt");
  EXPECT_EQ(path(L"d:"), "\\??\\d:");
}

TEST(SlotbusKernelPath, AKernelPathStaysAsItIs) {
  EXPECT_EQ(path(L"\\??\\C:\\rack.txt"), "\\??\\C:\\rack.txt");
  EXPECT_EQ(path(L"\\SystemRoot\\rack.txt"), "\\SystemRoot\\rack.txt");
  EXPECT_EQ(path(L"x"), "x");
  EXPECT_EQ(path(L""), "");
}

TEST(SlotbusKernelPath, TheSecondPartIsAppended) {
  EXPECT_EQ(path(L"C:\\windows", L"\\rack.txt"), "\\??\\C:\\windows\\rack.txt");
}

TEST(SlotbusKernelPath, WhatIsTooLongIsCut) {
  u32 const limit = tKernelPath::kMaxLength;
  EXPECT_EQ(path(tWide(limit - 1).get()).size(), limit - 1);
  EXPECT_EQ(path(tWide(limit).get()).size(), limit);
  EXPECT_EQ(path(tWide(limit + 1).get()).size(), limit);
  EXPECT_EQ(path(tWide(limit - 1).get(), L"yz").back(), 'y');
}

TEST(SlotbusNarrowText, AsciiStaysAndTheRestBecomesQuestionMarks) {
  EXPECT_EQ(narrow(L"verbosity>=60"), "verbosity>=60");
  EXPECT_EQ(narrow(L"a\x7F\x80\xE4\x20AC"), "a\x7F???");
  EXPECT_EQ(narrow(L""), "");
}

TEST(SlotbusNarrowText, WhatIsTooLongIsCut) {
  u32 const limit = tNarrowText::kMaxLength;
  EXPECT_EQ(narrow(tWide(limit).get()).size(), limit);
  EXPECT_EQ(narrow(tWide(limit + 1).get()).size(), limit);
}
