#include "support/tScript.h"

bool tScript::next() {
  while (position < input.size() && input[position] == '\n') ++position;
  if (position >= input.size()) return false;
  size_t const end = std::min(input.find('\n', position), input.size());
  first = input[position];
  rest = input.substr(position + 1, end - position - 1);
  position = end;
  return true;
}

char tScript::operation(std::string const& operations) const {
  if (operations.find(first) != std::string::npos) return first;
  return operations[static_cast<unsigned char>(first) % operations.size()];
}

unsigned tScript::number() {
  unsigned value = 0;
  size_t used = 0;
  for (; used < rest.size() && rest[used] >= '0' && rest[used] <= '9'; ++used) {
    value = value * 10 + static_cast<unsigned>(rest[used] - '0');
  }
  rest.erase(0, used + 1);
  return value;
}
