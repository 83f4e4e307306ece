// Threads that put into one flight recorder at once.

#include <gtest/gtest.h>

#include <string>
#include <thread>

#include "oxdiagk/tRecorderTraceDestination.h"
#include "racingThreads.h"
#include "startedModules.h"

namespace {

using nOXDIAG100::tRecorderRing;
using nOXDIAG100::tRecorderTraceDestination;

constexpr unsigned kThreads = 4;
constexpr unsigned kTexts = 2'000;

void open(tRecorderTraceDestination& recorder, char const* kiB) {
  std::string word(kiB);
  char* words[] = {word.data()};
  recorder.configure(1, words);
  ASSERT_EQ(recorder.open(), 1u);
}

}  // namespace

TEST(RecorderThreads, EachTextStandsInOnePiece) {
  tRecorderTraceDestination recorder;
  open(recorder, "256");
  runAtOnce(kThreads, [&] {
    for (unsigned text = 0; text < kTexts; ++text) recorder.put("<a text of some length>");
  });
  tRecorderRing& ring = const_cast<tRecorderRing&>(*recorder.getRing());
  std::string wanted;
  for (unsigned text = 0; text < kThreads * kTexts; ++text) wanted += "<a text of some length>";
  ASSERT_LE(ring.written, ring.capacity);
  EXPECT_EQ(std::string(ring.getText(), ring.written), wanted);
}

TEST(RecorderThreads, RingThatComesRoundIsNeverLeft) {
  tRecorderTraceDestination recorder;
  open(recorder, "1");
  std::string const text(700, 'x');
  runAtOnce(kThreads, [&] {
    for (unsigned length = 0; length < 700; ++length) recorder.put(text.data(), length);
  });
  tRecorderRing& ring = const_cast<tRecorderRing&>(*recorder.getRing());
  EXPECT_EQ(ring.written, u64{kThreads} * 699 * 700 / 2);
  EXPECT_EQ(std::string(ring.getText(), ring.capacity), std::string(ring.capacity, 'x'));
}
