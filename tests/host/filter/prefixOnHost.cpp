// Prefixes with what only the host can steer: thread ids, memory, and a large number of random
// settings compared with a plain model.

#include <new>
#include <random>

#include "oxdiagk/tTraceFilter.h"
#include "rounds.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"
#include "trace/tLastBytes.h"
#include "trace/tSeemingThread.h"
#include "trace/tTracePrefix.h"
#include "vexk/sync.h"

namespace {

using nOXDIAG100::tLineClock;
using nOXDIAG100::tLineOrigin;
using nOXDIAG100::tLineShape;
using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceParts;
using nOXDIAG100::tTracePrefix;

constexpr u32 kPrefixesCompared = roundsOf(100'000);
constexpr u64 kNeverMeasured = ~0ull / 2;
constexpr tSSVersion kVersion(1, 2, 3, tSSVersion::kPhaseBeta, 45, 0);

struct tHostStream {
  tKeptLines kept;
  tOwnTrace trace{kept};

  std::string prefix(unsigned int verbosity = 100) {
    kept.pieces.clear();
    trace.putPrefix("rack", kVersion, 42, "source/port.cpp", verbosity, tTrace::kTraceLine).endl();
    std::string const text = kept.text();
    return text.substr(0, text.find('\n'));
  }
};

// The settings of a stream by chance, and the prefix that they must give.
struct tRandomPrefix {
  explicit tRandomPrefix(std::mt19937& random) {
    u32 const bits = static_cast<u32>(random());
    for (u32 field = 0; field < 9; ++field) isOn[field] = ((bits >> field) & 1) != 0;
    truncates = ((bits >> 9) & 1) != 0;
    indents = ((bits >> 10) & 1) != 0;
    width = random() % 4 == 0 ? random() % 400 : random() % 70;
    level = random() % 5;
    component.assign(random() % 20, 'c');
    line = static_cast<u32>(random()) >> (random() % 32);
    path.assign(random() % 3, 'p');
    path += random() % 2 == 0 ? "/" : "\\";
    name.assign(random() % 12, 'n');
    verbosity = static_cast<u32>(random()) >> (random() % 32);
  }

  void apply(tTrace& trace) const {
    using tSwitch = void (tTrace::*)();
    constexpr tSwitch kOn[] = {
        &tTrace::enableComponentName, &tTrace::enableComponentVersion, &tTrace::enableLineNumber,
        &tTrace::enableFileName,      &tTrace::enableFilePath,         &tTrace::enableThreadId,
        &tTrace::enableTimeStamp,     &tTrace::enableTimeDelta,        &tTrace::enableVerbosity};
    trace.disableComponentName();
    trace.disableLineNumber();
    trace.disableFileName();
    bool const* isSwitchedOn = isOn;
    for (tSwitch const enable : kOn) {
      if (*isSwitchedOn++) (trace.*enable)();
    }
    if (!truncates) trace.disableTruncation();
    if (!indents) trace.disableIndenting();
    trace.setMinPrefixWidth(width);
    for (u32 count = 0; count < level; ++count) {
      trace.putPrefix("", kVersion, 0, "", 0, tTrace::kBlockEntry).endl();
    }
  }

  std::string expected(u64 time, u64 delta) const {
    std::vector<std::string> fields;
    if (isOn[0]) fields.push_back(component);
    if (isOn[1]) fields.push_back("1.2.3b45");
    if (isOn[2]) fields.push_back(std::to_string(line));
    if (isOn[3]) fields.push_back(isOn[4] ? path + name : name);
    if (isOn[5]) fields.push_back("0x1A");
    if (isOn[6]) fields.push_back(std::to_string(time));
    if (isOn[7]) fields.push_back(std::to_string(delta));
    if (isOn[8]) fields.push_back(std::to_string(verbosity));
    std::string text;
    for (std::string const& field : fields) text += (text.empty() ? "[" : "--") + field;
    size_t const target = width == 0 ? 0 : width - 1;
    if (truncates && text.size() > target) text.resize(target);
    if (text.size() < target) text.resize(target, fields.empty() ? ' ' : '-');
    if (!truncates || width != 0) text += fields.empty() ? "  " : "] ";
    return text + std::string(indents ? 2 * level : 0, ' ');
  }

  bool isOn[9];
  bool truncates;
  bool indents;
  u32 width;
  u32 level;
  std::string component;
  u32 line;
  std::string path;
  std::string name;
  u32 verbosity;
};

}  // namespace

TEST(PrefixOnHost, Thread26IsShownAs0x1A) {
  tSeemingThread const thread(26);
  tHostStream stream;
  stream.trace.configure("--compname off --linenumber off --filename off --threadid on");
  stream.trace.setMinPrefixWidth(8);
  EXPECT_EQ(stream.prefix(), "[0x1A--] ");
}

TEST(PrefixOnHost, TheLargestThreadIdIsShownInFull) {
  tSeemingThread const thread(0xFFFFFFFF);
  tHostStream stream;
  stream.trace.configure("--compname off --linenumber off --filename off --threadid on");
  stream.trace.setMinPrefixWidth(12);
  EXPECT_EQ(stream.prefix(), "[0xFFFFFFFF] ");
}

TEST(PrefixOnHost, TheFilterComparesTheNumberOfTheThread) {
  tHostStream stream;
  stream.trace.setMinPrefixWidth(1);
  stream.trace.getFilter()->parseExpression("threadid==0x1A");
  {
    tSeemingThread const thread(26);
    EXPECT_EQ(stream.prefix(), "] ");
  }
  tSeemingThread const thread(27);
  EXPECT_EQ(stream.prefix(), "");
}

TEST(PrefixOnHost, WithoutAFilterEveryLineIsShown) {
  ntoshost::failFrom(ntoshost::kFaultMemory, 1);
  tHostStream stream;
  ntoshost::clearFaults();
  ASSERT_EQ(stream.trace.getFilter(), nullptr);
  stream.trace.setMinPrefixWidth(1);
  EXPECT_EQ(stream.prefix(0), "] ");
}

TEST(PrefixOnHost, NothingAllocates) {
  tHostStream stream;
  stream.trace.configure(
      "--compver --threadid --timestamp --timedelta --verbosity --filepath on "
      "--filter \"compver!=a && threadid!=0\"");
  ntoshost::watchCalls(ntoshost::kFaultMemory);
  EXPECT_NE(stream.prefix(), "");
  stream.trace.putPrefixPrototype().endl();
  EXPECT_EQ(ntoshost::fallibleCallsSeen(), 0u);
}

// It has no use for a filter, so memory for one may be lacking.
TEST(PrefixOnHost, CalibrationWithoutALockMeasuresNothing) {
  u64 const failuresOfALock = ntoshost::failEachCall(ntoshost::kFaultMemory, [](u64) {
    i32 status = 0;
    iSync* lock = syncOpen(nullptr, tSyncDescriptor{}, status);
    syncClose(lock);
  });
  tHostStream stream;
  tLineClock& clock = stream.trace.getClock();
  u64 const failures = ntoshost::failEachCall(ntoshost::kFaultMemory, [&](u64 call) {
    for (u32 index = 0; index < 3; ++index) clock.setOffset(index, kNeverMeasured);
    stream.trace.calibrate();
    for (u32 index = 0; index < 3; ++index) {
      EXPECT_EQ(clock.getOffset(index) != kNeverMeasured, call > failuresOfALock);
    }
    EXPECT_EQ(stream.trace.isEnabled(), 1u);
    EXPECT_EQ(stream.trace.getNestingLevel(), 0);
  });
  EXPECT_GE(failuresOfALock, 1u);
  EXPECT_GT(failures, failuresOfALock);
}

TEST(PrefixOnHost, CalibrationLeavesNothingBehind) {
  tHostStream stream;
  u64 const before = ntoshost::outstandingBlocks();
  stream.trace.calibrate();
  EXPECT_EQ(ntoshost::outstandingBlocks(), before);
  EXPECT_EQ(stream.kept.text(), "");
}

// The object lies at the end of memory, and what it collects is its last member.
TEST(PrefixOnHost, FieldsOfAnyLengthStayWithinTheObject) {
  tLastBytes const place(sizeof(tTracePrefix));
  tKeptLines kept;
  tTraceParts parts(kept);
  parts.turn(tLineShape::kTruncation, false);
  parts.turn(tLineShape::kLineNumber, false);
  for (size_t component = 0; component < 260; ++component) {
    for (size_t const file : {size_t{0}, size_t{1}, component, component + 3, size_t{300}}) {
      std::string const first(component, 'c');
      std::string const second(file, 'f');
      tLineOrigin const origin{first.c_str(), second.c_str(), kVersion, 42};
      kept.pieces.clear();
      (new (place.bytes) tTracePrefix(parts, parts.getShape(), {origin, 100, 0, 0}))->write();
      parts.buffer.endPiece(parts.slot);
      std::string wanted = "[" + first + "--" + second;
      wanted.append(wanted.size() < 49 ? 49 - wanted.size() : 0, '-');
      ASSERT_EQ(kept.text(), wanted + "] \n");
    }
  }
  delete parts.filter;
}

TEST(PrefixOnHost, RandomPrefixesAgreeWithTheModel) {
  tSeemingThread const thread(26);
  std::mt19937 random(7);
  for (u32 round = 0; round < kPrefixesCompared; ++round) {
    tRandomPrefix const wanted(random);
    tHostStream stream;
    stream.trace.getFilter()->removeAll();
    wanted.apply(stream.trace);
    stream.kept.pieces.clear();
    u64 const lastTime = random();
    u64 const carried = random();
    stream.trace.getClock().setEnd(lastTime);
    stream.trace.getCarriedDelta() = carried;
    stream.trace.putPrefix(wanted.component.c_str(), kVersion, wanted.line,
                           (wanted.path + wanted.name).c_str(), wanted.verbosity,
                           tTrace::kTraceLine);
    u64 const time = stream.trace.getClock().getStart();
    stream.trace.endl();
    ASSERT_EQ(stream.kept.text(), wanted.expected(time, time - lastTime + carried) + "\n")
        << "round " << round;
  }
}
