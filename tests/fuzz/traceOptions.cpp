// Sequences of options, lines, pushes, pops, inquiries and moves of a private stream, some of them
// with exhausted memory. One operation a line of the input; what stands behind the letter:
//
//     c OPTIONS     v WORD;WORD;...       + push      - pop        i SIZE (of the buffer)
//     p TEXT        h UNIT BYTES          l, b, x VERBOSITY LINE COMPONENT;FILE     e end of line
//     d NUMBER FAILING-OPENS FAILING-REOPENS    E D enable, disable   M m mutex on, off
//     k calibrate   w WIDTH               r round trip
//     ! N   the Nth allocation of the next operation fails     * N   the Nth and all later ones

#include "ntoshost/faults.h"
#include "oxdiagk/tTraceFilter.h"
#include "support/inquiredText.h"
#include "support/tExactText.h"
#include "support/tOptionVector.h"
#include "support/tScript.h"
#include "support/tTraceModel.h"
#include "support/tWatchedStream.h"
#include "vexk/threadUtility.h"

namespace {

using nOXDIAG100::iTraceDestination;
using nOXDIAG100::tTrace;
using nOXDIAG100::tTraceFilter;

constexpr unsigned kMostWidth = 600;
constexpr unsigned kMostSize = 1024;
constexpr unsigned kMostFault = 12;
constexpr size_t kMostVerdicts = 32;    // that a stream remembers
constexpr u64 kAllocationsOfWords = 1;  // of an option text, before anything is configured

constexpr char kOtherSettings[] =
    "--off --filepath on --timestamp on --linenumber off --mutex on --prefixwidth 7";

constexpr char kVersionText[] = "1.2.3f7";
constexpr tSSVersion kVersion(1, 2, 3, tSSVersion::kPhaseReleased, 7, 0);

class tMachine {
 public:
  void apply(tScript& script);
  void finish();

 private:
  void run(char operation, tScript& script);
  void runSwitch(char operation, tScript& script);
  void arm(bool isLasting, unsigned n);
  bool hasFailed() const { return fault != 0 && ntoshost::faultsInjected() != 0; }
  void demandSettings(char const* demanded);

  void configure(std::string const& options);
  void configureWords(std::string const& list);
  void learn(tWords const& words, bool isSplit);
  void giveUp();
  void push();
  void pop();
  void move(tScript& script);
  void openLine(tTrace::tTraceType type, tScript& script);
  void endLine();
  void roundTrip();

  tWatchedStream stream;
  tFuzzTrace& trace = stream.trace;
  tTraceModel model;
  std::vector<std::string> saved;
  unsigned openLines = 0;
  std::vector<bool> verdicts;  // of the innermost open lines, as far as they are known
  u64 fault = 0;               // the allocation that fails in this operation, 0 for none
};

void tMachine::apply(tScript& script) {
  char const operation = script.operation("cv+-iphlbxedEDMmkwr!*");
  if (operation == '!' || operation == '*') return arm(operation == '*', script.number());
  run(operation, script);
  // A switch of destinations writes lines of its own, whose ends are ends of lines too.
  if (std::string_view("cv-d").find(operation) != std::string_view::npos) verdicts.clear();
  ntoshost::clearFaults();
  fault = 0;
  if (operation == 'p') return;
  demandSettings("the settings are those of the model");
  stream.loseTrack();
  stream.demandDestinations();
  stream.probe();
}

void tMachine::demandSettings(char const* demanded) {
  demandEqual(settingsText(trace), model.text(), demanded);
}

// From here to the end of the next operation.
void tMachine::arm(bool isLasting, unsigned n) {
  fault = 1 + n % kMostFault;
  if (isLasting) ntoshost::failFrom(ntoshost::kFaultMemory, fault);
  if (!isLasting) ntoshost::failNth(ntoshost::kFaultMemory, fault);
}

void tMachine::run(char operation, tScript& script) {
  switch (operation) {
    case 'c':
      return configure(upToNul(script.text()));
    case 'v':
      return configureWords(upToNul(script.text()));
    case '+':
      return push();
    case '-':
      return pop();
    case 'i':
      return demandCutInquiry(trace, script.number() % kMostSize);
    case 'p':
      return stream.put(script.text());
    case 'l':
      return openLine(tTrace::kTraceLine, script);
    case 'b':
      return openLine(tTrace::kBlockEntry, script);
    case 'x':
      return openLine(tTrace::kBlockExit, script);
    case 'e':
      return endLine();
    case 'd':
      return move(script);
    case 'r':
      return roundTrip();
    default:
      return runSwitch(operation, script);
  }
}

void tMachine::runSwitch(char operation, tScript& script) {
  unsigned const number = script.number();
  switch (operation) {
    case 'h':
      trace.put(script.text().data(), static_cast<u32>(script.text().size()), number);
      return;
    case 'E':
    case 'D':
      model.setMaster(operation == 'E');
      return operation == 'E' ? trace.enable() : trace.disable();
    case 'M':
    case 'm':
      model.setMutex(operation == 'M');
      return operation == 'M' ? trace.enableMutex() : trace.disableMutex();
    case 'w':
      model.setWidth(number);
      return trace.setMinPrefixWidth(number);
    default:
      return trace.calibrate();
  }
}

void tMachine::configure(std::string const& options) {
  tExactText exact(options);
  trace.configure(exact.get());
  demand(exact.is(options), "option text is left as it was", [&] { return readable(options); });
  learn(modelWords(options), true);
}

void tMachine::configureWords(std::string const& list) {
  tWords const words = listedWords(list);
  tOptionVector vector(words);
  trace.configure(vector.getCount() + 1, vector.get());  // the null word ends the list
  learn(words, false);
}

// What options change. When memory for the words was lacking that is nothing.
void tMachine::learn(tWords const& words, bool isSplit) {
  if (isSplit && hasFailed() && fault <= kAllocationsOfWords) return;
  if (hasFailed()) {
    giveUp();
  } else {
    model.configure(words);
  }
}

// What memory was lacking for is not known: the switches are as they are, the filter, half read, is
// emptied, and the serial port gets a known rate.
void tMachine::giveUp() {
  ntoshost::clearFaults();
  trace.getFilter()->removeAll();
  tWords const firstRate = {"115200"};
  tOptionVector words(firstRate);
  iTraceDestination& serial = stream.getSinks().serial();
  serial.configure(words.getCount(), words.get());
  if (trace.getDestination() == &serial) trace.setDestination(serial);
  model.adopt(trace, stream.place());
}

void tMachine::push() {
  std::string const text = inquiredText(trace);
  trace.pushConfiguration();
  if (!hasFailed()) saved.push_back(text);
}

void tMachine::pop() {
  trace.popConfiguration();
  if (saved.empty()) return;
  learn(modelWords(saved.back()), true);
  saved.pop_back();
}

void tMachine::move(tScript& script) {
  unsigned const number = script.number() % tWatchedStream::kDestinations;
  unsigned const failingOpens = script.number() % 3;
  bool const isMoved = stream.move(number, failingOpens, script.number() % 3, fault != 0);
  if (hasFailed()) {
    giveUp();
  } else if (isMoved) {
    model.install(stream.place());
  } else {
    model.fallBack(stream.place());
  }
}

// A width is written in full, so a great one takes too long.
void tMachine::openLine(tTrace::tTraceType type, tScript& script) {
  trace.setMinPrefixWidth(trace.getMinPrefixWidth() % kMostWidth);
  model.setWidth(trace.getMinPrefixWidth());
  unsigned const verbosity = script.number();
  unsigned const line = script.number();
  tWords const texts = listedWords(upToNul(script.text()) + ";");
  char const* const component = texts[0].c_str();
  char const* const file = texts[1].c_str();
  i32 const level = trace.getNestingLevel();
  trace.putPrefix(component, kVersion, line, file, verbosity, type);
  ++openLines;
  u32 const threadId = tThreadUtility::getCurrentThreadId();
  bool const isPassed =
      trace.getFilter()->evaluate(component, kVersionText, line, file, threadId, verbosity);
  demand(trace.isLineShown() == (isPassed && trace.isEnabled() != 0),
         "a line is shown when the stream is on and the filter passes it",
         [&] { return readable(script.text()); });
  verdicts.push_back(isPassed);
  if (verdicts.size() > kMostVerdicts) verdicts.erase(verdicts.begin());
  i32 const wanted = type == tTrace::kBlockEntry ? level + 1 : level - 1;
  demand(trace.getNestingLevel() == (type == tTrace::kTraceLine ? level : std::max(wanted, 0)),
         "blocks nest", [&] { return std::to_string(trace.getNestingLevel()); });
}

void tMachine::endLine() {
  trace.endl();
  if (openLines != 0) --openLines;
  if (!verdicts.empty()) verdicts.pop_back();
  if (openLines != 0 && verdicts.empty()) return;
  bool const isAroundShown = verdicts.empty() || verdicts.back();
  demand((isAroundShown && trace.isEnabled() != 0) == trace.isLineShown(),
         "behind a line the one around it is shown or not as before",
         [&] { return isAroundShown ? "it was shown" : "it was hidden"; });
}

// Into a stream with other settings. No line is open: its lock would keep the other stream's alive.
void tMachine::roundTrip() {
  ntoshost::clearFaults();
  while (openLines != 0) endLine();
  tArrivals arrivals;
  tFuzzDestination destination(arrivals);
  destination.isOpen = true;
  tFuzzTrace other(destination);
  tTraceModel otherModel;
  otherModel.shareSerialPort(model);
  if (!model.hasTerms()) {
    other.getFilter()->removeAll();
    otherModel.removeTerms();
  }
  for (std::string const& options : {std::string(kOtherSettings), inquiredText(trace)}) {
    other.configure(options.c_str());
    otherModel.configure(modelWords(options));
  }
  model.shareSerialPort(otherModel);
  demandEqual(settingsText(other), otherModel.text(), "the inquired text is read as any other");
  if (model.hasTerms() && !model.hasSayableFilter()) return;
  demandEqual(settingsText(other), settingsText(trace), "the inquired text gives the same state");
}

// The stream goes with as many lines open as the input left open.
void tMachine::finish() {
  unsigned const linesLeftOpen = openLines;
  roundTrip();
  trace.enable();
  stream.loseTrack();
  stream.probe();
  trace.setMinPrefixWidth(0);
  for (unsigned line = 0; line < linesLeftOpen; ++line) {
    trace.putPrefix("", kVersion, 0, "", 0, tTrace::kTraceLine);
  }
}

}  // namespace

void fuzzInput(std::string const& input) {
  tMachine machine;
  for (tScript script(input); script.next();) machine.apply(script);
  machine.finish();
}
