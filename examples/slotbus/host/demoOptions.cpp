#include "slotbus/host/demoOptions.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <map>

#include "ntoshost/strength.h"
#include "options/helpEnd.h"
#include "options/optionTable.h"
#include "options/toolVersion.h"

namespace {

char const* const kDescription =
    "Reads the text of a measuring rack and traces on standard output what it finds.";

char const* const kVerbositiesAndFilter =
    "Verbosities of the component:\n"
    "  150  the summary\n"
    "  140  each bad line, with its status in full\n"
    "  120  each device\n"
    "  100  progress\n"
    "   60  details: hardware ids, entry to and exit from each step\n"
    "\n"
    "Filter: terms of a field, an operator and a value, joined from left to right by\n"
    "&& and ||. An expression that begins with && or || extends the filter that is\n"
    "there, verbosity>=100 or that of --trace; any other replaces it.\n"
    "  fields     compname compver linenumber filename threadid verbosity\n"
    "             (the beginning of a name is enough)\n"
    "  operators  == != > < >= <=\n";

char const* const kExamplesAndCodes =
    "\n"
    "A switch with nothing behind it is on. A TERM is an operator and a value, such\n"
    "as ==5. More in docs/options.md and docs/destinations.md.\n"
    "\n"
    "Examples:\n"
    "  slotbus_demo                            everything but details\n"
    "  slotbus_demo --filter 'verbosity>=140'  what is wrong, and the summary\n"
    "  slotbus_demo --filter '|| verb==60'     details too\n"
    "  slotbus_demo my-rack.txt --filter 'verb>=100 && line<100'\n"
    "  slotbus_demo --trace '--timestamp --timedelta --prefixwidth 70'\n"
    "  slotbus_demo --trace '--destination file C:/rack.out overwrite'\n"
    "  slotbus_demo --assert '--category default --break off'\n"
    "  slotbus_demo --crash                    the last lines are in a crash dump\n"
    "\n"
    "Exit code: 0 the rack is good, was served until Ctrl-C, or the machine crashed\n"
    "as it was to, 1 something in it is wrong, 2 the file cannot be read, 3 the\n"
    "library cannot be started, 4 the output cannot be written, 64 the command line\n"
    "is wrong; an option word that the library would pass over is.";

std::map<std::string, tColorChoice> const kColorChoices = {{"auto", tColorChoice::kAuto},
                                                           {"always", tColorChoice::kAlways},
                                                           {"never", tColorChoice::kNever}};

std::string makeFooter() {
  return kVerbositiesAndFilter + describeOptions(kTraceLanguage, "--") +
         describeOptions(kAssertLanguage, "--") + kExamplesAndCodes;
}

void addOptions(CLI::App& app, tDemoOptions& options, std::string& color) {
  app.add_option("FILE", options.file,
                 "The rack to read, at most 1 MiB; by default\n" + options.file)
      ->type_name("");
  app.add_option("--filter", options.filter, "Which lines are shown, see below")->type_name("EXPR");
  app.add_option("--trace", options.trace, "Option words of the trace, see below")
      ->type_name("WORDS");
  app.add_option("--assert", options.assertions, "Option words of the assertions, see below")
      ->type_name("WORDS");
  auto* const capture =
      app.add_flag("--capture", options.captures,
                   "Trace into a buffer, whatever the destination, and print\nit at the end");
  app.add_option("--color", color,
                 "auto (by default: on a terminal, without NO_COLOR), always,\nnever")
      ->check(CLI::IsMember({"auto", "always", "never"}).description(""))
      ->type_name("WHEN");
  app.add_option("--drive-c", options.driveC, "The folder that is C: to the trace; by default .")
      ->type_name("DIR");
  app.add_option(
         "--serial", options.serial,
         "Where serial port 1 ends; by default in a terminal of its\nown, which is named on "
         "standard error")
      ->type_name("FILE");
  auto* const save = app.add_option("--save", options.save,
                                    "A file for the statuses of what is wrong, to be read by\n"
                                    "oxdiagreport")
                         ->type_name("FILE");
  app.add_flag("--modules", options.savesModules,
               "Save the modules on the call stacks too, for\noxdiagreport --symbols")
      ->needs(save);
  auto* const serve = app.add_flag("--serve", options.serves,
                                   "Stay until Ctrl-C, so that oxdiagctl can change the\ntrace");
  app.add_option("--at", options.socket, "The socket for oxdiagctl; by default where it looks")
      ->type_name("SOCKET")
      ->needs(serve);
  auto* const crash =
      app.add_flag("--crash", options.crashes,
                   "Stop the machine when the rack is read, with the last\nlines in its crash dump")
          ->excludes(serve)
          ->excludes(capture);
  app.add_option("--dump", options.dump, "The crash dump; by default a new temporary file")
      ->type_name("FILE")
      ->needs(crash);
  app.add_flag("--check-only", options.checksOnly)->group("");
}

}  // namespace

std::optional<tDemoOptions> readOptions(int argc, char** argv, int& exitCode) {
  tDemoOptions options;
  options.file = SLOTBUS_DEFAULT_RACK;
  options.isFirstTry = argc == 1;
  CLI::App app(kDescription, "slotbus_demo");
  app.get_formatter()->column_width(18);
  app.footer(makeFooter());
  app.set_version_flag("--version", std::string("slotbus_demo ") + getToolVersion() +
                                        "\nexecutive: " + ntoshost::getStrength());
  std::string color = "auto";
  addOptions(app, options, color);
  try {
    app.parse(argc, argv);
  } catch (CLI::ParseError const& problem) {
    bool const isHelp = app.exit(problem) == 0;
    exitCode = isHelp ? endOfHelp("slotbus_demo", kExitGood, kExitNoOutput) : int{kExitUsage};
    return std::nullopt;
  }
  options.color = kColorChoices.at(color);
  return options;
}
