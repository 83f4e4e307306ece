#pragma once

// A file destination of the test's own, and the file that most tests write.

#include "oxdiagk/tFileTraceDestination.h"
#include "support/driveFile.h"

inline constexpr char kTestName[] = "C:/oxdiag-test.out";
inline constexpr wchar_t kTestPath[] = L"\\??\\C:\\oxdiag-test.out";

// Hands the words to configure.
template <class... Words>
void configureFile(nOXDIAG100::tFileTraceDestination& file, Words... words) {
  char* list[] = {const_cast<char*>(words)...};
  file.configure(static_cast<int>(sizeof...(words)), list);
}

// The whole inquired text, in a buffer that holds any.
struct tFileSettings {
  char text[320];
  unsigned int required = 0;

  explicit tFileSettings(nOXDIAG100::tFileTraceDestination& file) {
    file.inquire(text, sizeof(text), &required);
  }
};

// A name on drive C of a length, drive included.
template <u32 length>
struct tLongName {
  char text[length + 1] = {};

  constexpr tLongName() {
    for (u32 index = 0; index < length; ++index) text[index] = index < 3 ? "C:/"[index] : 'n';
  }
};

template <u32 length>
inline constexpr tLongName<length> kLongName;
