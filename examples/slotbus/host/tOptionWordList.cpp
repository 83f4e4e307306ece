#include "slotbus/host/tOptionWordList.h"

tOptionWordList::tOptionWordList(std::string const& text) {
  configure(text.c_str());
}

tOptionWordList::~tOptionWordList() = default;

bool tOptionWordList::hasPair(std::string_view first, std::string_view second) const {
  for (size_t index = 1; index < words.size(); ++index) {
    if (words[index - 1] == first && words[index] == second) return true;
  }
  return false;
}

void tOptionWordList::configure(int argc, char** argv) {
  if (argv != nullptr) words.assign(argv, argv + argc);
}

// It has no settings of its own, so there is nothing to tell, to keep and to restore.
void tOptionWordList::configure() {
}

void tOptionWordList::inquire(char* buffer, unsigned int size, unsigned int* needed) {
  if (buffer != nullptr && size != 0) buffer[0] = '\0';
  if (needed != nullptr) *needed = 1;
}

void tOptionWordList::pushConfiguration() {
}

void tOptionWordList::popConfiguration() {
}
