#include "format/conversion.h"

namespace ntoshost {
namespace {

template <class Character>
bool readFlag(Character const*& format, Conversion& conversion) {
  switch (*format) {
    case '-':
      conversion.isLeft = true;
      break;
    case '+':
      conversion.hasPlus = true;
      break;
    case ' ':
      conversion.hasBlank = true;
      break;
    case '#':
      conversion.isAlternate = true;
      break;
    case '0':
      conversion.hasZeros = true;
      break;
    default:
      return false;
  }
  ++format;
  return true;
}

template <class Character>
i32 readCount(Character const*& format, FormatArguments& arguments) {
  if (*format == '*') {
    ++format;
    return arguments.nextI32();
  }
  i32 count = 0;
  for (; *format >= '0' && *format <= '9'; ++format) {
    if (count < 100'000) count = count * 10 + (*format - '0');
  }
  return count;
}

template <class Character>
void readWidth(Character const*& format, FormatArguments& arguments, Conversion& conversion) {
  conversion.width = readCount(format, arguments);
  if (conversion.width >= 0) return;
  conversion.isLeft = true;
  conversion.width = conversion.width == INT32_MIN ? INT32_MAX : -conversion.width;
}

template <class Character>
void readPrecision(Character const*& format, FormatArguments& arguments, Conversion& conversion) {
  if (*format != '.') return;
  ++format;
  conversion.precision = readCount(format, arguments);
  if (conversion.precision < 0) conversion.precision = -1;
}

template <class Character>
bool skip(Character const*& format, char const* letters) {
  size_t length = 0;
  for (; letters[length] != 0; ++length) {
    if (format[length] != static_cast<Character>(letters[length])) return false;
  }
  format += length;
  return true;
}

template <class Character>
ArgumentSize readSize(Character const*& format) {
  if (skip(format, "I64") || skip(format, "ll")) return ArgumentSize::quad;
  if (skip(format, "I32")) return ArgumentSize::word;
  if (skip(format, "I")) return ArgumentSize::quad;
  if (skip(format, "h")) return ArgumentSize::half;
  if (skip(format, "l") || skip(format, "w")) return ArgumentSize::wide;
  return ArgumentSize::none;
}

}  // namespace

template <class Character>
Conversion readConversion(Character const*& format, FormatArguments& arguments) {
  Conversion conversion;
  while (readFlag(format, conversion)) {
  }
  readWidth(format, arguments, conversion);
  readPrecision(format, arguments, conversion);
  conversion.size = readSize(format);
  conversion.letter = *format > 0 && *format < 0x7F ? static_cast<char>(*format) : '\0';
  if (*format != 0) ++format;
  return conversion;
}

template Conversion readConversion(char const*& format, FormatArguments& arguments);
template Conversion readConversion(wchar_t const*& format, FormatArguments& arguments);

}  // namespace ntoshost
