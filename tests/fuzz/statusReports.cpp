// Files of saved statuses that no driver saved, as lines (support/tStreamScript.h) or as they are.
// Whatever the report tool reads of one, its JSON is JSON, its text steers no terminal, and what it
// says of damage is a byte of the file.

#include <nlohmann/json.hpp>

#include "oxdiagreport/jsonFormat.h"
#include "oxdiagreport/tStatusFile.h"
#include "oxdiagreport/textFormat.h"
#include "support/fuzzing.h"
#include "support/steering.h"
#include "support/tExactText.h"
#include "support/tStreamScript.h"

namespace {

using nOXDIAG100::tStatus2;

constexpr char kWords[] =
    "component rack\nusage 1 line\nusage 2 field\nproperty 1 slot\nproperty 2 instance\n"
    "value 1 2 second\n";

class tReports {
 public:
  explicit tReports(char const* language) : language(language, words) {
    std::string problem;
    demand(words.add(kWords, problem), "the words are good", [&] { return problem; });
  }

  void read(std::string_view bytes) {
    tStatusFile file(bytes);
    tStatus2 status;
    for (number = 0; !file.isAtEnd() && file.read(status);) report(status, file.getModules());
    if (!file.isAtEnd()) demandPlace(file.getProblem(), bytes.size());
  }

 private:
  void report(tStatus2 const& status, std::vector<tSavedModule> const& modules) {
    std::vector<tFrame> const frames = stacks.framesOf(status, modules);
    demandNoSteering(textOf(status, ++number, language, frames));
    std::string const json = jsonOf(status, language, frames, modules);
    demand(nlohmann::json::accept(json), "a report is JSON", [&] { return readable(json); });
    demandNoSteering(json);
  }

  static void demandPlace(std::string const& problem, size_t size) {
    std::string const front = "damaged at byte ";
    bool const isTold = problem.starts_with(front);
    demand(isTold && std::stoull(problem.substr(front.size())) <= size,
           "damage is at a byte of the file", [&] { return problem; });
  }

  tWordFile words;
  tLanguage language;
  tCallStackReader stacks;
  size_t number = 0;
};

}  // namespace

void fuzzInput(std::string const& input) {
  std::string const bytes = tStreamScript(input).getBytes();
  tExactText exact(bytes, false);
  for (char const* language : {"english", "german"}) {
    tReports(language).read(std::string_view(exact.get(), bytes.size()));
  }
}
