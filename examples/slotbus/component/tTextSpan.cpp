#include "slotbus/component/tTextSpan.h"

#include "slotbus/component/component.h"

namespace nSLOTBUS100 {
namespace {

bool isBlank(char character) {
  return character == ' ' || character == '\t';
}

}  // namespace

tTextSpan tTextSpan::getFirst(size_t count) const {
  return tTextSpan(text, count < length ? count : length);
}

tTextSpan tTextSpan::getBehind(size_t count) const {
  OXDIAG_REQUIRE(count <= length);
  return tTextSpan(text + count, length - count);
}

tTextSpan tTextSpan::getTrimmed() const {
  size_t begin = 0;
  size_t end = length;
  while (begin < end && isBlank(text[begin])) {
    ++begin;
  }
  while (end > begin && isBlank(text[end - 1])) {
    --end;
  }
  return tTextSpan(text + begin, end - begin);
}

bool tTextSpan::contains(char wanted) const {
  for (size_t index = 0; index < length; ++index) {
    if (text[index] == wanted) {
      return true;
    }
  }
  return false;
}

bool tTextSpan::beginsWith(char const* prefix) const {
  size_t const wanted = __builtin_strlen(prefix);
  return wanted <= length && (wanted == 0 || __builtin_memcmp(text, prefix, wanted) == 0);
}

tTextSpan tTextSpan::takeUntil(char separator) {
  size_t count = 0;
  while (count < length && text[count] != separator) {
    ++count;
  }
  tTextSpan const taken(text, count);
  size_t const skipped = count < length ? count + 1 : count;
  *this = getBehind(skipped);
  return taken;
}

}  // namespace nSLOTBUS100
