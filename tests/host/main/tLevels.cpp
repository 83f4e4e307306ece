#include "tLevels.h"

#include <unistd.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "ntoshost/faults.h"
#include "tRound.h"
#include "tWorkers.h"

namespace {

void tell(char const* end, std::string const& test, std::string const& said) {
  std::string const line = std::string(end) + " " + test + "\t" + said + "\n";
  if (write(STDOUT_FILENO, line.data(), line.size()) < 0) _exit(1);
}

// The executive's sentence, or the first line.
std::string sentenceIn(std::string const& output) {
  size_t const start = output.rfind("ntos: ");
  std::string const rest = start == std::string::npos ? output : output.substr(start);
  return rest.substr(0, rest.find('\n'));
}

// Suite -> its tests that are left out; "*" is all of them.
std::map<std::string, std::string> readBelow(std::string const& name) {
  std::map<std::string, std::string> below;
  std::ifstream file(name);
  for (std::string line; std::getline(file, line);) {
    size_t const colon = line.find(": ");
    if (line[0] != '#' && colon != std::string::npos) {
      below[line.substr(0, colon)] = line.substr(colon + 2);
    }
  }
  return below;
}

// "Suite.*", or "Suite.*-Suite.One:Suite.Other".
std::string filterOf(std::string const& all, std::map<std::string, std::string> const& below) {
  std::string const suite = all.substr(0, all.find('.'));
  auto const found = below.find(suite);
  if (found == below.end()) return all;
  std::string filter = all + "-";
  std::istringstream names(found->second);
  for (std::string name; names >> name;) filter += suite + "." + name + ":";
  return filter;
}

// Which of its tests a suite dies of is not known, so without a file each test is a job.
std::vector<std::string> filtersOf(tCommand const& command) {
  if (command.below.empty()) return listTests();
  std::map<std::string, std::string> const below = readBelow(command.below);
  std::vector<std::string> filters = listSuites();
  for (std::string& filter : filters) filter = filterOf(filter, below);
  return filters;
}

}  // namespace

int runAtLevel(tCommand const& command) {
  std::vector<std::string> const filters = filtersOf(command);
  tRoundPlan const plan = {[](std::string const&) {
                             tWorkers::beginRound();
                             ntoshost::clearFaults();
                           },
                           [](tRoundResult const& result) {
                             bool const holds = result.hasPassed && result.wrong.empty();
                             tell(holds ? "held" : "failed", result.test, sentenceIn(result.wrong));
                           },
                           command.level == "apc" ? APC_LEVEL : DISPATCH_LEVEL};
  runEach(filters, plan, [](std::string const& filter, std::string const& why) {
    tell("died", filter.substr(0, filter.find('-')), sentenceIn(why));
  });
  return 0;
}
