// Switches between the destinations that options name, and what a destination does by itself.

#include <gtest/gtest.h>

#include <cstdio>

#include "faults/tScenario.h"
#include "ntos/driveFolder.h"
#include "oxdiagk/tCTFTraceDestination.h"
#include "oxdiagk/tFileTraceDestination.h"
#include "oxdiagk/tRecorderTraceDestination.h"
#include "oxdiagk/tSerialTraceDestination.h"
#include "oxdiagk/tVEXTraceDestination.h"
#include "trace/capturedPrint.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"
#include "vexk/serialSupport.h"

namespace {

using namespace nOXDIAG100;

constexpr char kBefore[] = "written before";
constexpr char kStill[] = "still writing";

// What the options name, with something behind each that can be looked at, and a stream. A ring of
// the recorder stays when it is not used.
class tPlaces {
 public:
  tPlaces() {
    tSerialTraceDestination::getInstance();
    tFileTraceDestination::getInstance();
    choose("recorder 16");
    choose("vex");
  }
  ~tPlaces() {
    choose("vex");
    choose("recorder 16");
    choose("vex");
    tSerialTraceDestination::getInstance()->close();
    tFileTraceDestination::getInstance()->close();
  }
  tPlaces(tPlaces const&) = delete;
  tPlaces& operator=(tPlaces const&) = delete;

  void choose(std::string const& sink) { trace.configure(("--destination " + sink).c_str()); }
  void write(char const* line) { trace.put(line).endl(); }

  bool isAt(std::string const& sink) {
    return settingsOf(trace).find("--destination " + sink + " ") != std::string::npos;
  }

  // What a destination has received; of a file by its name.
  std::string contentOf(std::string const& sink) const {
    if (sink.starts_with("serial")) return port.content();
    if (sink.starts_with("file C:/")) return drive.read(sink.substr(8));
    if (sink.starts_with("recorder")) return contentOfRing();
    return print.text();
  }

  // But for the destination.
  std::string settings() {
    std::string const all = settingsOf(trace);
    return all.substr(all.find(" --compname"));
  }

 private:
  static std::string contentOfRing() {
    tRecorderRing const* const ring = tRecorderTraceDestination::getInstance()->getRing();
    u64 const size = ring->written < ring->capacity ? ring->written : ring->capacity;
    return std::string(const_cast<tRecorderRing*>(ring)->getText(), size);
  }

  tDriveFolder drive;
  tSerialFile port;
  tCapturedPrint print;

 public:
  tOwnTrace trace{tVEXTraceDestination::getInstance()};
};

bool has(std::string const& text, char const* part) {
  return text.find(part) != std::string::npos;
}

// A stream at one place, which goes to another one.
class tSwitch final : public tScenario {
 public:
  tSwitch(std::string const& first, std::string const& next) : from(first), to(next) {
    places.choose(from);
    EXPECT_TRUE(places.isAt(from)) << from;
    places.write(kBefore);
  }

  std::string run() override {
    places.choose(to);
    return places.isAt(to) ? kDone : places.isAt(from) ? "former" : "debugger";
  }

  // Asked when no call fails: it writes, too.
  std::string state() override {
    places.write(kStill);
    std::string const now = places.isAt(to) ? to : places.isAt(from) ? from : "vex";
    EXPECT_TRUE(has(places.contentOf(now), kStill)) << "at " << now;
    EXPECT_TRUE(has(places.contentOf(from), kBefore)) << "what was written is lost";
    return places.settings();
  }

 private:
  std::string const from;
  std::string const to;
  tPlaces places;
};

std::string nameOf(std::string const& sink) {
  std::string name;
  for (char const each : sink) {
    if (isalnum(each) != 0) name += each;
  }
  return name;
}

tScenarioRow switchRow(char const* from, char const* to, std::vector<std::string> answers) {
  return {nameOf(from) + "To" + nameOf(to), "oxdiagk/tTrace.h", std::move(answers),
          [=] { return std::make_unique<tSwitch>(from, to); }};
}

constexpr char kVex[] = "vex";
constexpr char kSerial[] = "serial 9600";
constexpr char kFile[] = "file C:/one.out";
constexpr char kOtherFile[] = "file C:/two.out";
constexpr char kRecorder[] = "recorder 32";

std::vector<tScenarioRow> rowsOfSwitches() {
  std::vector<tScenarioRow> rows;
  for (char const* const from : {kVex, kSerial, kFile, kRecorder}) {
    for (char const* const to : {kVex, kSerial, kFile, kOtherFile, kRecorder}) {
      if (from == to) continue;
      // A file may lose the line that announces the switch.
      rows.push_back(from == kFile ? switchRow(from, to, {"former", kDone})
                                   : switchRow(from, to, {"former"}));
    }
  }
  return rows;
}

// A file that is open, and a text for it.
struct tOpenFile {
  tOpenFile() {
    char name[] = "C:/one.out";
    char* words[] = {name};
    file.configure(1, words);
    EXPECT_EQ(file.open(), 1u);
    file.put(kBefore);
  }

  tDriveFolder drive;
  tFileTraceDestination file;
};

std::string put(tOpenFile& on) {
  u64 const lost = tFileTraceDestination::countLostTexts();
  on.file.put(kStill);
  return tFileTraceDestination::countLostTexts() == lost ? kDone : "lost";
}

std::string open(tOpenFile& on) {
  on.file.close();
  return on.file.open() == 1 ? kDone : "closed";
}

std::vector<tScenarioRow> rowsOfFiles() {
  auto const content = [](tOpenFile& on) { return on.drive.read("one.out"); };
  return {
      rowOf<tOpenFile>("Put", "oxdiagk/tFileTraceDestination.h", {"lost"}, put, content),
      rowOf<tOpenFile>("Open", "oxdiagk/tFileTraceDestination.h", {"closed"}, open, content),
  };
}

// A ring with text, of which another size is wanted.
struct tRing {
  tRing() {
    resize("1");
    recorder.put(kBefore);
  }

  bool resize(char const* kiB) {
    char word[8];
    char* words[] = {word};
    std::snprintf(word, sizeof(word), "%s", kiB);
    recorder.configure(1, words);
    return recorder.open() == 1;
  }

  tRecorderTraceDestination recorder;
};

std::vector<tScenarioRow> rowsOfRings() {
  return {rowOf<tRing>(
      "Resize", "oxdiagk/tRecorderTraceDestination.h", {"0"},
      [](tRing& on) { return std::string(on.resize("2") ? kDone : "0"); },
      [](tRing& on) {
        tRecorderRing const* const ring = on.recorder.getRing();
        return std::to_string(ring->capacity) +
               std::string(const_cast<tRecorderRing*>(ring)->getText(), ring->written);
      })};
}

}  // namespace

class DestinationsThatFail : public testing::TestWithParam<tScenarioRow> {};

TEST_P(DestinationsThatFail, KeepWhatWasThere) {
  runScenario(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Switch, DestinationsThatFail, testing::ValuesIn(rowsOfSwitches()),
                         nameOfRow);
INSTANTIATE_TEST_SUITE_P(File, DestinationsThatFail, testing::ValuesIn(rowsOfFiles()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Recorder, DestinationsThatFail, testing::ValuesIn(rowsOfRings()),
                         nameOfRow);
