#pragma once

#include "ntos/types.h"

// A list of texts for a loop, where there is no C++ library to make one of bare braces:
//
//     for (char const* name : tTexts{"on", "off"}) ...
template <u32 Count>
struct tTexts {
  char const* texts[Count];

  char const* const* begin() const { return texts; }
  char const* const* end() const { return texts + Count; }
};
template <class... tText>
tTexts(tText...) -> tTexts<sizeof...(tText)>;
