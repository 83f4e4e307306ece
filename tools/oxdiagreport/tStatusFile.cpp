#include "oxdiagreport/tStatusFile.h"

#include "qelmk/statusCodes.h"
#include "qelmk/tBinaryObjectReader.h"
#include "stl/memory.h"

using nQELM100::tBinaryObjectReader;

namespace {

struct tMeaning {
  i32 code;
  char const* text;
};

constexpr tMeaning kMeanings[] = {
    {nQELM100::kStatusStreamEnded, "the status is cut off"},
    {nQELM100::kStatusStreamBadHeader, "no status begins there"},
    {nQELM100::kStatusStreamNewer, "the status is of a later version than this program knows"},
    {nQELM100::kStatusStreamTooDeep, "objects lie too deep in one another"},
    {nQELM100::kStatusStreamMalformed, "the bytes contradict themselves"},
    {nQELM100::kStatusClassUnknown, "an object is of a class that this program does not know"},
    {nQELM100::kStatusClassAbstract, "an object is of a class without objects"},
    {nQELM100::kStatusClassMismatch, "an object is of a class that does not belong there"},
    {kStatusOutOfMemory, "there is no memory for what is said to follow"},
};

std::string meaningOf(i32 code) {
  for (tMeaning const& meaning : kMeanings) {
    if (meaning.code == code) return meaning.text;
  }
  return "the status cannot be read (" + std::to_string(code) + ")";
}

}  // namespace

bool tStatusFile::read(nOXDIAG100::tStatus2& status) {
  i32 code = 0;
  tBinaryObjectReader reader(bytes.data() + position, bytes.size() - position, code);
  status.readExternal(reader, code);
  if (code < 0) return fail(code, position + reader.getFailurePosition());
  modules = modulesOfStatus(bytes.substr(position, reader.getPosition()));
  position += reader.getPosition();
  return true;
}

bool tStatusFile::fail(i32 code, size_t place) {
  problem = "damaged at byte " + std::to_string(place) + ": " + meaningOf(code);
  return false;
}
