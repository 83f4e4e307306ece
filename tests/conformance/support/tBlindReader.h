#pragma once

// A client's own reader, as somebody writes it who gets his bytes piece by piece.

#include "qelmk/iObjectReader.h"
#include "qelmk/tBinaryObjectReader.h"

// Takes the bytes of a binary stream, but cannot tell how many of them are left, and pays no heed
// to the length of an object's content. What fails within an object leaves it there.
class tBlindReader : public nQELM100::iObjectReader {
 public:
  tBlindReader(void const* stream, size_t size, i32& status) : reader(stream, size, status) {}
  virtual ~tBlindReader() = default;

  size_t getPosition() const { return reader.getPosition(); }

  void readCharacter(char& value, i32& status) override;
  void readI32(i32& value, i32& status) override;
  void readU32(u32& value, i32& status) override;
  void readI64(i64& value, i32& status) override;
  void readU64(u64& value, i32& status) override;
  void readString(_STL::string& value, i32& status) override;
  void readWideString(_STL::wstring& value, i32& status) override;
  nQELM100::tObject* readObject(i32& status) override;
  u64 getMostItems() const override { return kUnlimitedItems; }

 protected:
  // Called in front of each item and behind it.
  virtual void atItem() {}

 private:
  template <class tValue>
  void readItem(void (nQELM100::tBinaryObjectReader::*read)(tValue&, i32&), tValue& value,
                i32& status);
  u32 readNameLength(i32& status);
  nQELM100::tObject* makeObject(u32 nameLength, i32& status);

  nQELM100::tBinaryObjectReader reader;
  u32 depth = 0;
};
