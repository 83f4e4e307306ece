#pragma once

// A stream in memory that keeps every item with its kind, so that a test sees what was written item
// by item, and writes forms by hand. It can end early at any item.

#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"
#include "qelmk/tClass.h"

class tItemStream final : public nQELM100::iObjectWriter, public nQELM100::iObjectReader {
 public:
  static constexpr u32 kCapacity = 1024;
  static constexpr i32 kStatusEnded = -77001;      // no item left, or no room for one
  static constexpr i32 kStatusWrongKind = -77002;  // the item is of another kind

  // An object is one item with its class, followed by what its writeExternal writes.
  // A 64-bit value is two items, the lower half first; a text is its length, followed by its
  // characters.
  enum tKind : u32 {
    kCharacter,
    kI32,
    kU32,
    kObject,
    kNullObject,
    kI64,
    kU64,
    kString,
    kWideString
  };
  struct tItem {
    tKind kind;
    u32 value;

    bool operator==(tItem const& other) const = default;
  };

  constexpr tItemStream() = default;

  u32 getCount() const { return count; }
  tItem getItem(u32 index) const { return items[index]; }
  u32 getPosition() const { return position; }  // of the next item to be read

  // Makes it a stream without items and without early end.
  void clear();

  // Reads from the first item on.
  void rewind() { position = 0; }

  // The stream ends in front of the item with this index, for writing and for reading.
  void endAt(u32 index) { end = index; }

  // Puts an item by hand, or an item into the middle.
  void put(tItem item);
  void insert(u32 index, tItem item);
  void replace(u32 index, u32 value) { items[index].value = value; }
  void erase(u32 index);

  void writeCharacter(char value, i32& status) override;
  void writeI32(i32 value, i32& status) override;
  void writeU32(u32 value, i32& status) override;
  void writeI64(i64 value, i32& status) override;
  void writeU64(u64 value, i32& status) override;
  void writeString(_STL::string const& value, i32& status) override;
  void writeWideString(_STL::wstring const& value, i32& status) override;
  void writeObject(nQELM100::tObject const* object, i32& status) override;

  void readCharacter(char& value, i32& status) override;
  void readI32(i32& value, i32& status) override;
  void readU32(u32& value, i32& status) override;
  void readI64(i64& value, i32& status) override;
  void readU64(u64& value, i32& status) override;
  void readString(_STL::string& value, i32& status) override;
  void readWideString(_STL::wstring& value, i32& status) override;
  nQELM100::tObject* readObject(i32& status) override;
  u64 getMostItems() const override;

 private:
  static constexpr u32 kClassCapacity = 8;

  void write(tKind kind, u32 value, i32& status);
  bool read(tKind kind, u32& value, i32& status);
  void writeHalves(tKind kind, u64 value, i32& status);
  bool readHalves(tKind kind, u64& value, i32& status);
  template <class tText>
  void writeText(tKind kind, tText const& value, i32& status);
  template <class tText>
  void readText(tKind kind, tText& value, i32& status);
  u32 findClass(nQELM100::tClass const& wanted);

  tItem items[kCapacity] = {};
  u32 count = 0;
  u32 position = 0;
  u32 end = kCapacity;
  nQELM100::tClass classes[kClassCapacity] = {};
  u32 classCount = 0;
};

// The stream of the running test, cleared. It is too large for the stack.
tItemStream& cleanStream();
