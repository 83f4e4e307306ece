// What a program tells oxdiagctl of its settings that has no library: a text and its size, in one
// answer after the other. One answer a line:
//
//     tNEEDED TEXT  writes this text, as far as there is room, and says how much is needed
//     wNEEDED TEXT  writes it without an end
//     n             writes nothing
//
// Each text is compared with the first.

#include <algorithm>
#include <cstring>
#include <deque>

#include "options/optionTable.h"
#include "oxdiagctl/libraryState.h"
#include "oxdiagctl/tFailure.h"
#include "oxdiagctl/tSettings.h"
#include "oxdiagctl/tTunnel.h"
#include "oxdiagk/stateRequest.h"
#include "support/fuzzing.h"
#include "support/steering.h"
#include "support/tScript.h"

namespace {

using namespace nOXDIAG100;

constexpr unsigned kMostNeeded = 1 << 20;  // more is refused by the size alone
constexpr unsigned kMostInquiries = 64;

// Another program, which writes into this one's memory.
class tStranger : public iRequestChannel {
 public:
  explicit tStranger(std::string const& input) {
    for (tScript script(input); script.next();) answers.push_back(answerOf(script));
  }

  bool deliver(std::string_view dispatcher, void const* request) override {
    if (dispatcher == kStateName) return tell(request);
    tTunnelRecord record;
    std::memcpy(&record, static_cast<char const*>(request) + sizeof(tTunnelHeader), sizeof(record));
    if (record.operation == kTunnelAcquire) write(record.address, u32{1});
    if (record.operation == kTunnelInquire) answer(record);
    return true;
  }

  std::string const& getPlace() const override { return place; }

 private:
  struct tAnswer {
    char operation;
    u32 needed;
    std::string text;
  };

  static tAnswer answerOf(tScript& script) {
    char const operation = script.operation("twn");
    u32 const needed = script.number();
    bool const isServed = needed <= kMostNeeded;
    return {operation, isServed ? needed : ~0u, script.text()};
  }

  template <class tValue>
  static void write(u64 address, tValue const& value) {
    std::memcpy(reinterpret_cast<void*>(address), &value, sizeof(value));
  }

  void answer(tTunnelRecord const& record) {
    if (answers.empty() || ++inquiries > kMostInquiries) throw tFailure{kExitNobody, "gone"};
    tAnswer const next = answers.front();
    answers.pop_front();
    if (next.operation == 'n') return;
    size_t const length = std::min<size_t>(next.text.size(), record.source);
    std::memcpy(reinterpret_cast<void*>(record.address), next.text.data(), length);
    bool const isEnded = next.operation == 't' && length < record.source;
    if (isEnded) reinterpret_cast<char*>(record.address)[length] = '\0';
    write(record.extra, next.needed);
  }

  bool tell(void const* request) {
    tStateRequest asked;
    std::memcpy(&asked, request, sizeof(asked));
    if (answers.empty()) return false;
    std::string const& text = answers.front().text;
    size_t const length = std::min<size_t>(text.size(), asked.size);
    std::memcpy(reinterpret_cast<void*>(asked.address), text.data(), length);
    return true;
  }

  std::deque<tAnswer> answers;
  unsigned inquiries = 0;
  std::string place = "here";
};

void demandState(iRequestChannel& channel) {
  auto const state = askLibraryState(channel);
  demand(!state || std::memchr(state->build, '\0', sizeof(state->build)) != nullptr,
         "the name of a build has an end", [] { return "none"; });
}

void ask(iRequestChannel& channel) {
  demandState(channel);
  tTunnel tunnel(channel, kTraceLanguage.name);
  tSettings const before(tunnel.inquire());
  for (;;) {
    tSettings const now(tunnel.inquire());
    demandNoSteering(now.describe(kTraceLanguage));
    demandNoSteering(now.describe(kAssertLanguage));
    demandNoSteering(now.describeChangesSince(before));
  }
}

}  // namespace

void fuzzInput(std::string const& input) {
  tStranger stranger(input);
  try {
    ask(stranger);
  } catch (tFailure const& failure) {
    demand(!failure.sentence.empty(), "a failure is told", [] { return "nothing"; });
  }
}
