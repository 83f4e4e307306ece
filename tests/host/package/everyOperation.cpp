#include "package/everyOperation.h"

#include <cstring>
#include <string>

#include "oxdiagk/assertion.h"
#include "oxdiagk/iTraceDestination.h"
#include "oxdiagk/iTraceable.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tAssertConfiguration.h"
#include "oxdiagk/tBlockTracer.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tStatus2.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStatus2Heap.h"
#include "oxdiagk/tTrace.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "package/loadOutcome.h"

#define OXDIAG_COMPONENT "test"
#include "oxdiagk/statusMacros.h"

using namespace nOXDIAG100;

namespace {

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 0, 0);
constexpr u32 kTextSize = 64;

char componentName[] = "test";
char fileName[] = "everyOperation.cpp";
char category[] = "default";
char message[] = "a message";

class tWordSink : public iTraceDestination {
 public:
  iTraceDestination& put(char const* written) override {
    text += written;
    return *this;
  }
  iTraceDestination& put(char const* written, unsigned int length) override {
    text.append(written, length);
    return *this;
  }
  void configure(int, char** const) override {}
  char* inquire(char* buffer, unsigned int size, unsigned int* required) override {
    return inquireText("", buffer, size, required);
  }
  u32 open() override { return 1; }
  void close() override {}
  char const* getDescription() const override { return "a test"; }

  std::string text;
};

// Says one word, so that an object writes itself.
class tWord : public iTraceable {
 public:
  void put(tTrace& trace) const override { trace.put("word"); }
};

void configureByWords(tConfigurable& object) {
  char word[] = "--on";
  char* words[] = {word, nullptr};
  object.configure(1, words);
  object.configure(-1, nullptr);
}

void callConfigurable(tConfigurable& object) {
  char text[kTextSize];
  unsigned int needed = 0;
  object.configure();
  object.configure("--on --mutex on --category rack --break off");
  configureByWords(object);
  object.inquire(nullptr, 0, &needed);
  object.inquire(text, sizeof(text), nullptr);
  object.pushConfiguration();
  object.popConfiguration();
  object.popConfiguration();
}

void callTraceSwitches(tTrace& trace) {
#define CALL_SWITCH(Name, name)               \
  trace.enable##Name();                       \
  static_cast<void>(trace.name##IsEnabled()); \
  trace.disable##Name();                      \
  trace.enable##Name();
  CALL_SWITCH(ComponentName, componentName)
  CALL_SWITCH(ComponentVersion, componentVersion)
  CALL_SWITCH(LineNumber, lineNumber)
  CALL_SWITCH(FileName, fileName)
  CALL_SWITCH(FilePath, filePath)
  CALL_SWITCH(TimeStamp, timeStamp)
  CALL_SWITCH(TimeDelta, timeDelta)
  CALL_SWITCH(Verbosity, verbosity)
  CALL_SWITCH(ThreadId, threadId)
  CALL_SWITCH(Indenting, indenting)
  CALL_SWITCH(Truncation, truncation)
#undef CALL_SWITCH
  trace.disable();
  trace.enable();
  static_cast<void>(trace.isEnabled());
  static_cast<void>(trace.isLineShown());
  trace.enableMutex();
  static_cast<void>(trace.mutexIsEnabled());
  trace.disableMutex();
  trace.setMinPrefixWidth(30);
  static_cast<void>(trace.getMinPrefixWidth());
}

void callTracePuts(tTrace& trace) {
  tMemBlockReferenceTemplate<char> block;
  tStatus2 status;
  trace.put("text").put(message, 3).put(static_cast<char const*>(nullptr));
  trace.put(_STL::string("text")).put(_STL::wstring(L"wide")).put('c').put(true).put(tWord());
  trace.put(static_cast<signed char>('c')).put(static_cast<unsigned char>('c'));
  trace.put(static_cast<short>(1), 10).put(static_cast<unsigned short>(1), 16).put(-1, 2);
  trace.put(1u, 10).put(1l, 10).put(1ul, 10).put(1ll, 10).put(1ull, 36);
  trace.put(static_cast<void const*>(message)).put(block).put(kVersion).put(status);
  trace.put(static_cast<tStatus2 const&>(status));
  trace.put(static_cast<void const*>(message), sizeof(message), 4);
  trace.put(static_cast<void*>(message), sizeof(message), 1);
  trace.putf("%s %d\n", message, 5).putPrefixPrototype().endl();
}

void callTraceLines(tTrace& trace) {
  i32 legacyStatus = 0;
  trace.putPrefix("test", kVersion, 1, "file", 200, tTrace::kTraceLine).put("line").endl();
  trace.putPrefix(componentName, kVersion, 1, fileName, 200, tTrace::kBlockEntry).endl();
  trace.putPrefix("test", kVersion, 1, "file", 200, tTrace::kTraceLine);
  callTracePuts(trace);
  trace.putPrefix(componentName, kVersion, 1, fileName, 200, tTrace::kBlockExit).endl();
  tBlockTracer const block(componentName, kVersion, 1, fileName, 200, message, nullptr,
                           &legacyStatus, trace);
}

void callTrace() {
  tTrace& trace = tTrace::getInstance(message);
  tWordSink sink;
  callTraceSwitches(trace);
  callTraceLines(trace);
  trace.calibrate();
  static_cast<void>(trace.getNestingLevel());
  static_cast<void>(trace.getFilter());
  iTraceDestination* const former = trace.getDestination();
  trace.setDestination(sink);
  callTraceLines(trace);
  if (former != nullptr) trace.setDestination(*former);
  callConfigurable(trace);
}

void callContracts() {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance(category);
  char const* const name = category;
#define CALL_CONTRACT(word, query, Name, atFirst)                        \
  contracts.enable##Name(name);                                          \
  contracts.enable##Name(category);                                      \
  static_cast<void>(contracts.query(name) || contracts.query(category)); \
  contracts.disable##Name(name);                                         \
  contracts.disable##Name(category);
  OXDIAG_ASSERT_SWITCHES(CALL_CONTRACT)
#undef CALL_CONTRACT
  callConfigurable(contracts);
  for (auto* const evaluate : {&evalRequire, &evalEnsure, &evalClassInvariant, &evalLoopInvariant,
                               &evalCheck, &evalException}) {
    evaluate(category, componentName, kVersion, 1, fileName);
  }
  notificationAction(category, componentName, kVersion, 1, fileName, message);
  continuationAction(category, componentName, kVersion, 1, fileName);
}

void callFrontDoor() {
  char text[kTextSize];
  unsigned int needed = 0;
  char traceName[] = "trace";
  char assertName[] = "kernel/assert";
  char word[] = "--on";
  char* words[] = {word};
  for (u32 const handle : {kFirstHandle, acquireInstance(traceName), acquireInstance(assertName),
                           acquireInstance(nullptr), kNoHandle}) {
    configure(handle);
    configure(handle, "--on");
    configure(handle, 1, words);
    inquire(handle, text, sizeof(text), &needed);
    pushConfiguration(handle);
    popConfiguration(handle);
    releaseInstance(handle);
  }
}

void callStatuses() {
  i32 status = 0;
  tStatus2Heap* const heap = tStatus2Heap::getHeap(status);
  if (heap != nullptr) heap->releaseMemoryBlock(heap->allocateMemoryBlock(16, status), status);
  char text[tStatus2::kMaxTextSize];
  tStatus2 first;
  tStatus2Description description;
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(first, -5, description);
  tStatus2 const copy(first);
  tStatus2 second(7);
  second.setDescription(description);
  second = copy;
  second.toString(text, sizeof(text));
  second.setCode(0);
}

void callDestination(iTraceDestination* destination) {
  char text[kTextSize];
  unsigned int needed = 0;
  if (destination == nullptr) return;
  destination->configure(0, nullptr);
  destination->open();
  destination->put("text").put("text", 2);
  destination->inquire(text, sizeof(text), &needed);
  static_cast<void>(destination->getDescription());
  destination->close();
}

void callDestinations() {
  callDestination(&tVEXTraceDestination::getInstance());
  callDestination(tSerialTraceDestination::getInstance());
  tSerialTraceDestination::destroyInstance();
  callDestination(tFileTraceDestination::getInstance());
  tFileTraceDestination::destroyInstance();
}

bool isInquiryEmpty(tConfigurable& object) {
  char text[kTextSize] = "former";
  unsigned int needed = 0;
  object.inquire(text, sizeof(text), &needed);
  return needed == 1 && text[0] == 0;
}

bool isTraceAtRest() {
  tTrace& trace = tTrace::getInstance();
  bool const isOff = trace.isEnabled() == 0 && !trace.isLineShown() && trace.mutexIsEnabled() == 0;
  bool const hasNothing = trace.getDestination() == nullptr && trace.getFilter() == nullptr;
  return isOff && hasNothing && trace.getNestingLevel() == 0 && isInquiryEmpty(trace);
}

bool areContractsAtRest() {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  return !contracts.checksAreEnabled("default") && !contracts.breakOnViolationIsEnabled("rack") &&
         isInquiryEmpty(contracts);
}

bool isFrontDoorAtRest() {
  char text[kTextSize] = "former";
  unsigned int needed = 7;
  inquire(kFirstHandle, text, sizeof(text), &needed);
  return acquireInstance(nullptr) == kNoHandle && needed == 7 && std::strcmp(text, "former") == 0;
}

bool areLinesWritten() {
  tTrace& trace = tTrace::getInstance();
  tWordSink sink;
  iTraceDestination* const former = trace.setDestination(sink);
  trace.put("a line").endl();
  trace.setDestination(*former);
  return sink.text.find("a line\n") != std::string::npos;
}

bool areSettingsTaken() {
  tTrace& trace = tTrace::getInstance();
  u32 const handle = acquireInstance(nullptr);
  configure(handle, "--timestamp off");
  pushConfiguration(handle);
  configure(handle, "--timestamp on");
  bool const isTaken = trace.timeStampIsEnabled() != 0;
  popConfiguration(handle);
  releaseInstance(handle);
  return handle != kNoHandle && isTaken && trace.timeStampIsEnabled() == 0;
}

bool areContractsConfigured() {
  tAssertConfiguration& contracts = tAssertConfiguration::getInstance();
  contracts.configure("--category shelf --checks off");
  return contracts.preconditionsAreEnabled("shelf") && !contracts.checksAreEnabled("shelf");
}

bool haveStatusesDetail() {
  tStatus2 status;
  OXDIAG_SET_STATUS(status, -5);
  return status.getLineNumber() != 0;
}

}  // namespace

void callEveryOperation() {
  callTrace();
  callContracts();
  callFrontDoor();
  callStatuses();
  callDestinations();
}

bool isLibraryAtRest() {
  return isLibraryGone() && isTraceAtRest() && areContractsAtRest() && isFrontDoorAtRest();
}

bool isLibraryWorking() {
  return judgeLoadedLibrary() == kWhole && areLinesWritten() && areSettingsTaken() &&
         areContractsConfigured() && haveStatusesDetail();
}
