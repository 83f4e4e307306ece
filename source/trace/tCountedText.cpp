#include "oxdiagk/tCountedText.h"

#include "oxdiagk/tTrace.h"
#include "trace/fixedDigits.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kMostEscape = 6;  // \u and four digits
constexpr u32 kFull = 90;       // characters; a piece of more goes on

// Texts within packed structures may begin at an odd address.
u32 readUnit(void const* text, u32 index) {
  wchar_t unit = 0;
  __builtin_memcpy(&unit, static_cast<wchar_t const*>(text) + index, sizeof(unit));
  return unit;
}

// Collects characters, so that the stream gets them in larger pieces.
class tEscapedText {
 public:
  explicit tEscapedText(tTrace& trace) : trace(trace) {}
  ~tEscapedText() { flush(); }

  tEscapedText(tEscapedText const&) = delete;
  tEscapedText& operator=(tEscapedText const&) = delete;

  void append(u32 unit, char letter, u32 digits) {
    if (used > kFull) flush();
    if (unit >= ' ' && unit <= '~') {
      text[used++] = static_cast<char>(unit);
      return;
    }
    text[used++] = '\\';
    text[used++] = letter;
    writeFixedDigits(unit, 16, digits, text + used);
    used += digits;
  }

 private:
  void flush() {
    trace.put(text, used);
    used = 0;
  }

  tTrace& trace;
  unsigned int used = 0;
  char text[kFull + 2 * kMostEscape];
};

}  // namespace

tCountedText::tCountedText() : tCountedText(static_cast<char const*>(nullptr), 1) {
}

tCountedText::tCountedText(wchar_t const* units, u32 length)
    : text(units), length(length), isWide(true) {
}

tCountedText::tCountedText(char const* bytes, u32 length)
    : text(bytes), length(length), isWide(false) {
}

void tCountedText::put(tTrace& trace) const {
  if (!trace.isLineShown() || length == 0) return;
  if (text == nullptr) {
    trace.put("(null)");
    return;
  }
  {
    tEscapedText escaped(trace);
    u32 const count = isWide ? length / sizeof(wchar_t) : length;
    for (u32 index = 0; index < count; ++index) {
      if (isWide) {
        escaped.append(readUnit(text, index), 'u', 4);
      } else {
        escaped.append(static_cast<u8 const*>(text)[index], 'x', 2);
      }
    }
  }
  if (isWide && length % sizeof(wchar_t) != 0) {
    trace.put(" (odd length ").put(length, 10).put(")");
  }
}

}  // namespace nOXDIAG100
