// Handles, options, saved settings, filters and categories, from the kernel and through the tunnel.

#include <gtest/gtest.h>

#include "faults/tScenario.h"
#include "oxdiagk/instanceRegistry.h"
#include "oxdiagk/tCategoryTable.h"
#include "oxdiagk/tTraceFilter.h"
#include "support/assertSwitches.h"
#include "support/tRecordingConfigurable.h"
#include "support/tunnelRecords.h"
#include "trace/keptLines.h"
#include "trace/startedModules.h"

namespace {

using namespace nOXDIAG100;

std::string textOf(tConfigurable& object) {
  unsigned int needed = 0;
  object.inquire(nullptr, 0, &needed);
  std::string text(needed, '#');
  object.inquire(text.data(), needed, nullptr);
  return text.substr(0, text.find(" --calibrate")).c_str();
}

// A stream of its own with settings that are not those of the start.
struct tStream {
  tStream() { trace.configure("--linenumber off --filter verbosity>=50 --prefixwidth 33"); }

  tKeptLines kept;
  tOwnTrace trace{kept};
};

std::string stateOf(tStream& stream) {
  return textOf(stream.trace) + " saved " + std::to_string(stream.trace.countSavedConfigurations());
}

// With a configuration to go back to.
struct tSavedStream : tStream {
  tSavedStream() {
    trace.pushConfiguration();
    trace.configure("--timestamp on --prefixwidth 20");
  }
};

struct tContracts {
  tContracts() { contracts.configure("--category warning --checks off"); }

  tPrivateContracts contracts;
};

std::string stateOf(tContracts& on) {
  return textOf(on.contracts) + " saved " + std::to_string(on.contracts.countSavedConfigurations());
}

struct tSavedContracts : tContracts {
  tSavedContracts() {
    contracts.pushConfiguration();
    contracts.configure("--category default --break off");
  }
};

// An object behind a handle that keeps how it was called last.
struct tHandled {
  ~tHandled() { releaseInstance(other); }

  template <class... tRecords>
  void send(tRecords... records) {
    recorder.clear();
    tTestRequest(recorder.handle, records...).send();
  }

  tRegisteredRecorder recorder;
  u32 other = kNoHandle;
};

std::string stateOf(tHandled& on) {
  return on.recorder.calls();
}

template <class tSubject, class Run>
tScenarioRow settingsRow(char const* name, char const* header, std::vector<std::string> answers,
                         Run run) {
  return rowOf<tSubject>(name, header, std::move(answers), run,
                         [](tSubject& subject) { return stateOf(subject); });
}

template <class tSubject>
tScenarioRow optionsRow(char const* name, char const* header, std::vector<std::string> answers,
                        char const* options) {
  return settingsRow<tSubject>(name, header, std::move(answers), [options](tSubject& subject) {
    if constexpr (requires { subject.trace; }) {
      subject.trace.configure(options);
    } else {
      subject.contracts.configure(options);
    }
    return std::string();
  });
}

// A pop forgets what it restores, whether there is memory for that or not.
template <class tSubject, class Run>
tScenarioRow popRow(char const* name, char const* header, std::vector<std::string> answers,
                    Run run) {
  tScenarioRow row = rowOf<tSubject>(name, header, std::move(answers), run, [](tSubject& subject) {
    std::string const state = stateOf(subject);
    return state.substr(0, state.rfind(" saved"));
  });
  row.isRepeated = false;
  return row;
}

tScenarioRow changing(tScenarioRow row, std::vector<std::string> answers) {
  row.changing = std::move(answers);
  return row;
}

bool hasFilter(tStream& stream) {
  return stateOf(stream).find("--filter") != std::string::npos;
}

std::string configureFilter(tStream& stream) {
  stream.trace.configure("--filter compname==rack");
  return hasFilter(stream) ? "" : "without filter";
}

// Its calibration does not show.
std::string pop(tSavedStream& stream) {
  stream.trace.popConfiguration();
  return hasFilter(stream) ? "" : "without filter";
}

std::vector<tScenarioRow> rowsOfStreams() {
  return {
      optionsRow<tStream>("Switches", "oxdiagk/tConfigurable.h", {kNothing},
                          "--timestamp on --prefixwidth 7 --off"),
      settingsRow<tStream>("Words", "oxdiagk/tTrace.h", {kDone},
                           [](tStream& stream) {
                             char mutex[] = "--mutex";
                             char on[] = "on";
                             char* words[] = {mutex, on};
                             stream.trace.configure(2, words);
                             return std::string();
                           }),
      changing(settingsRow<tStream>("Filter", "oxdiagk/tTraceFilter.h",
                                    {kNothing, "without filter"}, configureFilter),
               {"without filter"}),
      settingsRow<tStream>("Push", "oxdiagk/tConfigurable.h", {kNothing},
                           [](tStream& stream) {
                             stream.trace.pushConfiguration();
                             return std::string();
                           }),
      changing(
          popRow<tSavedStream>("Pop", "oxdiagk/tTrace.h", {kNothing, "without filter", kDone}, pop),
          {"without filter"}),
  };
}

std::vector<tScenarioRow> rowsOfFilters() {
  auto const write = [](tTraceFilter& filter) {
    char text[200] = "";
    filter.write(text, sizeof(text), nullptr);
    return std::string(text);
  };
  return {
      rowOf<tTraceFilter>(
          "AddTerm", "oxdiagk/tTraceFilter.h", {kNothing},
          [](tTraceFilter& filter) {
            filter.addTerm("==5", tTraceFilter::kOr, tTraceFilter::kLineNumber);
            return std::string();
          },
          write),
      rowOf<tTraceFilter>(
          "ExtendFilter", "oxdiagk/tTraceFilter.h", {kNothing},
          [](tTraceFilter& filter) {
            filter.parseExpression("&& compname==rack");
            return std::string();
          },
          write),
  };
}

std::vector<tScenarioRow> rowsOfContracts() {
  return {
      optionsRow<tContracts>("ContractSwitches", "oxdiagk/tConfigurable.h", {kNothing},
                             "--category default --checks off"),
      optionsRow<tContracts>("NewCategory", "oxdiagk/tAssertConfiguration.h", {kNothing},
                             "--category disk --loopinvariants off"),
      settingsRow<tContracts>("PushOfContracts", "oxdiagk/tAssertConfiguration.h", {kNothing},
                              [](tContracts& on) {
                                on.contracts.pushConfiguration();
                                return std::string();
                              }),
      popRow<tSavedContracts>("PopOfContracts", "oxdiagk/tAssertConfiguration.h", {kNothing},
                              [](tSavedContracts& on) {
                                on.contracts.popConfiguration();
                                return std::string();
                              }),
  };
}

struct tTable {
  tTable() { categories.add("disk", 1); }

  tCategoryTable<u32> categories{1};
};

std::string stateOf(tTable& table) {
  std::string all;
  for (auto* entry = table.categories.first(); entry != nullptr;
       entry = tCategoryTable<u32>::next(*entry)) {
    all += std::string(entry->getName()) + " ";
  }
  return all;
}

std::vector<tScenarioRow> rowsOfTables() {
  return {
      settingsRow<tTable>("AddCategory", "oxdiagk/tCategoryTable.h", {"null"},
                          [](tTable& table) {
                            if (table.categories.find("net") != nullptr) return std::string(kDone);
                            bool const isAdded = table.categories.add("net", 2) != nullptr;
                            return std::string(isAdded ? kDone : "null");
                          }),
      settingsRow<tTable>("AddCopyOfCategory", "oxdiagk/tCategoryTable.h", {"null"},
                          [](tTable& table) {
                            bool const isAdded = table.categories.addCopy("net", 2) != nullptr;
                            return std::string(isAdded ? kDone : "null");
                          }),
  };
}

std::string acquire(tHandled& on) {
  char name[] = "trace";
  releaseInstance(on.other);
  on.other = acquireInstance(name);
  return on.other == kNoHandle ? "kNoHandle" : kDone;
}

std::string acquireByTunnel(tHandled& on) {
  constexpr u32 kUnwritten = 1;
  releaseInstance(on.other);
  on.other = kUnwritten;
  on.send(acquireRecord(&on.other, "trace"));
  if (on.other == kUnwritten) return kNothing;
  return on.other == kNoHandle ? "kNoHandle" : kDone;
}

std::string configureByTunnel(tHandled& on) {
  on.send(textRecord("--checks off"));
  return stateOf(on) == "configure() " ? "empty text" : "";
}

std::string inquireByTunnel(tHandled& on) {
  char text[40] = "former";
  u32 needed = 0;
  on.send(inquireRecord(text, sizeof(text), &needed));
  if (std::string(text) == on.recorder.settings) return kDone;
  EXPECT_STREQ(text, "former");
  return needed == on.recorder.needed ? "size only" : kNothing;
}

std::vector<tScenarioRow> rowsOfHandles() {
  return {
      settingsRow<tHandled>("AcquireInstance", "oxdiagk/instanceRegistry.h", {"kNoHandle"},
                            acquire),
      settingsRow<tHandled>("TunnelAcquire", "oxdiagk/tunnelRequest.h",
                            {"kNoHandle", kDone, kNothing}, acquireByTunnel),
      changing(settingsRow<tHandled>("TunnelConfigure", "oxdiagk/tunnelRequest.h",
                                     {kNothing, "empty text"}, configureByTunnel),
               {"empty text"}),
      settingsRow<tHandled>("TunnelPush", "oxdiagk/tunnelRequest.h", {kNothing},
                            [](tHandled& on) {
                              on.send(makeRecord(kTunnelPush));
                              return std::string();
                            }),
      rowOf<tHandled>("TunnelInquire", "oxdiagk/tunnelRequest.h", {kDone, "size only", kNothing},
                      inquireByTunnel, [](tHandled&) { return std::string(); }),
  };
}

}  // namespace

class SettingsThatFail : public testing::TestWithParam<tScenarioRow> {};

TEST_P(SettingsThatFail, KeepWhatWasThere) {
  runScenario(GetParam());
}

INSTANTIATE_TEST_SUITE_P(Stream, SettingsThatFail, testing::ValuesIn(rowsOfStreams()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Filter, SettingsThatFail, testing::ValuesIn(rowsOfFilters()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Contracts, SettingsThatFail, testing::ValuesIn(rowsOfContracts()),
                         nameOfRow);
INSTANTIATE_TEST_SUITE_P(Table, SettingsThatFail, testing::ValuesIn(rowsOfTables()), nameOfRow);
INSTANTIATE_TEST_SUITE_P(Handle, SettingsThatFail, testing::ValuesIn(rowsOfHandles()), nameOfRow);
