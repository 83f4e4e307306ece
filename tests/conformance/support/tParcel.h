#pragma once

// Objects to be put into streams: with one item of every kind, nested in one another, failing.

#include "qelmk/iExternalizable.h"
#include "stl/string.h"

// One item of every kind, the last of them another object or null.
class tParcel : public virtual nQELM100::iExternalizable {
  QELM_DECLARE_CLASS(tParcel, nQELM100::iExternalizable)

 public:
  static i32 living;

  tParcel() { ++living; }
  ~tParcel() override;
  tParcel(tParcel const&) = delete;
  tParcel& operator=(tParcel const&) = delete;

  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

  // Whether the values are those of the other, and so on inside.
  bool isLike(tParcel const& other) const;

  // Puts a new parcel into it, owned by it; null when there is no memory.
  tParcel* pack();

  char character = 'c';
  i32 number = -2;
  u32 unsignedNumber = 3;
  i64 wideNumber = -4;
  u64 wideUnsignedNumber = 5;
  _STL::string text;
  _STL::wstring wideText;
  nQELM100::tObject* inside = nullptr;
};

// A later parcel: its content goes on behind what tParcel reads.
class tLaterParcel : public tParcel {
  QELM_DECLARE_CLASS(tLaterParcel, tParcel)

 public:
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
};

// What is written of it reads as a failure of its own.
class tBrokenParcel : public virtual nQELM100::iExternalizable {
  QELM_DECLARE_CLASS(tBrokenParcel, nQELM100::iExternalizable)

 public:
  static constexpr i32 kStatusBroken = -77201;
  static i32 living;
  static bool isWritingBroken;

  tBrokenParcel() { ++living; }
  ~tBrokenParcel() override { --living; }
  tBrokenParcel(tBrokenParcel const&) = delete;
  tBrokenParcel& operator=(tBrokenParcel const&) = delete;

  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;
};

// An object of the framework that is not externalizable.
class tStone : public virtual nQELM100::tObject {
  QELM_DECLARE_CLASS(tStone, nQELM100::tObject)
};

// A parcel that says it is of a class without instances.
class tMaskedParcel : public tParcel {
 public:
  nQELM100::tClass getClass(i32& status) const override {
    return nQELM100::iExternalizable::staticGetClass(status);
  }
};

// Destroys an object through its class; null is fine.
void destroy(nQELM100::tObject* object);
