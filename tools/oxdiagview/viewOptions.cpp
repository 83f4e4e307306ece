#include "oxdiagview/viewOptions.h"

#include <CLI/CLI.hpp>
#include <map>

#include "options/filterCheck.h"
#include "options/helpEnd.h"
#include "options/quotedWord.h"
#include "options/toolVersion.h"
#include "oxdiagview/exitCodes.h"
#include "oxdiagview/startTime.h"
#include "oxdiagview/tickRate.h"

namespace oxdiagview {
namespace {

char const* const kDescription =
    "Shows a trace: a file that the trace stream wrote, what a debugger or a serial port\n"
    "received, or the flight recorder's text in a crash dump.";

char const* const kFooter =
    "\n"
    "Each line is shown with the fields that its prefix has: time since the first line,\n"
    "time since the line before, thread, verbosity, component, file and line; then its\n"
    "text, indented by the blocks around it. Which fields a trace has is recognised.\n"
    "\n"
    "EXPR is a filter as of the option --filter of the trace, over what the lines show;\n"
    "a field that a line does not show is 0 or empty. A line without prefix goes with\n"
    "the line before it.\n"
    "\n"
    "Examples:\n"
    "  slotbus_demo --trace '--timestamp --timedelta --prefixwidth 70' | oxdiag-view\n"
    "  oxdiag-view --follow rack.out\n"
    "  oxdiag-view --filter 'verb>=140 || comp==rack' rack.out\n"
    "  oxdiag-view --summary rack.out\n"
    "  oxdiag-view --perfetto rack.json rack.out    for ui.perfetto.dev\n"
    "  oxdiag-view --html rack.html rack.out        for a browser\n"
    "  oxdiag-view --dump memory.dmp\n"
    "\n"
    "Exit code: 0 everything was shown, 1 there is no recorder in the dump, 2 the file\n"
    "cannot be read, 4 the output cannot be written, 64 the command line is wrong.";

std::map<std::string, tColorChoice> const kChoices = {{"auto", tColorChoice::kAuto},
                                                      {"always", tColorChoice::kAlways},
                                                      {"never", tColorChoice::kNever}};

std::string checkFilter(std::string const& expression) {
  return findFilterProblem(expression).value_or("");
}

std::string checkRate(std::string const& text) {
  if (readTickRate(text)) return "";
  return quoteWord(text) + " is no rate such as 2.4GHz, 2400MHz or 2400000000";
}

std::string checkStart(std::string const& text) {
  if (readStartTime(text)) return "";
  return quoteWord(text) + " is no time such as 2026-11-22T20:15:00Z";
}

void addInput(CLI::App& app, tViewOptions& options) {
  app.add_option("FILE", options.file, "The trace; by default, or as -, standard input")
      ->type_name("");
  app.add_flag("--dump", options.isDump,
               "FILE is a crash dump, a memory image or a core file;\n"
               "show the flight recorder in it");
  app.add_flag("--follow", options.follows,
               "Stay, and show what the file grows by, also when\n"
               "another takes its name");
}

void addOutput(CLI::App& app, tViewOptions& options, std::string& start) {
  app.add_flag("--summary", options.wantsSummary, "Show what is in the trace instead of its lines");
  app.add_flag("--jsonl", options.wantsJsonLines,
               "Print an object of JSON for each line, with the names of\n"
               "OpenTelemetry's log data model");
  app.add_option("--start", start,
                 "When the first line was written, as 2026-11-22T20:15:00Z:\n"
                 "the objects of --jsonl have a Timestamp")
      ->type_name("TIME")
      ->check(checkStart);
  app.add_option("--perfetto", options.perfettoFile,
                 "Write the blocks as slices of their threads into FILE,\n"
                 "in the trace event format")
      ->type_name("FILE");
  app.add_option("--html", options.htmlFile,
                 "Write a page for a browser into FILE, which folds,\n"
                 "searches, filters and zooms")
      ->type_name("FILE");
}

// What cannot be meant together.
char const* findContradiction(tViewOptions const& options) {
  bool const wantsPerfetto = !options.perfettoFile.empty();
  bool const wantsPage = !options.htmlFile.empty();
  int const outputs = options.wantsSummary + options.wantsJsonLines + wantsPerfetto + wantsPage;
  if (outputs > 1) return "--summary, --jsonl, --perfetto and --html exclude each other";
  if (!options.follows) return nullptr;
  if (options.isDump) return "--follow excludes --dump, which does not grow";
  if (options.wantsSummary) return "--follow excludes --summary, which needs the end";
  if (wantsPage) return "--follow excludes --html, which needs the end";
  return wantsPerfetto ? "--follow excludes --perfetto, which needs the end" : nullptr;
}

}  // namespace

std::optional<tViewOptions> readOptions(std::vector<std::string> const& words, int& exitCode) {
  tViewOptions options;
  std::string color = "auto";
  std::string rate;
  std::string start;
  CLI::App app(kDescription, "oxdiag-view");
  app.get_formatter()->column_width(18);
  app.allow_windows_style_options(false);
  app.footer(kFooter);
  app.set_version_flag("--version", std::string("oxdiag-view ") + getToolVersion());
  addInput(app, options);
  addOutput(app, options, start);
  app.add_option("--filter", options.filter, "Which lines are shown, see below")
      ->type_name("EXPR")
      ->check(checkFilter);
  app.add_option("--rate", rate, "Ticks of the counter in a second; by default this computer's")
      ->type_name("HZ")
      ->check(checkRate);
  app.add_option("--color", color,
                 "auto (by default: on a terminal, without NO_COLOR),\n"
                 "always, never")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->type_name("WHEN");
  try {
    // The last word first.
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
    char const* const problem = !start.empty() && !options.wantsJsonLines
                                    ? "--start needs --jsonl"
                                    : findContradiction(options);
    if (problem != nullptr) throw CLI::ValidationError(problem);
  } catch (CLI::ParseError const& problem) {
    bool const isHelp = app.exit(problem) == 0;
    exitCode = isHelp ? endOfHelp("oxdiag-view", kExitGood, kExitNoOutput) : int{kExitUsage};
    return std::nullopt;
  }
  options.color = kChoices.at(color);
  options.ticksPerSecond = readTickRate(rate);
  options.start = readStartTime(start);
  return options;
}

}  // namespace oxdiagview
