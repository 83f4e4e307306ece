#include "support/tTraceModel.h"

#include <algorithm>

namespace {

struct tSwitch {
  char const* option;
  bool atFirst;
  int field;  // of the filter, -1 for none
};

constexpr tSwitch kTable[] = {
    {"--compname", true, 0},    {"--compver", false, 1},    {"--linenumber", true, 2},
    {"--filename", true, 3},    {"--filepath", false, -1},  {"--threadid", false, 4},
    {"--timestamp", false, -1}, {"--timedelta", false, -1}, {"--verbosity", false, 5},
    {"--indent", true, -1},     {"--truncation", true, -1}, {"--mutex", false, -1},
};

constexpr unsigned kAnd = 1;

constexpr char const* kRates[] = {"115200", "57600", "38400", "19200", "9600",
                                  "4800",   "2400",  "2000",  "1800",  "1200"};

// A word that does not begin with "--".
bool hasValue(tWords const& words, size_t index) {
  return index < words.size() && !words[index].starts_with("--");
}

// Whether the settings name a rate; in place of two of them the option stands once more.
bool isTold(std::string const& rate) {
  return rate != "2000" && rate != "1800";
}

std::string onOff(bool isOn) {
  return isOn ? " on" : " off";
}

}  // namespace

tTraceModel::tTraceModel() {
  static_assert(std::size(kTable) == kSwitches);
  for (size_t index = 0; index < kSwitches; ++index) switches[index] = kTable[index].atFirst;
  filter.add(">=100", 0, 5);
}

void tTraceModel::configure(tWords const& words) {
  choice = tChoice::kNone;
  for (size_t next = 0; next < words.size();) readOption(words, next);
  if (choice == tChoice::kDebugger) install(tPlace::kDebugger);
  if (choice == tChoice::kSerial) install(tPlace::kSerial);
  if (choice == tChoice::kFile) fallBack(place);  // which never opens
}

void tTraceModel::install(tPlace next) {
  place = next;
  if (place == tPlace::kSerial) rate = chosenRate;
}

// The former destination is configured with its own settings, which tell most rates.
void tTraceModel::fallBack(tPlace next) {
  if (place == tPlace::kSerial && isTold(rate)) chosenRate = rate;
  install(next);
}

void tTraceModel::readOption(tWords const& words, size_t& next) {
  std::string const& word = words[next++];
  for (size_t index = 0; index < kSwitches; ++index) {
    if (word == kTable[index].option) return readSwitch(index, words, next);
  }
  if (word == "--on" || word == "--off") isEnabled = word == "--on";
  if (word == "--destination") {
    tChoice const chosen = readDestination(words, next);
    if (chosen != tChoice::kNone) choice = chosen;
  }
  if (word == "--mutex-kernel-token") next = words.size();
  if (word == "--prefixwidth" && hasValue(words, next)) width = modelNumber(words[next++]);
  if (word == "--filter" && hasValue(words, next)) {
    filter.parse(words[next++]);
  } else if (word == "--filter") {
    filter.removeAll();
  }
}

void tTraceModel::readSwitch(size_t index, tWords const& words, size_t& next) {
  int const field = kTable[index].field;
  std::string const value = hasValue(words, next) ? words[next] : "";
  switches[index] = value != "off";
  if (!hasValue(words, next)) {
    filter.removeField(field);
    return;
  }
  ++next;
  if (value != "on" && value != "off") filter.add(value, kAnd, field);
}

// The word behind a destination that is not named is skipped, even if it is an option.
tTraceModel::tChoice tTraceModel::readDestination(tWords const& words, size_t& next) {
  if (!hasValue(words, next)) {
    next = std::min(next + 1, words.size());
    return tChoice::kDebugger;
  }
  std::string const& name = words[next++];
  if (name == "serial") readRates(words, next);
  while (hasValue(words, next)) ++next;
  if (name == "vex") return tChoice::kDebugger;
  if (name == "serial") return tChoice::kSerial;
  return name == "file" ? tChoice::kFile : tChoice::kNone;
}

void tTraceModel::readRates(tWords const& words, size_t& next) {
  for (; hasValue(words, next); ++next) {
    bool const isRate = std::ranges::find(kRates, words[next]) != std::end(kRates);
    if (isRate) chosenRate = words[next];
  }
}

std::string tTraceModel::destinationText() const {
  if (place == tPlace::kOwn) return " --destination fuzz";
  if (place == tPlace::kDebugger) return " --destination vex";
  return " --destination serial " + (isTold(rate) ? rate : " --destination serial ");
}

std::string tTraceModel::text() const {
  std::string all = isEnabled ? "--on" : "--off";
  all += destinationText();
  for (size_t index = 0; index < kMutex; ++index) {
    all += std::string(" ") + kTable[index].option + onOff(switches[index]);
  }
  return all + " --prefixwidth " + std::to_string(width) + filter.written() + " --mutex" +
         onOff(switches[kMutex]);
}

void tTraceModel::adopt(nOXDIAG100::tTrace& trace, tPlace itsPlace) {
  u32 const values[] = {
      trace.componentNameIsEnabled(), trace.componentVersionIsEnabled(),
      trace.lineNumberIsEnabled(),    trace.fileNameIsEnabled(),
      trace.filePathIsEnabled(),      trace.threadIdIsEnabled(),
      trace.timeStampIsEnabled(),     trace.timeDeltaIsEnabled(),
      trace.verbosityIsEnabled(),     trace.indentingIsEnabled(),
      trace.truncationIsEnabled(),    trace.mutexIsEnabled(),
  };
  for (size_t index = 0; index < kSwitches; ++index) switches[index] = values[index] != 0;
  isEnabled = trace.isEnabled() != 0;
  width = trace.getMinPrefixWidth();
  place = itsPlace;
  rate = chosenRate = kFirstRate;
  filter.removeAll();
}

bool tTraceModel::hasSayableFilter() const {
  return filter.isWritable() && std::ranges::count(filter.written(), '"') == 2;
}
