#include "support/inquiredText.h"

#include "support/fuzzing.h"
#include "support/tExactText.h"

std::string inquiredText(nOXDIAG100::tConfigurable& object) {
  unsigned int needed = 0;
  object.inquire(nullptr, 0, &needed);
  tExactText text(std::string(needed, '#'), false);
  object.inquire(text.get(), needed, nullptr);
  std::string const whole = text.get();
  demand(whole.size() + 1 == needed, "the size needed is that of the text",
         [&] { return std::to_string(needed) + " for " + readable(whole); });
  return whole;
}

std::string settingsText(nOXDIAG100::tConfigurable& object) {
  std::string const whole = inquiredText(object);
  return whole.substr(0, whole.rfind(" --calibrate "));
}

void demandCutInquiry(nOXDIAG100::tConfigurable& object, unsigned size) {
  std::string const whole = inquiredText(object);
  tExactText buffer(std::string(size, '#'), false);
  unsigned int needed = 0;
  object.inquire(buffer.get(), size, &needed);
  unsigned int neededWithoutBuffer = 0;
  object.inquire(nullptr, size, &neededWithoutBuffer);
  demand(needed == whole.size() + 1 && neededWithoutBuffer == needed,
         "the size needed is the same whatever the buffer is",
         [&] { return std::to_string(needed) + " for " + readable(whole); });
  if (size == 0) return;
  demandEqual(buffer.get(), whole.substr(0, size - 1), "a cut text is the front of the whole");
}
