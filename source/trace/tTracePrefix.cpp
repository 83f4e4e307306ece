#include "trace/tTracePrefix.h"

#include "trace/textWords.h"
#include "vexk/numberDigits.h"
#include "vexk/threadUtility.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kMostDigits = 20;  // of 64 bits in decimal
constexpr u64 kUnlimited = ~0ull;

u64 smaller(u64 left, u64 right) {
  return left < right ? left : right;
}

u64 getPadTarget(u32 minPrefixWidth) {
  return minPrefixWidth == 0 ? 0 : minPrefixWidth - 1;
}

// The slashes and backslashes among eight characters.
u64 markSlashes(char const* text) {
  u64 word = 0;
  __builtin_memcpy(&word, text, sizeof(word));
  return markCharacter(word, '/') | markCharacter(word, '\\');
}

// From the end: a name is shorter than the path before it.
char const* getLastPart(char const* path, char const* end) {
  char const* part = end;
  for (; part - path >= static_cast<i64>(sizeof(u64)); part -= sizeof(u64)) {
    u64 const marks = markSlashes(part - sizeof(u64));
    if (marks != 0) return part - __builtin_clzll(marks) / 8;
  }
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
  tLineShape const fields = shape;
#define OXDIAG_TRACE_FIELD(Name, name, place, atStart, word, field) \
  if (fields.isOn(tLineShape::k##Name) && beginField()) put##Name();
  OXDIAG_TRACE_SWITCHES(OXDIAG_TRACE_FIELD, OXDIAG_TRACE_NO_SWITCH, OXDIAG_TRACE_NO_SWITCH)
#undef OXDIAG_TRACE_FIELD
  bool const hasFields = shape.hasFields();
  cut();
  pad(hasFields ? '-' : ' ');
  if (!isWithoutEnd) close(hasFields ? ']' : ' ');
  flush();
}

// The room behind the text takes a separator, however full the text is. The field that follows
// makes room again; at the limit none does.
bool tTracePrefix::beginField() {
  if (flushed + used >= fieldLimit) return false;
  char* const to = text + used;
  to[0] = isFirst ? '[' : '-';
  to[1] = '-';
  used += isFirst ? 1 : 2;
  isFirst = false;
  return true;
}

void tTracePrefix::putComponentName() {
  put(facts.origin.component);
}

void tTracePrefix::putComponentVersion() {
  char version[tSSVersion::kMaxTextSize];
  put(facts.origin.version.toString(version));
}

void tTracePrefix::putLineNumber() {
  putDecimal(facts.origin.line);
}

void tTracePrefix::putFileName() {
  char const* const file = facts.origin.file;
  char const* const end = file + __builtin_strlen(file);
  char const* const part = shape.isOn(tLineShape::kFilePath) ? file : getLastPart(file, end);
  put(part, static_cast<u64>(end - part));
}

void tTracePrefix::putThreadId() {
  char digits[kMostDigits];
  char* const end = digits + sizeof(digits);
  char* begin = vexWriteHexadecimal(tThreadUtility::getCurrentThreadId(), end);
  *--begin = 'x';
  *--begin = '0';
  put(begin, static_cast<u64>(end - begin));
}

void tTracePrefix::putTimeStamp() {
  putDecimal(facts.startTime);
}

void tTracePrefix::putTimeDelta() {
  putDecimal(facts.timeDelta);
}

void tTracePrefix::putVerbosity() {
  putDecimal(facts.verbosity);
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

void tTracePrefix::putDecimal(u64 number) {
  char digits[kMostDigits];
  char* const end = digits + sizeof(digits);
  char const* const begin = vexWriteDecimal(number, end);
  put(begin, static_cast<u64>(end - begin));
}

// Fields are written whole, and lose what is beyond the limit before they go into the line.
void tTracePrefix::cut() {
  u64 const room = fieldLimit - flushed;
  if (used > room) used = room;
}

void tTracePrefix::pad(char character) {
  u64 const word = eightOf(character);
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
