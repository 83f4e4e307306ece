#include "slotbus/component/tFoundSettings.h"

namespace nSLOTBUS100 {
namespace {

constexpr char kCalibration[] = " --calibrate";
constexpr size_t kCalibrationLength = sizeof(kCalibration) - 1;

// The last option of the trace. Its numbers cannot be set: whoever reads it measures them.
void cutCalibration(_STL::vector<char>& text) {
  for (size_t end = text.size(); end > kCalibrationLength; --end) {
    char* const place = text.data() + end - kCalibrationLength - 1;
    if (__builtin_memcmp(place, kCalibration, kCalibrationLength) != 0) continue;
    *place = '\0';
    return;
  }
}

}  // namespace

tFoundSettings::tFoundSettings(nOXDIAG100::tConfigurable& target) : target(target) {
}

bool tFoundSettings::keep() {
  if (read(kept)) return true;
  kept.clear();
  return false;
}

void tFoundSettings::giveBack() {
  if (kept.empty()) return;
  tText now;
  if (read(now) && __builtin_strcmp(now.data(), kept.data()) == 0) return;
  target.configure(kept.data());
}

// Others may set longer ones between two inquiries.
bool tFoundSettings::read(tText& text) const {
  unsigned int needed = 0;
  target.inquire(nullptr, 0, &needed);
  if (needed == 0) return false;
  do {
    if (!text.resize(needed)) return false;
    target.inquire(text.data(), static_cast<unsigned int>(text.size()), &needed);
  } while (needed > text.size());
  cutCalibration(text);
  return true;
}

}  // namespace nSLOTBUS100
