#include "format/formatText.h"

#include "irqlCheck.h"

namespace ntoshost {
namespace {

// c, s and Z are of the kind of the format (Z: bytes), C and S of the other one; a size letter
// decides.
template <class Character>
bool isWideText(Conversion const& conversion) {
  if (conversion.size == ArgumentSize::half) return false;
  if (conversion.size == ArgumentSize::wide) return true;
  if (conversion.letter == 'Z') return false;
  bool const isOther = conversion.letter == 'C' || conversion.letter == 'S';
  return (sizeof(Character) == sizeof(wchar_t)) != isOther;
}

template <class Character, class Source>
void putPadded(TextSink<Character>& sink, Conversion const& conversion, Source const* text,
               size_t length) {
  size_t const width = static_cast<size_t>(conversion.width);
  size_t const blanks = width > length ? width - length : 0;
  if (!conversion.isLeft) sink.fill(' ', blanks);
  putText(sink, text, length);
  if (conversion.isLeft) sink.fill(' ', blanks);
}

// Text that ends with a terminator, or where the precision says.
template <class Source, class Character>
void putString(TextSink<Character>& sink, Conversion const& conversion, void const* argument) {
  size_t const limit =
      conversion.precision < 0 ? SIZE_MAX : static_cast<size_t>(conversion.precision);
  Source const* const text = static_cast<Source const*>(argument);
  size_t length = 0;
  if (text == nullptr) {
    putPadded(sink, conversion, "(null)", limit < 6 ? limit : 6);
    return;
  }
  while (length < limit && text[length] != 0) ++length;
  putPadded(sink, conversion, text, length);
}

// A counted text: Length is in bytes.
template <class Counted, class Character>
void putCounted(TextSink<Character>& sink, Conversion const& conversion, void const* argument) {
  Counted const* const text = static_cast<Counted const*>(argument);
  if (text == nullptr || text->Buffer == nullptr) {
    putPadded(sink, conversion, "(null)", 6);
    return;
  }
  putPadded(sink, conversion, text->Buffer, text->Length / sizeof(*text->Buffer));
}

template <class Source, class Counted, class Character>
bool formatOf(TextSink<Character>& sink, Conversion const& conversion, FormatArguments& arguments) {
  switch (conversion.letter) {
    case 'c':
    case 'C': {
      Source const character = static_cast<Source>(arguments.nextI32());
      putPadded(sink, conversion, &character, 1);
      return true;
    }
    case 's':
    case 'S':
      putString<Source>(sink, conversion, arguments.nextPointer());
      return true;
    case 'Z':
      putCounted<Counted>(sink, conversion, arguments.nextPointer());
      return true;
    default:
      return false;
  }
}

bool isText(char letter) {
  return letter == 'c' || letter == 'C' || letter == 's' || letter == 'S' || letter == 'Z';
}

}  // namespace

template <class Character>
bool formatText(TextSink<Character>& sink, Conversion const& conversion,
                FormatArguments& arguments) {
  if (!isText(conversion.letter)) return false;
  if (!isWideText<Character>(conversion)) {
    return formatOf<char, ANSI_STRING>(sink, conversion, arguments);
  }
  requireIrqlAtMost(PASSIVE_LEVEL, "A format with UTF-16 text");
  return formatOf<wchar_t, UNICODE_STRING>(sink, conversion, arguments);
}

template bool formatText(TextSink<char>& sink, Conversion const& conversion,
                         FormatArguments& arguments);
template bool formatText(TextSink<wchar_t>& sink, Conversion const& conversion,
                         FormatArguments& arguments);

}  // namespace ntoshost
