#include "format/textSink.h"

#include "ntos/types.h"

namespace ntoshost {
namespace {

constexpr u32 kReplacement = 0xFFFD;

bool isHighSurrogate(u32 unit) {
  return unit >= 0xD800 && unit < 0xDC00;
}
bool isLowSurrogate(u32 unit) {
  return unit >= 0xDC00 && unit < 0xE000;
}

// The code point at `at`, which moves behind it. Half a pair is replaced.
u32 readCodePoint(wchar_t const* text, size_t length, size_t& at) {
  u32 const unit = static_cast<u16>(text[at++]);
  if (!isHighSurrogate(unit)) return isLowSurrogate(unit) ? kReplacement : unit;
  if (at == length || !isLowSurrogate(static_cast<u16>(text[at]))) return kReplacement;
  u32 const low = static_cast<u16>(text[at++]);
  return 0x10000 + ((unit - 0xD800) << 10 | (low - 0xDC00));
}

void putContinuation(TextSink<char>& sink, u32 codePoint, u32 shift) {
  sink.put(static_cast<char>(0x80 | (codePoint >> shift & 0x3F)));
}

void putCodePoint(TextSink<char>& sink, u32 codePoint) {
  if (codePoint < 0x80) {
    sink.put(static_cast<char>(codePoint));
    return;
  }
  if (codePoint < 0x800) {
    sink.put(static_cast<char>(0xC0 | codePoint >> 6));
  } else if (codePoint < 0x10000) {
    sink.put(static_cast<char>(0xE0 | codePoint >> 12));
    putContinuation(sink, codePoint, 6);
  } else {
    sink.put(static_cast<char>(0xF0 | codePoint >> 18));
    putContinuation(sink, codePoint, 12);
    putContinuation(sink, codePoint, 6);
  }
  putContinuation(sink, codePoint, 0);
}

}  // namespace

void putText(TextSink<char>& sink, char const* text, size_t length) {
  for (size_t at = 0; at < length; ++at) sink.put(text[at]);
}

void putText(TextSink<char>& sink, wchar_t const* text, size_t length) {
  for (size_t at = 0; at < length;) putCodePoint(sink, readCodePoint(text, length, at));
}

void putText(TextSink<wchar_t>& sink, char const* text, size_t length) {
  for (size_t at = 0; at < length; ++at) sink.put(static_cast<u8>(text[at]));
}

void putText(TextSink<wchar_t>& sink, wchar_t const* text, size_t length) {
  for (size_t at = 0; at < length; ++at) sink.put(text[at]);
}

}  // namespace ntoshost
