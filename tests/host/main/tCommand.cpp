#include "tCommand.h"

#include <cstdlib>

namespace {

bool readNumber(std::string const& text, u64& number) {
  char* end = nullptr;
  number = std::strtoull(text.c_str(), &end, 10);
  return !text.empty() && *end == 0;
}

}  // namespace

tCommand::tCommand(int argc, char** argv) {
  for (int i = 1; i < argc && mode != kWrong; ++i) {
    std::string const word = argv[i];
    if (word == "--fail-each-call") {
      mode = kFailEachCall;
    } else if (i + 1 == argc || !take(word, argv[++i])) {
      mode = kWrong;
    }
  }
}

bool tCommand::take(std::string const& word, std::string const& value) {
  if (word == "--rounds") return readNumber(value, rounds);
  if (word == "--repeats") return readNumber(value, repeats);
  if (word == "--call") return readNumber(value, call);
  if (word == "--seed") return readNumber(value, seed);
  if (word == "--test") {
    test = value;
  } else if (word == "--points") {
    points = value;
  } else if (word == "--below") {
    below = value;
  } else if (word == "--fail-randomly") {
    mode = kFailRandomly;
    return readNumber(value, seconds);
  } else if (word == "--at-level") {
    mode = kAtLevel;
    level = value;
    return level == "apc" || level == "dispatch";
  } else {
    return false;
  }
  return true;
}
