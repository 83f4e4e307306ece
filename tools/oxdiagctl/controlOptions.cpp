#include "oxdiagctl/controlOptions.h"

#include <CLI/CLI.hpp>

#include "options/helpEnd.h"
#include "options/nearestWord.h"
#include "options/optionTable.h"
#include "options/quotedWord.h"
#include "options/toolVersion.h"
#include "oxdiagctl/exitCodes.h"
#include "oxdiagctl/iRequestChannel.h"

namespace {

constexpr std::string_view kCommands[] = {"list", "trace", "assert", "version"};

constexpr char kNoCommand[] = "a command is needed: list, trace, assert or version";

char const* const kDescription =
    "Shows and changes the settings of a running diagnostics library: where its trace\n"
    "goes, what stands in it, and which assertions are checked.";

char const* const kExamples =
    "\n"
    "Examples:\n"
    "  oxdiagctl list                                   what can be set\n"
    "  oxdiagctl trace                                  the settings of the trace\n"
    "  oxdiagctl trace --timestamp on --threadid on     changes two of them\n"
    "  oxdiagctl trace --push --destination file C:/x.out --filter \"verbosity>=60\"\n"
    "  oxdiagctl trace --pop                            back to what they were\n"
    "  oxdiagctl assert --category warning --checks off\n"
    "  oxdiagctl trace --raw >settings.txt              as the library writes them\n"
    "  oxdiagctl version                                of this tool and of the library\n"
    "\n"
    "Words of `trace` and `assert`: oxdiagctl trace --help. More in docs/configuring.md.\n";

char const* const kCodes =
    "\n"
    "Exit code: 0 done, 1 the target did not do what was asked of it, 2 nobody listens,\n"
    "3 access is denied, 4 a word is unknown or would have no effect (nothing is\n"
    "changed then), 5 the output cannot be written, 64 the command line is wrong.";

char const* const kOrder =
    "\n"
    "With words the settings are changed and the changes are shown, without words the\n"
    "settings are. --push comes before the words and --pop instead of them.\n";

// In front of the command and behind it.
void addPlace(CLI::App& command, tControlOptions& options) {
  command.get_formatter()->column_width(18);
  command.allow_windows_style_options(false);
  command.add_option("--at", options.place, kPlaceHelp)->type_name("PLACE");
}

// What `trace` and `assert` have in common.
void addSettings(CLI::App& command, tOptionLanguage const& language, tControlOptions& options) {
  addPlace(command, options);
  command.allow_extras();
  CLI::Option* const push =
      command.add_flag("--push", options.pushes, "Save the settings in the target first");
  command.add_flag("--pop", options.pops, "Restore the settings that were saved last")
      ->excludes(push);
  command.add_flag("--raw", options.isRaw, "Print the settings as the library tells them");
  command.footer(describeOptions(language, "oxdiagctl ") + kOrder + kCodes);
}

void addCommands(CLI::App& app, tControlOptions& options) {
  CLI::App* const list = app.add_subcommand("list", "Show what can be set");
  addPlace(*list, options);
  list->callback([&options] { options.command = tCommand::kList; });
  CLI::App* const trace = app.add_subcommand("trace", "Show or change the settings of the trace");
  CLI::App* const assertion =
      app.add_subcommand("assert", "Show or change the settings of the assertions");
  addSettings(*trace, kTraceLanguage, options);
  addSettings(*assertion, kAssertLanguage, options);
  trace->callback([&options, trace] {
    options.command = tCommand::kTrace;
    options.words = trace->remaining();
  });
  assertion->callback([&options, assertion] {
    options.command = tCommand::kAssert;
    options.words = assertion->remaining();
  });
  CLI::App* const version =
      app.add_subcommand("version", "Show the versions of this tool and of the library");
  addPlace(*version, options);
  version->callback([&options] { options.command = tCommand::kVersion; });
  CLI::App* const words = app.add_subcommand("words", "")->group("");
  words->add_option("OBJECT", options.words)->required()->expected(1);
  words->callback([&options] { options.command = tCommand::kWords; });
}

// What stands where a command is to stand, and is none.
std::optional<std::string> findStrangeCommand(CLI::App const& app) {
  auto const strange = app.remaining();
  if (strange.empty()) return std::nullopt;
  std::string const& word = strange.front();
  std::string const sentence = quoteWord(word);
  if (word.starts_with("-")) {
    return sentence + " is no option here; words for the library come behind trace or assert";
  }
  std::string_view const nearest = findNearestWord(word, kCommands);
  return sentence + " is no command (list, trace, assert, version)" +
         (nearest.empty() ? "" : ", perhaps " + std::string(nearest));
}

// Of several wishes about the settings only one can be had.
std::optional<std::string> findContradiction(tControlOptions const& options) {
  if (options.pops && !options.words.empty()) return "--pop takes no words";
  return std::nullopt;
}

}  // namespace

std::optional<tControlOptions> readOptions(int argc, char** argv, int& exitCode) {
  tControlOptions options;
  CLI::App app(kDescription, "oxdiagctl");
  addPlace(app, options);
  addCommands(app, options);
  app.set_version_flag("--version", std::string("oxdiagctl ") + getToolVersion());
  app.allow_extras();
  app.require_subcommand(0, 1);
  app.footer(std::string(kExamples) + kCodes);
  try {
    app.parse(argc, argv);
    if (auto const problem = findStrangeCommand(app)) throw CLI::ValidationError(*problem);
    if (app.get_subcommands().empty()) throw CLI::ValidationError(kNoCommand);
    if (auto const problem = findContradiction(options)) throw CLI::ValidationError(*problem);
  } catch (CLI::ParseError const& problem) {
    bool const isHelp = app.exit(problem) == 0;
    exitCode = isHelp ? endOfHelp("oxdiagctl", kExitGood, kExitNoOutput) : int{kExitUsage};
    return std::nullopt;
  }
  return options;
}
