#include "slotbus/host/demoOptions.h"

#include <CLI/CLI.hpp>
#include <iostream>

namespace {

char const* const kDescription =
    "Reads the text of a measuring rack and traces on standard output what it finds.";

char const* const kFooter =
    "Verbosities of the component:\n"
    "  150  the summary\n"
    "  140  each bad line, with its status in full\n"
    "  120  each device\n"
    "  100  progress\n"
    "   60  details: hardware ids, entry to and exit from each step\n"
    "\n"
    "Filter: terms of a field, an operator and a value, joined from left to right by\n"
    "&& and ||. An expression that begins with && or || extends the default, which\n"
    "is verbosity>=100; any other replaces it.\n"
    "  fields     compname compver linenumber filename threadid verbosity\n"
    "             (the beginning of a name is enough)\n"
    "  operators  == != > < >= <=\n"
    "\n"
    "Examples:\n"
    "  slotbus_demo                            everything but details\n"
    "  slotbus_demo --filter 'verbosity>=140'  what is wrong, and the summary\n"
    "  slotbus_demo --filter '|| verb==60'     details too\n"
    "  slotbus_demo my-rack.txt --filter 'verb>=100 && line<100'\n"
    "\n"
    "Exit code: 0 the rack is good, 1 something in it is wrong, 2 the file cannot be\n"
    "read, 3 the library cannot be started, 4 the output cannot be written, 64 the\n"
    "command line is wrong.";

}  // namespace

std::optional<tDemoOptions> readOptions(int argc, char** argv, int& exitCode) {
  tDemoOptions options;
  options.file = SLOTBUS_DEFAULT_RACK;
  CLI::App app(kDescription, "slotbus_demo");
  app.get_formatter()->column_width(18);
  app.footer(kFooter);
  app.add_option("FILE", options.file,
                 "The rack to read, at most 1 MiB; by default\n" + options.file)
      ->type_name("");
  app.add_option("--filter", options.filter, "Which lines are shown, see below")->type_name("EXPR");
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& problem) {
    exitCode = app.exit(problem) == 0 ? kExitGood : kExitUsage;
    return std::nullopt;
  }
  return options;
}
