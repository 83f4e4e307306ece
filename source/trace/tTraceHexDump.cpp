#include "oxdiagk/tTrace.h"

namespace nOXDIAG100 {
namespace {

constexpr u32 kBytesPerRow = 16;
constexpr u32 kAddressDigits = 16;
constexpr u32 kDigitsPerByte = 2;

// The address, two times ": ", a group for every byte, the characters and the newline.
constexpr u32 kRowSize =
    kAddressDigits + 2 + kBytesPerRow * (kDigitsPerByte + 1) + 2 + kBytesPerRow + 1;

// One line of a dump. Groups are `unitSize` bytes wide; a row has as many as 16 bytes hold.
class tHexDumpRow {
 public:
  explicit tHexDumpRow(u32 unitSize)
      : unitSize(unitSize), bytesPerRow(kBytesPerRow / unitSize * unitSize) {}

  u32 getCapacity() const { return bytesPerRow; }
  char const* getText() const { return text; }
  u32 getLength() const { return textLength; }

  void write(u8 const* bytes, u32 length) {
    textLength = 0;
    writeNumber(reinterpret_cast<u64>(bytes), kAddressDigits);
    writeColon();
    for (u32 offset = 0; offset < bytesPerRow; offset += unitSize) {
      writeGroup(bytes, offset, length);
      writeCharacter(' ');
    }
    writeColon();
    for (u32 index = 0; index < length; ++index) writeByteCharacter(bytes[index]);
    writeCharacter('\n');
  }

 private:
  void writeCharacter(char character) { text[textLength++] = character; }

  void writeColon() {
    writeCharacter(':');
    writeCharacter(' ');
  }

  void writeNumber(u64 value, u32 digits) {
    while (digits-- != 0) writeCharacter("0123456789ABCDEF"[value >> (4 * digits) & 0xF]);
  }

  void writeByteCharacter(u8 byte) {
    bool const isPrintable = byte >= 0x20 && byte <= 0x7E;
    writeCharacter(isPrintable ? static_cast<char>(byte) : '.');
  }

  void writeGroup(u8 const* bytes, u32 offset, u32 length) {
    bool const isNumber = (unitSize == 4 || unitSize == 2) && offset + unitSize <= length;
    for (u32 position = 0; position < unitSize; ++position) {
      // A little-endian number shows its last byte first.
      u32 const index = offset + (isNumber ? unitSize - 1 - position : position);
      if (index < length) {
        writeNumber(bytes[index], kDigitsPerByte);
      } else {
        writeCharacter('X');
        writeCharacter('X');
      }
    }
  }

  u32 const unitSize;
  u32 const bytesPerRow;
  u32 textLength = 0;
  char text[kRowSize];
};

u32 smaller(u32 left, u32 right) {
  return left < right ? left : right;
}

}  // namespace

tTrace& tTrace::put(void const* address, u32 length, u32 unitSize) {
  if (!isWriting() || address == nullptr || length == 0) return *this;
  u32 const unit = smaller(smaller(length, unitSize == 0 ? 1 : unitSize), kBytesPerRow);
  tHexDumpRow row(unit);
  u8 const* bytes = static_cast<u8 const*>(address);
  while (length != 0) {
    u32 const count = smaller(length, row.getCapacity());
    row.write(bytes, count);
    append(row.getText(), row.getLength());
    bytes += count;
    length -= count;
  }
  return *this;
}

tTrace& tTrace::put(void* address, u32 length, u32 unitSize) {
  return put(static_cast<void const*>(address), length, unitSize);
}

}  // namespace nOXDIAG100
