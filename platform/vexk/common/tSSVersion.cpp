#include "vexk/tSSVersion.h"

#include "vexk/number.h"
#include "vexk/statusCodes.h"

namespace {

constexpr u32 kPhaseCount = 16;
constexpr u32 kKnownPhases = 4;
constexpr char kPhaseLetters[kKnownPhases] = {'d', 'f', 'b', 'a'};
constexpr char kUnknownPhaseLetter = 'x';

// Unknown phases come first in the order of release, by their values.
constexpr u32 kUnknownPhases = kPhaseCount - kKnownPhases;
constexpr u32 kKnownRanks[kKnownPhases] = {kUnknownPhases, kUnknownPhases + 3, kUnknownPhases + 2,
                                           kUnknownPhases + 1};

u32 rankOfPhase(u32 phase) {
  return phase < kKnownPhases ? kKnownRanks[phase] : phase - kKnownPhases;
}

char letterOfPhase(u32 phase) {
  return phase < kKnownPhases ? kPhaseLetters[phase] : kUnknownPhaseLetter;
}

// The packed form with the phase replaced by its rank orders as the versions do.
u32 orderOf(tSSVersion version) {
  u32 constexpr phaseShift = 12;
  u32 constexpr phaseMask = (kPhaseCount - 1) << phaseShift;
  return (version.getPacked() & ~phaseMask) | (rankOfPhase(version.getPhase()) << phaseShift);
}

// Numbers of one digit are the rule.
u32 writeDecimal(char* text, u32 value) {
  if (value >= kRadixDecimal) return vexNumberToText(value, kRadixDecimal, text);
  *text = static_cast<char>('0' + value);
  return 1;
}

char* append(char* text, u32 value, char separator) {
  text += writeDecimal(text, value);
  *text = separator;
  return text + 1;
}

}  // namespace

i32 tSSVersion::compare(tSSVersion other) const {
  u32 const own = orderOf(*this);
  u32 const others = orderOf(other);
  if (own == others) return 0;
  return own < others ? -1 : 1;
}

i32 tSSVersion::check(tSSVersion newestWanted, tSSVersion oldestWanted, tSSVersion current,
                      tSSVersion oldestCompatible) {
  bool const meets = oldestWanted <= current && newestWanted >= oldestCompatible;
  return meets ? 0 : kStatusVersionMismatch;
}

void tSSVersion::toStringInterface(char* buffer, u32 size) const {
  if (buffer == nullptr || size == 0) return;
  char shortText[kMaxTextSize];
  char* const text = size < kMaxTextSize ? shortText : buffer;
  char* end = append(text, getMajor(), '.');
  end = append(end, getMinor(), '.');
  end = append(end, getUpdate(), letterOfPhase(getPhase()));
  append(end, getBuild(), '\0');
  if (text == buffer) return;
  u32 i = 0;
  for (; i + 1 < size && text[i] != '\0'; ++i) buffer[i] = text[i];
  buffer[i] = '\0';
}
