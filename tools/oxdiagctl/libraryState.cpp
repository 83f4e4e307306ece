#include "oxdiagctl/libraryState.h"

using namespace nOXDIAG100;

std::optional<tStateAnswer> askLibraryState(iRequestChannel& channel) {
  tStateAnswer answer = {};
  tStateRequest const request = {reinterpret_cast<u64>(&answer), sizeof(answer), 0};
  bool const isAnswered = channel.deliver(kStateName, &request) && answer.size >= sizeof(answer);
  answer.build[tStateAnswer::kBuildSize - 1] = '\0';
  return isAnswered ? std::optional(answer) : std::nullopt;
}
