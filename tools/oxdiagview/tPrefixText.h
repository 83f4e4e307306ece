#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace oxdiagview {

// The fields of a prefix, in the order in which a line shows them.
enum tField : uint32_t {
  kComponent,
  kVersion,
  kSourceLine,
  kFile,
  kThread,
  kStamp,
  kDelta,
  kVerbosity,
  kFieldCount,
};

// A set of fields: bit 1 << tField.
using tFieldSet = uint32_t;

// What a part of a prefix looks like.
enum class tLook : uint32_t { kNothing, kText, kFileName, kVersion, kNumber, kHexadecimal };

// A prefix cut into its parts, which are not yet known as fields. "[rack--17--a.cpp---] " has a
// text, a number and a file name.
class tPrefixText {
 public:
  // Two more than there are fields: a component or a file may have the separator in its name.
  static constexpr size_t kMostParts = kFieldCount + 2;

  // Characters; who sets a wider one has no trace to look at.
  static constexpr size_t kMostLength = 4096;

  // Reads the prefix at the beginning of `line`; false if there is none. The parts lie in `line`.
  bool read(std::string_view line);

  // Whether only a trace has it, and no other text with a bracket.
  bool isSure() const;

  // Makes one part of two neighbours that are texts, as far as there are any.
  bool joinTexts();

  size_t getCount() const { return count; }
  std::string_view getPart(size_t index) const { return parts[index]; }
  tLook getLook(size_t index) const { return looks[index]; }

  // Of the whole prefix, with what closes it.
  size_t getLength() const { return length; }

  // Without padding, so that the last part may have been cut.
  bool isFull() const { return padding == 0; }

  // With no more padding than a separator whose field was cut.
  bool isNearlyFull() const { return padding <= 2; }

  // The looks of all parts in one number: a 1 and then each look, the last in the lowest bits.
  static constexpr uint32_t kBitsOfALook = 3;
  uint32_t getSignature() const;

 private:
  bool cut(std::string_view content);

  std::array<std::string_view, kMostParts> parts;
  std::array<tLook, kMostParts> looks;
  size_t count = 0;
  size_t length = 0;
  size_t padding = 0;
};

// Where a prefix may end between two places of a line: at a "]" with a blank behind it, which a
// tool may have taken at the line's end. npos if there is none.
size_t findPrefixEnd(std::string_view line, size_t from, size_t to);

// The look of one part.
tLook lookOf(std::string_view part);

}  // namespace oxdiagview
