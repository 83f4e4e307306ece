#include "package/windows/tStateDispatcher.h"

#include "build/version.h"
#include "config/tObjectRoom.h"
#include "oxdiagk/stateRequest.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "package/windows/moduleStrings.h"
#include "vexk/placementNew.h"
#include "vexk/userMemory.h"

namespace nOXDIAG100 {
namespace {

constinit tObjectRoom<tStateDispatcher> instance;

void copyBuild(char (&to)[tStateAnswer::kBuildSize], char const* from) {
  for (u32 index = 0; index + 1 < tStateAnswer::kBuildSize && from[index] != '\0'; ++index) {
    to[index] = from[index];
  }
}

u32 smaller(u32 left, u32 right) {
  return left < right ? left : right;
}

// The size comes last, for it says that there is an answer behind it.
void writeAnswer(u64 address, tStateAnswer const& answer, u32 length) {
  auto const* const bytes = reinterpret_cast<u8 const*>(&answer);
  u32 const ofSize = smaller(length, sizeof(answer.size));
  u32 const rest = length - ofSize;
  if (vexCopyToUser(address + ofSize, bytes + ofSize, rest) != rest) return;
  vexCopyToUser(address, bytes, ofSize);
}

tStateAnswer makeAnswer() {
  tStateAnswer answer = {};
  answer.size = sizeof(answer);
  answer.version = kPackedVersion;
  answer.savedTrace = tTrace::getInstance().countSavedConfigurations();
  answer.savedAssert = tAssertConfiguration::getInstance().countSavedConfigurations();
  answer.lostFileTexts = tFileTraceDestination::countLostTexts();
  copyBuild(answer.build, kModuleIdentity.buildString);
  return answer;
}

}  // namespace

tStateDispatcher& tStateDispatcher::getInstance() {
  return instance.get();
}

void tStateDispatcher::constructInstance() {
  new (instance.take()) tStateDispatcher;
}

void tStateDispatcher::destroyInstance() {
  getInstance().~tStateDispatcher();
}

tStateDispatcher::tStateDispatcher() : iDispatcher(kStateName) {
  i32 status = 0;
  iLib::exportDispatcher(*this, status);
}

tStateDispatcher::~tStateDispatcher() {
  i32 status = 0;
  iLib::unexportDispatcher(*this, status);
}

void tStateDispatcher::dispatch(u64 request) {
  tStateRequest wanted;
  if (vexCopyFromUser(&wanted, request, sizeof(wanted)) != sizeof(wanted)) return;
  tStateAnswer const answer = makeAnswer();
  writeAnswer(wanted.address, answer, smaller(wanted.size, sizeof(answer)));
}

}  // namespace nOXDIAG100
