#include "options/optionTable.h"

#include <algorithm>
#include <array>

namespace {

constexpr size_t kEffectColumn = 30;

constexpr std::string_view kOnOff = "[on|off]";
constexpr std::string_view kOnOffTerm = "[on|off|TERM]";

constexpr tOption kTraceOptions[] = {
    {"--on", tValueRule::kNothing, "", "tracing on"},
    {"--off", tValueRule::kNothing, "", "tracing off, nothing is written (default: on)"},
    {"--compname", tValueRule::kTextField, kOnOffTerm, "prefix: component (default: on)"},
    {"--compver", tValueRule::kTextField, kOnOffTerm, "prefix: its version (off)"},
    {"--linenumber", tValueRule::kNumberField, kOnOffTerm, "prefix: source line (on)"},
    {"--filename", tValueRule::kTextField, kOnOffTerm, "prefix: source file (on)"},
    {"--filepath", tValueRule::kSwitch, kOnOff, "prefix: source file with its path (off)"},
    {"--threadid", tValueRule::kNumberField, kOnOffTerm, "prefix: thread (off)"},
    {"--timestamp", tValueRule::kSwitch, kOnOff, "prefix: clock ticks (off)"},
    {"--timedelta", tValueRule::kSwitch, kOnOff, "prefix: ticks since the last line (off)"},
    {"--verbosity", tValueRule::kNumberField, kOnOffTerm, "prefix: level of the line (off)"},
    {"--indent", tValueRule::kSwitch, kOnOff, "two blanks for each open block (on)"},
    {"--truncation", tValueRule::kSwitch, kOnOff, "cut the prefix to its width (on)"},
    {"--prefixwidth", tValueRule::kWidth, "N", "least width of the prefix (50)"},
    {"--filter", tValueRule::kFilter, "[\"EXPR\"]",
     "which lines are shown; without EXPR all\n(verbosity>=100)"},
    {"--mutex", tValueRule::kSwitch, kOnOff, "a line belongs to its thread (off)"},
    {"--mutex-kernel-token", tValueRule::kTokens, "N:0", "token for that lock; comes last"},
    {"--destination", tValueRule::kDestination, "[NAME [WORDS]]",
     "where the lines go, see below (vex)"},
    {"--calibrate", tValueRule::kCalibration, "", "time deltas leave out the cost of tracing"},
};

constexpr tOption kAssertOptions[] = {
    {"--category", tValueRule::kCategory, "NAME",
     "what the words behind it are about: default,\n"
     "warning, statusWarning, statusFatal, or a new one"},
    {"--terminate", tValueRule::kSwitch, kOnOff, "a failure stops the program (off)"},
    {"--break", tValueRule::kSwitch, kOnOff, "a failure breaks into the debugger (on)"},
    {"--preconditions", tValueRule::kSwitch, kOnOff, "check preconditions (on)"},
    {"--postconditions", tValueRule::kSwitch, kOnOff, "check postconditions (on)"},
    {"--classinvariants", tValueRule::kSwitch, kOnOff, "check class invariants (on)"},
    {"--loopinvariants", tValueRule::kSwitch, kOnOff, "check loop invariants (on)"},
    {"--checks", tValueRule::kSwitch, kOnOff, "check what holds in between (on)"},
    {"--exceptions", tValueRule::kSwitch, kOnOff, "check for exceptional states (on)"},
};

constexpr tDestinationName kDestinations[] = {
    {"vex", "", "debugger print; of the demo, standard output"},
    {"serial", "[BAUD]", "serial port 1; 1200 to 115200 baud (115200)"},
    {"file", "[NAME] [overwrite|append]", "a file such as C:/rack.out\n(C:/DebugTrace.out)"},
    {"recorder", "[KIB] [vex]",
     "the newest lines in memory, for a crash\ndump; 1 to 16384 KiB (64)"},
};

constexpr std::string_view kBauds[] = {"115200", "57600", "38400", "19200", "9600",
                                       "4800",   "2400",  "2000",  "1800",  "1200"};

// A second line of the effect begins in the same column.
void appendLine(std::string& text, std::string_view word, std::string_view values,
                std::string_view effect) {
  std::string head = "  " + std::string(word);
  if (!values.empty()) head.append(" ").append(values);
  if (head.size() >= kEffectColumn) head += '\n';
  size_t const lineBegin = head.find('\n') == std::string::npos ? 0 : head.size();
  head.append(kEffectColumn - (head.size() - lineBegin), ' ');
  for (char const character : effect) {
    head += character;
    if (character == '\n') head.append(kEffectColumn, ' ');
  }
  text += head + "\n";
}

}  // namespace

tOptionLanguage const kTraceLanguage = {"trace", kTraceOptions};
tOptionLanguage const kAssertLanguage = {"assert", kAssertOptions};
std::span<tDestinationName const> const kDestinationNames = kDestinations;
std::span<std::string_view const> const kBaudRates = kBauds;

tOption const* findOption(tOptionLanguage const& language, std::string_view word) {
  auto const found = std::find_if(language.options.begin(), language.options.end(),
                                  [word](tOption const& option) { return option.word == word; });
  return found == language.options.end() ? nullptr : &*found;
}

std::string describeOptions(tOptionLanguage const& language, std::string_view prefix) {
  std::string text = "\nWords of " + std::string(prefix) + std::string(language.name) + ":\n";
  for (tOption const& option : language.options) {
    appendLine(text, option.word, option.values, option.effect);
  }
  if (findOption(language, "--destination") == nullptr) return text;
  text += "\nNames behind --destination:\n";
  for (tDestinationName const& name : kDestinationNames) {
    appendLine(text, name.word, name.values, name.effect);
  }
  return text;
}
