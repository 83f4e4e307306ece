#include "trace/tTracePrefix.h"

#include "trace/copyText.h"
#include "vexk/number.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kDecimal = 10;
constexpr u32 kHexadecimal = 16;
constexpr u64 kUnlimited = ~0ull;
constexpr u64 kLowBits = 0x0101010101010101;

u64 smaller(u64 left, u64 right) {
  return left < right ? left : right;
}

u64 getPadTarget(u32 minPrefixWidth) {
  return minPrefixWidth == 0 ? 0 : minPrefixWidth - 1;
}

// From the end: a name is shorter than the path before it.
char const* getLastPart(char const* path, char const* end) {
  char const* part = end;
  while (part != path && part[-1] != '/' && part[-1] != '\\') --part;
  return part;
}

}  // namespace

tTracePrefix::tTracePrefix(tTraceParts& parts, tLineShape shape, tLineFacts const& facts)
    : tTracePrefix(parts, shape, facts, shape.getWidth(), shape.isOn(tLineShape::kTruncation)) {
}

tTracePrefix::tTracePrefix(tTraceParts& parts, tLineShape shape, tLineFacts const& facts, u32 width,
                           bool isTruncated)
    : parts(parts),
      shape(shape),
      facts(facts),
      padTarget(getPadTarget(width)),
      fieldLimit(isTruncated ? padTarget : kUnlimited),
      isWithoutEnd(isTruncated && width == 0) {
}

void tTracePrefix::write() {
#define OXDIAG_TRACE_FIELD(Name, name, place, atStart, word, field) \
  if (beginField(tLineShape::k##Name)) put##Name();
  OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_FIELD, OXDIAG_TRACE_NO_SWITCH, OXDIAG_TRACE_NO_SWITCH)
#undef OXDIAG_TRACE_FIELD
  bool const hasFields = shape.hasFields();
  cut();
  pad(hasFields ? '-' : ' ');
  if (!isWithoutEnd) close(hasFields ? ']' : ' ');
  flush();
}

// The room behind the text takes a separator, however full the text is.
bool tTracePrefix::beginField(tLineShape::tSwitch field) {
  if (!shape.isOn(field)) return false;
  char* const to = text + used;
  to[0] = isFirst ? '[' : '-';
  to[1] = '-';
  used += isFirst ? 1 : 2;
  isFirst = false;
  return flushed + used < fieldLimit;
}

void tTracePrefix::putComponentName() {
  put(facts.origin.component);
}

void tTracePrefix::putComponentVersion() {
  char text[tSSVersion::kMaxTextSize];
  put(facts.origin.version.toString(text));
}

void tTracePrefix::putLineNumber() {
  putNumber(facts.origin.line, kDecimal);
}

void tTracePrefix::putFileName() {
  char const* const file = facts.origin.file;
  char const* const end = file + __builtin_strlen(file);
  char const* const part = shape.isOn(tLineShape::kFilePath) ? file : getLastPart(file, end);
  put(part, static_cast<u64>(end - part));
}

void tTracePrefix::putThreadId() {
  put("0x", 2);
  putNumber(tThreadUtility::getCurrentThreadId(), kHexadecimal);
}

void tTracePrefix::putTimeStamp() {
  putNumber(facts.startTime, kDecimal);
}

void tTracePrefix::putTimeDelta() {
  putNumber(facts.timeDelta, kDecimal);
}

void tTracePrefix::putVerbosity() {
  putNumber(facts.verbosity, kDecimal);
}

void tTracePrefix::put(char const* piece) {
  put(piece, __builtin_strlen(piece));
}

inline void tTracePrefix::put(char const* piece, u64 length) {
  if (used + length > kTextSize) return putLong(piece, length);
  copyText(text + used, piece, length);
  used += length;
}

void tTracePrefix::putLong(char const* piece, u64 length) {
  cut();
  flush();
  u64 const taken = smaller(length, fieldLimit - flushed);
  parts.buffer.append(piece, taken, parts.slot);
  flushed += taken;
}

void tTracePrefix::putNumber(u64 number, u32 radix) {
  char digits[kNumberTextSize];
  u32 const length = vexNumberToText(number, radix, digits);
  put(digits, length);
}

// Fields are written whole, and lose what is beyond the limit before they go into the line.
void tTracePrefix::cut() {
  u64 const room = fieldLimit - flushed;
  if (used > room) used = room;
}

void tTracePrefix::pad(char character) {
  u64 const word = kLowBits * static_cast<u8>(character);
  while (flushed + used < padTarget) {
    if (used >= kTextSize) flush();
    u64 const length = smaller(padTarget - flushed - used, kTextSize - used);
    char* const to = text + used;
    for (u64 done = 0; done < length; done += sizeof(word)) {
      __builtin_memcpy(to + done, &word, sizeof(word));
    }
    used += length;
  }
}

void tTracePrefix::close(char first) {
  text[used++] = first;
  text[used++] = ' ';
}

void tTracePrefix::flush() {
  parts.buffer.append(text, used, parts.slot);
  flushed += used;
  used = 0;
}

}  // namespace nOXDIAG100
