#include "format/formatNumber.h"

namespace ntoshost {
namespace {

constexpr i32 kPointerDigits = 16;

// A number on its way to text. The digits stand at the end of the buffer.
struct Number {
  u64 magnitude = 0;
  char sign = 0;
  u32 radix = 10;
  bool isUpper = false;
  char prefix[3] = "";
  char digits[24];
  size_t count = 0;

  char const* text() const { return digits + sizeof(digits) - count; }
};

u64 nextUnsigned(ArgumentSize size, FormatArguments& arguments) {
  if (size == ArgumentSize::quad) return static_cast<u64>(arguments.nextI64());
  u32 const value = static_cast<u32>(arguments.nextI32());
  return size == ArgumentSize::half ? static_cast<u16>(value) : value;
}

i64 nextSigned(ArgumentSize size, FormatArguments& arguments) {
  if (size == ArgumentSize::quad) return arguments.nextI64();
  i32 const value = arguments.nextI32();
  return size == ArgumentSize::half ? static_cast<i16>(value) : value;
}

void takeSigned(Number& number, Conversion const& conversion, FormatArguments& arguments) {
  i64 const value = nextSigned(conversion.size, arguments);
  number.magnitude = value < 0 ? 0 - static_cast<u64>(value) : static_cast<u64>(value);
  if (value < 0) {
    number.sign = '-';
  } else if (conversion.hasPlus) {
    number.sign = '+';
  } else if (conversion.hasBlank) {
    number.sign = ' ';
  }
}

void takeUnsigned(Number& number, Conversion const& conversion, FormatArguments& arguments) {
  number.magnitude = nextUnsigned(conversion.size, arguments);
  if (conversion.letter == 'u') return;
  number.radix = conversion.letter == 'o' ? 8 : 16;
  number.isUpper = conversion.letter == 'X';
  if (!conversion.isAlternate || number.radix != 16 || number.magnitude == 0) return;
  number.prefix[0] = '0';
  number.prefix[1] = conversion.letter;
}

void takePointer(Number& number, FormatArguments& arguments) {
  number.magnitude = reinterpret_cast<u64>(arguments.nextPointer());
  number.radix = 16;
  number.isUpper = true;
}

bool takeNumber(Number& number, Conversion const& conversion, FormatArguments& arguments) {
  switch (conversion.letter) {
    case 'd':
    case 'i':
      takeSigned(number, conversion, arguments);
      return true;
    case 'u':
    case 'o':
    case 'x':
    case 'X':
      takeUnsigned(number, conversion, arguments);
      return true;
    case 'p':
      takePointer(number, arguments);
      return true;
    default:
      return false;
  }
}

void makeDigits(Number& number) {
  char const* const alphabet = number.isUpper ? "0123456789ABCDEF" : "0123456789abcdef";
  for (u64 rest = number.magnitude; rest != 0; rest /= number.radix) {
    ++number.count;
    number.digits[sizeof(number.digits) - number.count] = alphabet[rest % number.radix];
  }
}

size_t least(i32 wanted, size_t have) {
  return wanted > 0 && static_cast<size_t>(wanted) > have ? static_cast<size_t>(wanted) - have : 0;
}

// Zeros that the precision or, without one, the width asks for.
size_t countZeros(Number const& number, Conversion const& conversion, size_t headLength) {
  if (conversion.letter == 'p') return least(kPointerDigits, number.count);
  if (conversion.precision >= 0) return least(conversion.precision, number.count);
  size_t const one = number.count == 0 ? 1 : 0;
  if (!conversion.hasZeros || conversion.isLeft) return one;
  size_t const zeros = least(conversion.width, headLength + number.count);
  return zeros > one ? zeros : one;
}

template <class Character>
void putNumber(TextSink<Character>& sink, Number const& number, Conversion const& conversion) {
  size_t const prefixLength = number.prefix[0] != 0 ? 2 : 0;
  size_t const headLength = prefixLength + (number.sign != 0 ? 1 : 0);
  size_t zeros = countZeros(number, conversion, headLength);
  if (number.radix == 8 && conversion.isAlternate && zeros == 0) zeros = 1;
  size_t const blanks = least(conversion.width, headLength + zeros + number.count);
  if (!conversion.isLeft) sink.fill(' ', blanks);
  if (number.sign != 0) sink.fill(number.sign, 1);
  putText(sink, number.prefix, prefixLength);
  sink.fill('0', zeros);
  putText(sink, number.text(), number.count);
  if (conversion.isLeft) sink.fill(' ', blanks);
}

}  // namespace

template <class Character>
bool formatNumber(TextSink<Character>& sink, Conversion const& conversion,
                  FormatArguments& arguments) {
  Number number;
  if (!takeNumber(number, conversion, arguments)) return false;
  makeDigits(number);
  putNumber(sink, number, conversion);
  return true;
}

template bool formatNumber(TextSink<char>& sink, Conversion const& conversion,
                           FormatArguments& arguments);
template bool formatNumber(TextSink<wchar_t>& sink, Conversion const& conversion,
                           FormatArguments& arguments);

}  // namespace ntoshost
