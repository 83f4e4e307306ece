#include "oxdiagctl/libraryState.h"

using namespace nOXDIAG100;

namespace {

// Of an answer without what later versions have appended, which then is zeros.
constexpr u32 kLeastSize = offsetof(tStateAnswer, lostFileTexts);

}  // namespace

std::optional<tStateAnswer> askLibraryState(iRequestChannel& channel) {
  tStateAnswer answer = {};
  tStateRequest const request = {reinterpret_cast<u64>(&answer), sizeof(answer), 0};
  bool const isAnswered = channel.deliver(kStateName, &request) && answer.size >= kLeastSize;
  answer.build[tStateAnswer::kBuildSize - 1] = '\0';
  return isAnswered ? std::optional(answer) : std::nullopt;
}
