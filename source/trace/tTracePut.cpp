#include "oxdiagk/iTraceable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kAddressRadix = 16;
constexpr u32 kStatusTextSize = 1024;
constexpr u64 kNarrowedAtOnce = 64;  // units of a wide text

}  // namespace

tTrace& tTrace::putTerminated(char const* text) {
  if (isWriting() && text != nullptr) parts.buffer.append(text, __builtin_strlen(text), parts.slot);
  return *this;
}

tTrace& tTrace::put(char const* text, unsigned int length) {
  if (text != nullptr) append(text, length);
  return *this;
}

tTrace& tTrace::put(_STL::string const& text) {
  return put(text.c_str());
}

tTrace& tTrace::put(_STL::wstring const& text) {
  appendLowBytes(text.c_str(), text.size());
  return *this;
}

tTrace& tTrace::put(wchar_t const* text) {
  if (!isWriting() || text == nullptr) return *this;
  u64 length = 0;
  while (text[length] != 0) ++length;
  appendLowBytes(text, length);
  return *this;
}

void tTrace::appendLowBytes(wchar_t const* units, u64 count) {
  while (isWriting() && count != 0) {
    char bytes[kNarrowedAtOnce];
    u64 const taken = count < kNarrowedAtOnce ? count : kNarrowedAtOnce;
    for (u64 index = 0; index != taken; ++index) bytes[index] = static_cast<char>(units[index]);
    append(bytes, taken);
    units += taken;
    count -= taken;
  }
}

tTrace& tTrace::put(char character) {
  append(&character, 1);
  return *this;
}

tTrace& tTrace::put(signed char character) {
  return put(static_cast<char>(character));
}

tTrace& tTrace::put(unsigned char character) {
  return put(static_cast<char>(character));
}

tTrace& tTrace::put(bool value) {
  return put(value ? "true(1)" : "false(0)");
}

tTrace& tTrace::put(void const* address) {
  return put(reinterpret_cast<unsigned long long>(address), kAddressRadix);
}

tTrace& tTrace::put(void const volatile* address) {
  return put(const_cast<void const*>(address));
}

tTrace& tTrace::put(tMemBlockReferenceTemplate<char>& block) {
  return put(static_cast<void const*>(block.get()));
}

tTrace& tTrace::put(tSSVersion version) {
  char text[tSSVersion::kMaxTextSize];
  version.toStringInterface(text, sizeof(text));
  return put(text);
}

tTrace& tTrace::put(tStatus2& status) {
  return put(static_cast<tStatus2 const&>(status));
}

tTrace& tTrace::put(tStatus2 const& status) {
  if (!isWriting()) return *this;
  char text[kStatusTextSize];
  status.toString(text, sizeof(text));
  return put(text);
}

tTrace& tTrace::put(iTraceable const& object) {
  object.put(*this);
  return *this;
}

}  // namespace nOXDIAG100
