// The slots of the virtual operations that other modules call by position.

#include "conformance/harness.h"
#include "oxdiagk/iTraceable.h"
#include "oxdiagk/tConfigurable.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "support/recordingBus.h"
#include "support/recordingDestination.h"
#include "vexk/placementNew.h"

namespace {

using nOXDIAG100::iTraceable;
using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tConfigurable;
using nOXDIAG100::tSerialTraceDestination;
using nOXDIAG100::tTrace;
using nOXDIAG100::tVEXTraceDestination;

// The operation in a slot, counted from 1 as the interface counts them.
template <class Function>
Function* getSlot(void* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void***>(object))[slot - 1]);
}

using tDestroy = void*(void* object, u32 flags);  // flags 0: destroy without freeing
using tConfigureVector = void(void* object, int argc, char** argv);
using tConfigureText = void(void* object, char const* options);
using tAct = void(void* object);
using tInquire = void(void* object, char* buffer, unsigned int size, unsigned int* needed);
using tPutCounted = void*(void* object, char const* text, unsigned int length);
using tPut = void*(void* object, char const* text);
using tInquireDestination = char*(void* object, char* buffer, unsigned int size,
                                  unsigned int* required);
using tOpen = u32(void* object);
using tDescribe = char const*(void* object);
using tPutInto = void(void* object, tTrace* trace);

char const* lastCall = "";
bool isDestroyed = false;

class tNamedCalls : public tConfigurable {
 public:
  ~tNamedCalls() override { isDestroyed = true; }
  void configure() override { lastCall = "configure()"; }
  void configure(char const*) override { lastCall = "configure(text)"; }
  void configure(int, char**) override { lastCall = "configure(vector)"; }
  void inquire(char*, unsigned int, unsigned int*) override { lastCall = "inquire"; }
  void pushConfiguration() override { lastCall = "push"; }
  void popConfiguration() override { lastCall = "pop"; }
};

class tNamedDestination : public iTraceDestination {
 public:
  ~tNamedDestination() override { isDestroyed = true; }
  iTraceDestination& put(char const*) override {
    lastCall = "put(text)";
    return *this;
  }
  iTraceDestination& put(char const*, unsigned int) override {
    lastCall = "put(text, length)";
    return *this;
  }
  void configure(int, char** const) override { lastCall = "configure"; }
  char* inquire(char* buffer, unsigned int, unsigned int*) override {
    lastCall = "inquire";
    return buffer;
  }
  u32 open() override {
    lastCall = "open";
    return 1;
  }
  void close() override { lastCall = "close"; }
  char const* getDescription() const override { return "named calls"; }
};

class tNamedTraceable : public iTraceable {
 public:
  ~tNamedTraceable() override { isDestroyed = true; }
  void put(tTrace&) const override { lastCall = "put"; }
};

template <class T>
void destroyThroughTheFirstSlot() {
  alignas(T) static constinit u8 storage[sizeof(T)] = {};
  T* const object = new (storage) T;
  isDestroyed = false;
  getSlot<tDestroy>(object, 1)(object, 0);
  EXPECT_TRUE(isDestroyed);
}

}  // namespace

TEST(ConfigurableSlots, FirstIsTheDestructor) {
  destroyThroughTheFirstSlot<tNamedCalls>();
}

TEST(ConfigurableSlots, SecondToFourthConfigure) {
  tNamedCalls object;
  getSlot<tConfigureVector>(&object, 2)(&object, 0, nullptr);
  EXPECT_STREQ(lastCall, "configure(vector)");
  getSlot<tConfigureText>(&object, 3)(&object, "");
  EXPECT_STREQ(lastCall, "configure(text)");
  getSlot<tAct>(&object, 4)(&object);
  EXPECT_STREQ(lastCall, "configure()");
}

TEST(ConfigurableSlots, FifthInquiresAndTheLastTwoSaveAndRestore) {
  tNamedCalls object;
  getSlot<tInquire>(&object, 5)(&object, nullptr, 0, nullptr);
  EXPECT_STREQ(lastCall, "inquire");
  getSlot<tAct>(&object, 6)(&object);
  EXPECT_STREQ(lastCall, "push");
  getSlot<tAct>(&object, 7)(&object);
  EXPECT_STREQ(lastCall, "pop");
}

TEST(DestinationSlots, FirstIsTheDestructor) {
  destroyThroughTheFirstSlot<tNamedDestination>();
}

TEST(DestinationSlots, SecondPutsCountedAndThirdTerminatedText) {
  tNamedDestination object;
  EXPECT_TRUE(getSlot<tPutCounted>(&object, 2)(&object, "x", 1) == &object);
  EXPECT_STREQ(lastCall, "put(text, length)");
  EXPECT_TRUE(getSlot<tPut>(&object, 3)(&object, "x") == &object);
  EXPECT_STREQ(lastCall, "put(text)");
}

TEST(DestinationSlots, FourthToEighthAreInTheirOrder) {
  tNamedDestination object;
  getSlot<tConfigureVector>(&object, 4)(&object, 0, nullptr);
  EXPECT_STREQ(lastCall, "configure");
  getSlot<tInquireDestination>(&object, 5)(&object, nullptr, 0, nullptr);
  EXPECT_STREQ(lastCall, "inquire");
  EXPECT_EQ(getSlot<tOpen>(&object, 6)(&object), u32{1});
  EXPECT_STREQ(lastCall, "open");
  getSlot<tAct>(&object, 7)(&object);
  EXPECT_STREQ(lastCall, "close");
  EXPECT_STREQ(getSlot<tDescribe>(&object, 8)(&object), "named calls");
}

TEST(DestinationSlots, DebuggerPrintOfTheLibraryIsLaidOutTheSame) {
  tVEXTraceDestination* const object = &tVEXTraceDestination::getInstance();
  EXPECT_TRUE(getSlot<tPutCounted>(object, 2)(object, "slot 2\n", 7) == object);
  EXPECT_TRUE(getSlot<tPut>(object, 3)(object, "slot 3\n") == object);
  getSlot<tConfigureVector>(object, 4)(object, 0, nullptr);
  char buffer[32];
  unsigned int required = 0;
  getSlot<tInquireDestination>(object, 5)(object, buffer, sizeof(buffer), &required);
  EXPECT_STREQ(buffer, " --destination vex");
  EXPECT_EQ(required, 19u);
  EXPECT_EQ(getSlot<tOpen>(object, 6)(object), u32{1});
  getSlot<tAct>(object, 7)(object);
  EXPECT_STREQ(getSlot<tDescribe>(object, 8)(object), "VEX print to debugger");
}

TEST(DestinationSlots, SerialPortOfTheLibraryIsLaidOutTheSame) {
  tRecordedPort port;
  alignas(
      tSerialTraceDestination) static constinit u8 storage[sizeof(tSerialTraceDestination)] = {};
  void* const object = new (storage) tSerialTraceDestination;
  char word[] = "9600";
  char* words[] = {word};
  getSlot<tConfigureVector>(object, 4)(object, 1, words);
  EXPECT_EQ(getSlot<tOpen>(object, 6)(object), u32{1});
  EXPECT_TRUE(getSlot<tPutCounted>(object, 2)(object, "ab", 2) == object);
  EXPECT_TRUE(getSlot<tPut>(object, 3)(object, "c") == object);
  EXPECT_STREQ(port.takeEvents(),
               "new(0) open(0,0,0) w3FB=80 w3F8=C w3FB=3 "
               "r3FE=B0 r3FD=20 w3F8=61 r3FD=20 w3F8=62 r3FE=B0 r3FD=20 w3F8=63 ");
  char buffer[32];
  unsigned int required = 0;
  getSlot<tInquireDestination>(object, 5)(object, buffer, sizeof(buffer), &required);
  EXPECT_STREQ(buffer, " --destination serial 9600");
  EXPECT_EQ(required, 27u);
  EXPECT_STREQ(getSlot<tDescribe>(object, 8)(object), "Serial port with baud rate 9600");
  getSlot<tAct>(object, 7)(object);
  EXPECT_STREQ(port.takeEvents(), "release(7) delete ");
  getSlot<tOpen>(object, 6)(object);
  port->clear();
  getSlot<tDestroy>(object, 1)(object, 0);
  EXPECT_STREQ(port.takeEvents(), "release(7) delete ");
}

TEST(TraceSlots, ConfigureIsInTheSecondAndThirdSlot) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  void* const object = static_cast<tConfigurable*>(&trace);
  char word[] = "--off";
  char* words[] = {word};
  getSlot<tConfigureVector>(object, 2)(object, 1, words);
  EXPECT_EQ(trace.isEnabled(), u32{0});
  getSlot<tConfigureText>(object, 3)(object, "--on --prefixwidth 7");
  EXPECT_EQ(trace.isEnabled(), u32{1});
  EXPECT_EQ(trace.getMinPrefixWidth(), u32{7});
}

TEST(TraceSlots, ConfigureWithoutArgumentsInTheFourthSlotChangesNothing) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  trace.configure("--off --prefixwidth 7");
  void* const object = static_cast<tConfigurable*>(&trace);
  getSlot<tAct>(object, 4)(object);
  EXPECT_EQ(trace.isEnabled(), u32{0});
  EXPECT_EQ(trace.getMinPrefixWidth(), u32{7});
}

TEST(TraceSlots, InquirePushAndPopAreInTheLastThreeSlots) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  void* const object = static_cast<tConfigurable*>(&trace);
  unsigned int needed = 0;
  char buffer[8];
  getSlot<tInquire>(object, 5)(object, buffer, sizeof(buffer), &needed);
  EXPECT_STREQ(buffer, "--on --");
  EXPECT_TRUE(needed > 100);
  getSlot<tAct>(object, 6)(object);
  trace.setMinPrefixWidth(9);
  getSlot<tAct>(object, 7)(object);
  EXPECT_EQ(trace.getMinPrefixWidth(), u32{50});
}

TEST(TraceSlots, StreamThatIsDestroyedThroughTheFirstSlotRestoresItsConfigurations) {
  alignas(tPrivateTrace) static constinit u8 storage[sizeof(tPrivateTrace)] = {};
  tRecordingDestination recorder;
  tPrivateTrace* const trace = new (storage) tPrivateTrace(tVEXTraceDestination::getInstance());
  trace->pushConfiguration();
  trace->setDestination(recorder);
  void* const object = static_cast<tConfigurable*>(trace);
  getSlot<tDestroy>(object, 1)(object, 0);
  EXPECT_STREQ(recorder.text(), "Switching trace destination to VEX print to debugger\n");
}

TEST(TraceableSlots, FirstIsTheDestructorAndSecondPuts) {
  tRecordingDestination recorder;
  tPrivateTrace trace(recorder);
  tNamedTraceable object;
  getSlot<tPutInto>(&object, 2)(&object, &trace);
  EXPECT_STREQ(lastCall, "put");
  destroyThroughTheFirstSlot<tNamedTraceable>();
}

static_assert(sizeof(long) == 4, "the documented long is the compiler's");
static_assert(sizeof(tVEXTraceDestination) == sizeof(void*), "destinations have no data");
static_assert(sizeof(tConfigurable) == sizeof(void*), "configurable objects have no data");
