#include "oxdiagk/iTraceable.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kAddressRadix = 16;
constexpr u32 kStatusTextSize = 1024;

}  // namespace

tTrace& tTrace::put(char const* text) {
  append(text);
  return *this;
}

tTrace& tTrace::put(char const* text, unsigned int length) {
  append(text, length);
  return *this;
}

tTrace& tTrace::put(_STL::string const& text) {
  return put(text.c_str());
}

tTrace& tTrace::put(_STL::wstring const& text) {
  for (size_t index = 0; index < text.size(); ++index) put(static_cast<char>(text[index]));
  return *this;
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
