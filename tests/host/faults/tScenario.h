#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

#include "ntos/types.h"

// Operations that can fail, as rows of tables: each is run on what was prepared for it with its
// first, its second, its third ... fallible call failing, until none fails. Behind each failure its
// answer is one that its header documents, what it worked on is as before, the same operation done
// again succeeds, and nothing is left at the end.

// What one operation works on, made anew for each run.
class tScenario {
 public:
  virtual ~tScenario() = default;

  // The operation. Returns its answer, kDone for success; or nothing when it does not say: then the
  // answer is kDone or kNothing, by the state.
  virtual std::string run() = 0;

  // What stays as it is when the operation fails, and what it changes when it succeeds.
  virtual std::string state() = 0;
};

inline char const kDone[] = "done";
inline char const kNothing[] = "nothing";

struct tScenarioRow {
  std::string name;
  char const* header;                // that documents the answers, as clients include it
  std::vector<std::string> answers;  // of runs in which a call fails: all that come
  std::function<std::unique_ptr<tScenario>()> prepare;

  // Those of the answers behind which the state is another one, as the header says.
  std::vector<std::string> changing = {};

  bool isRepeated = true;  // false of what a failure uses up
};

// How a row is named in the report of the tests.
std::ostream& operator<<(std::ostream& out, tScenarioRow const& row);
std::string nameOfRow(testing::TestParamInfo<tScenarioRow> const& info);

// Runs a row as said above; expectations of GoogleTest say what is wrong.
void runScenario(tScenarioRow const& row);

// The name of a code of the library and what is beneath it; kDone of 0, the number of others.
std::string nameOfCode(i32 code);

// A row of three functions: `make` gives a unique_ptr, `run` and `state` take what it points to.
template <class Make, class Run, class State>
tScenarioRow makeRow(std::string name, char const* header, std::vector<std::string> answers,
                     Make make, Run run, State state) {
  using tSubject = decltype(make());
  class tThree final : public tScenario {
   public:
    tThree(Make const& make, Run const& run, State const& state)
        : subject(make()), runs(run), tells(state) {}
    std::string run() override { return runs(*subject); }
    std::string state() override { return tells(*subject); }

   private:
    tSubject subject;
    Run runs;
    State tells;
  };
  return {std::move(name), header, std::move(answers),
          [=] { return std::make_unique<tThree>(make, run, state); }};
}

// The same of an object of a class that needs nothing to be made.
template <class tSubject, class Run, class State>
tScenarioRow rowOf(std::string name, char const* header, std::vector<std::string> answers, Run run,
                   State state) {
  return makeRow(
      std::move(name), header, std::move(answers), [] { return std::make_unique<tSubject>(); }, run,
      state);
}
