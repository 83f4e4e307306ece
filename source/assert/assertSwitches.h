#pragma once

#include "oxdiagk/tAssertConfiguration.h"

namespace nOXDIAG100 {

// A switch as options know it.
struct tAssertSwitch {
  char const* option;
  bool tAssertConfiguration::tConfigElem::*value;
};

#define OXDIAG_ASSERT_ENTRY(word, query, Name, atFirst) \
  {"--" #word, &tAssertConfiguration::tConfigElem::word##Enabled},
inline constexpr tAssertSwitch kAssertSwitches[] = {OXDIAG_ASSERT_SWITCHES(OXDIAG_ASSERT_ENTRY)};
#undef OXDIAG_ASSERT_ENTRY

// The names of categories that the library knows apart.
inline constexpr char kDefaultCategory[] = "default";
inline constexpr char kWarningCategory[] = "warning";

}  // namespace nOXDIAG100
