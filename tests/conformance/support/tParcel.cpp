#include "tParcel.h"

#include "qelmk/dynamicCast.h"
#include "qelmk/iObjectReader.h"
#include "qelmk/iObjectWriter.h"

using nQELM100::dynamicCast;
using nQELM100::iObjectReader;
using nQELM100::iObjectWriter;
using nQELM100::tObject;

QELM_DEFINE_CLASS(tParcel, "tParcel")
QELM_DEFINE_CLASS(tLaterParcel, "tLaterParcel")
QELM_DEFINE_CLASS(tBrokenParcel, "tBrokenParcel")
QELM_DEFINE_CLASS(tStone, "tStone")

constinit i32 tParcel::living = 0;
constinit i32 tBrokenParcel::living = 0;
constinit bool tBrokenParcel::isWritingBroken = false;

void destroy(tObject* object) {
  i32 status = 0;
  if (object != nullptr) object->getClass(status).deleteInstance(object, status);
}

tParcel::~tParcel() {
  destroy(inside);
  --living;
}

void tParcel::writeExternal(iObjectWriter& writer, i32& status) const {
  writer.writeCharacter(character, status);
  writer.writeI32(number, status);
  writer.writeU32(unsignedNumber, status);
  writer.writeI64(wideNumber, status);
  writer.writeU64(wideUnsignedNumber, status);
  writer.writeString(text, status);
  writer.writeWideString(wideText, status);
  writer.writeObject(inside, status);
}

void tParcel::readExternal(iObjectReader& reader, i32& status) {
  reader.readCharacter(character, status);
  reader.readI32(number, status);
  reader.readU32(unsignedNumber, status);
  reader.readI64(wideNumber, status);
  reader.readU64(wideUnsignedNumber, status);
  reader.readString(text, status);
  reader.readWideString(wideText, status);
  tObject* const read = reader.readObject(status);
  if (status < 0) return;
  destroy(inside);
  inside = read;
}

bool tParcel::isLike(tParcel const& other) const {
  if (character != other.character || number != other.number ||
      unsignedNumber != other.unsignedNumber || wideNumber != other.wideNumber ||
      wideUnsignedNumber != other.wideUnsignedNumber || !(text == other.text) ||
      !(wideText == other.wideText)) {
    return false;
  }
  auto const* const mine = dynamicCast<tParcel>(inside);
  auto const* const others = dynamicCast<tParcel>(other.inside);
  if (mine == nullptr || others == nullptr) return mine == others;
  return mine->isLike(*others);
}

tParcel* tParcel::pack() {
  auto* const packed = new tParcel;
  inside = packed;
  return packed;
}

void tLaterParcel::writeExternal(iObjectWriter& writer, i32& status) const {
  tParcel::writeExternal(writer, status);
  writer.writeU64(0x1122334455667788, status);
}

void tBrokenParcel::writeExternal(iObjectWriter& writer, i32& status) const {
  writer.writeCharacter('b', status);
  if (isWritingBroken && status >= 0) status = kStatusBroken;
}

void tBrokenParcel::readExternal(iObjectReader& reader, i32& status) {
  char character = '\0';
  reader.readCharacter(character, status);
  if (status >= 0) status = kStatusBroken;
}
