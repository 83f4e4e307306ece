#include "support/tFormatModel.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr i64 kLargestCount = 1'000'000;   // what is larger counts as this
constexpr char kUnitWithoutLowByte = '@';  // in wide text
constexpr size_t kEnough = 2048;           // characters that no buffer has room for

// Where the C library agrees.
constexpr i64 kLargestCommonCount = 100'000;

bool isOneOf(char character, char const* characters) {
  return character != 0 && std::strchr(characters, character) != nullptr;
}

std::string digitsOf(u64 magnitude, unsigned radix, bool isCapital) {
  std::string text;
  for (; magnitude != 0; magnitude /= radix) {
    text.insert(text.begin(),
                (isCapital ? "0123456789ABCDEF" : "0123456789abcdef")[magnitude % radix]);
  }
  return text;
}

// So many characters, or enough of them.
std::string run(char character, i64 count) {
  return std::string(static_cast<size_t>(std::clamp<i64>(count, 0, kEnough)), character);
}

}  // namespace

tFormatModel::tFormatModel(std::string const& format, tFormatValues const& values)
    : format(format), values(values) {
  for (size_t position = 0; position < format.size();) {
    if (format[position] != '%') {
      output += format[position++];
    } else if (!convert(++position)) {
      break;
    }
  }
}

// False when the rest of the format is dropped.
bool tFormatModel::convert(size_t& position) {
  tConversion const conversion = read(position);
  if (!isCommonConversion(conversion)) common = false;
  if (conversion.letter == 0) return false;
  write(conversion);
  return isOneOf(conversion.letter, "%diuoxXscpeEfFgG");
}

tFormatModel::tConversion tFormatModel::read(size_t& position) {
  auto const at = [&] { return position < format.size() ? format[position] : '\0'; };
  tConversion conversion;
  readFlags(conversion, position);
  conversion.width = readCount(position);
  if (conversion.width < 0) {
    conversion.isLeft = true;
    conversion.width = -conversion.width;
  }
  if (at() == '.') conversion.precision = std::max<i64>(readCount(++position), -1);
  if (isOneOf(at(), "hlL")) conversion.length = format[position++];
  conversion.letter = at();
  if (conversion.letter != 0) ++position;
  return conversion;
}

void tFormatModel::readFlags(tConversion& conversion, size_t& position) {
  for (; position < format.size() && isOneOf(format[position], "-+ #0"); ++position) {
    conversion.isLeft = conversion.isLeft || format[position] == '-';
    conversion.hasPlus = conversion.hasPlus || format[position] == '+';
    conversion.hasBlank = conversion.hasBlank || format[position] == ' ';
    conversion.isAlternate = conversion.isAlternate || format[position] == '#';
    conversion.hasZeros = conversion.hasZeros || format[position] == '0';
  }
}

// Digits, an argument, or nothing, which is 0.
i64 tFormatModel::readCount(size_t& position) {
  if (position < format.size() && format[position] == '*') {
    ++position;
    return static_cast<i32>(takeNumber());
  }
  i64 count = 0;
  for (; position < format.size() && isOneOf(format[position], "0123456789"); ++position) {
    count = std::min(count * 10 + (format[position] - '0'), kLargestCount);
  }
  return count;
}

void tFormatModel::write(tConversion const& conversion) {
  switch (conversion.letter) {
    case '%':
      output += '%';
      break;
    case 'c':
    case 'p':
      takeNumber();
      break;
    case 's':
      writeText(conversion);
      break;
    default:
      if (isOneOf(conversion.letter, "diuoxX")) {
        writeNumber(conversion);
      } else if (isOneOf(conversion.letter, "eEfFgG")) {
        output += std::string("<<'") + conversion.letter + "' not supported>>";
      } else {
        output += std::string("<<invalid conversion specifier '") + conversion.letter + "'>>";
      }
      break;
  }
}

// head, zeros and digits; the prefix of an octal number is one of the zeros.
void tFormatModel::writeNumber(tConversion const& conversion) {
  u64 const argument = takeNumber();
  bool const isHalf = conversion.length == 'h';
  bool const isSigned = isOneOf(conversion.letter, "di");
  bool const isHexadecimal = isOneOf(conversion.letter, "xX");
  bool const isOctal = conversion.letter == 'o';
  i64 value = isHalf ? static_cast<u16>(argument) : static_cast<u32>(argument);
  if (isSigned) value = isHalf ? static_cast<i16>(argument) : static_cast<i32>(argument);
  std::string head;
  if (!isHexadecimal && !isOctal) {
    head = value < 0 ? "-" : (conversion.hasPlus ? "+" : (conversion.hasBlank ? " " : ""));
  }
  if (isHexadecimal && conversion.isAlternate && value != 0)
    head = std::string("0") + conversion.letter;
  unsigned const radix = isHexadecimal ? 16 : (isOctal ? 8 : 10);
  std::string const digits =
      digitsOf(static_cast<u64>(value < 0 ? -value : value), radix, conversion.letter == 'X');
  i64 const digitCount = static_cast<i64>(digits.size());
  i64 zeros = std::max<i64>(0, (conversion.precision < 0 ? 1 : conversion.precision) - digitCount);
  if (isOctal && conversion.isAlternate) zeros = std::max<i64>(zeros, 1);
  if (conversion.hasZeros && conversion.precision < 0 && !conversion.isLeft) {
    zeros = std::max(zeros, conversion.width - digitCount - static_cast<i64>(head.size()));
  }
  i64 const blanks = conversion.width - zeros - digitCount - static_cast<i64>(head.size());
  if (!conversion.isLeft) output += run(' ', blanks);
  output += head + run('0', zeros) + digits;
  if (conversion.isLeft) output += run(' ', blanks);
}

// The text as it may be read: up to its terminator, or to the precision if that comes first.
void tFormatModel::writeText(tConversion const& conversion) {
  size_t const number = usedTexts++;
  bool const isNull = values.hasNull && number % 2 != 0;
  if (isNull) common = false;
  std::string text;
  if (!isNull && !values.texts.empty()) text = values.texts[number % values.texts.size()];
  bool const isWide = conversion.length == 'l';
  if (isWide) std::ranges::replace(text, kUnitWithoutLowByte, '\0');
  bool const isCut =
      conversion.precision >= 0 && static_cast<u64>(conversion.precision) <= text.size();
  if (isCut) text.resize(static_cast<size_t>(conversion.precision));
  std::string bytes;
  for (size_t index = 0; index < text.size(); ++index) {
    bytes += text[index];
    if (isWide) bytes += static_cast<char>(1 + index % 3);  // the high byte, which is dropped
  }
  if (!isCut) bytes += isWide ? std::string(2, '\0') : std::string(1, '\0');
  arguments.push_back(isNull ? 0 : addBlock(bytes));
  writePadded(conversion, text);
}

void tFormatModel::writePadded(tConversion const& conversion, std::string const& text) {
  i64 const blanks = conversion.width - static_cast<i64>(text.size());
  if (!conversion.isLeft) output += run(' ', blanks);
  output += text;
  if (conversion.isLeft) output += run(' ', blanks);
}

// Letters and flags that the C standard defines together, and moderate counts.
bool tFormatModel::isCommonConversion(tConversion const& conversion) const {
  bool const isSigned = isOneOf(conversion.letter, "di");
  bool const isUnsigned = isOneOf(conversion.letter, "uoxX");
  if (!isSigned && !isUnsigned && !isOneOf(conversion.letter, "s%")) return false;
  if (isOneOf(conversion.length, "lL")) return false;
  if (conversion.width > kLargestCommonCount) return false;
  if (conversion.precision > kLargestCommonCount) return false;
  if (!isSigned && (conversion.hasPlus || conversion.hasBlank)) return false;
  if (conversion.isAlternate && !isOneOf(conversion.letter, "oxX")) return false;
  if (isSigned || isUnsigned) return true;
  if (conversion.hasZeros || conversion.length != 0) return false;
  bool const isBare = conversion.width == 0 && conversion.precision < 0 && !conversion.isLeft;
  return conversion.letter == 's' || isBare;
}

u64 tFormatModel::takeNumber() {
  u64 const number =
      values.numbers.empty() ? usedNumbers : values.numbers[usedNumbers % values.numbers.size()];
  ++usedNumbers;
  arguments.push_back(number);
  return number;
}

u64 tFormatModel::addBlock(std::string const& bytes) {
  blocks.emplace_back(new char[bytes.size()]);
  std::memcpy(blocks.back().get(), bytes.data(), bytes.size());
  return reinterpret_cast<u64>(blocks.back().get());
}
