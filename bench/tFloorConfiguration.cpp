#include "tFloorConfiguration.h"

#include <getopt.h>

#include <cstdlib>
#include <cstring>

namespace {

constexpr char const* kSwitches[tFloorConfiguration::kSwitchCount] = {
    "on",       "off",       "compname",  "compver",   "linenumber", "filename", "filepath",
    "threadid", "timestamp", "timedelta", "verbosity", "indent",     "mutex",    "truncation"};

constexpr int kWidth = 100;
constexpr int kFilter = 101;

constexpr option kOptions[] = {
    {"on", no_argument, nullptr, 0},
    {"off", no_argument, nullptr, 1},
    {"compname", required_argument, nullptr, 2},
    {"compver", required_argument, nullptr, 3},
    {"linenumber", required_argument, nullptr, 4},
    {"filename", required_argument, nullptr, 5},
    {"filepath", required_argument, nullptr, 6},
    {"threadid", required_argument, nullptr, 7},
    {"timestamp", required_argument, nullptr, 8},
    {"timedelta", required_argument, nullptr, 9},
    {"verbosity", required_argument, nullptr, 10},
    {"indent", required_argument, nullptr, 11},
    {"mutex", required_argument, nullptr, 12},
    {"truncation", required_argument, nullptr, 13},
    {"prefixwidth", required_argument, nullptr, kWidth},
    {"filter", required_argument, nullptr, kFilter},
    {nullptr, 0, nullptr, 0},
};

}  // namespace

// The first place stays for the program's name that getopt_long skips.
std::size_t tFloorConfiguration::cut(char const* text) {
  std::strncpy(copy, text, kMaxText - 1);
  std::size_t count = 1;
  words[0] = copy;
  char* rest = nullptr;
  for (char* word = strtok_r(copy, " ", &rest); word != nullptr && count + 1 < kMaxWords;
       word = strtok_r(nullptr, " ", &rest)) {
    words[count++] = word;
  }
  words[count] = nullptr;
  return count;
}

bool tFloorConfiguration::readOption(char const* const* word, char const* const* end) {
  char const* const name = *word + 2;
  char const* const value = word + 1 != end ? word[1] : "";
  for (std::size_t index = 0; index < kSwitchCount; ++index) {
    if (std::strcmp(name, kSwitches[index]) != 0) continue;
    switches[index] = std::strcmp(value, "off") == 0 ? 0 : 1;
    return true;
  }
  if (std::strcmp(name, "prefixwidth") == 0) {
    width = static_cast<unsigned>(std::strtoul(value, nullptr, 0));
    return true;
  }
  if (std::strcmp(name, "filter") != 0) return false;
  filter = value;
  return true;
}

int tFloorConfiguration::readByHand(char const* text) {
  std::size_t const count = cut(text);
  int known = 0;
  for (std::size_t index = 1; index < count; ++index) {
    char* const* const word = words.data() + index;
    if (std::strncmp(*word, "--", 2) != 0) continue;
    known += readOption(word, words.data() + count) ? 1 : 0;
  }
  return known;
}

int tFloorConfiguration::readByGetopt(char const* text) {
  int const count = static_cast<int>(cut(text));
  int known = 0;
  optind = 0;  // starts anew
  for (;;) {
    int const found = getopt_long(count, words.data(), "", kOptions, nullptr);
    if (found == -1) return known;
    if (found == '?') continue;
    ++known;
    char const* const value = optarg != nullptr ? optarg : "";
    if (found == kFilter) filter = value;
    if (found == kWidth) width = static_cast<unsigned>(std::strtoul(value, nullptr, 0));
    if (found < static_cast<int>(kSwitchCount)) {
      bool const isOff = std::strcmp(value, "off") == 0;
      switches[static_cast<std::size_t>(found)] = isOff ? 0 : 1;
    }
  }
}
