#include "oxdiagreport/reportOptions.h"

#include <CLI/CLI.hpp>
#include <map>

#include "options/helpEnd.h"
#include "options/toolVersion.h"
#include "oxdiagreport/exitCodes.h"
#include "oxdiagreport/system.h"

namespace {

char const* const kDescription = "Prints statuses that were saved as bytes.";

char const* const kFooter =
    "\n"
    "Text has one status a paragraph: its number in the file, its code and origin, and\n"
    "its description in the language asked for. JSON is one array of objects.\n"
    "\n"
    "A call stack is shown when the modules on it were saved with the status. Symbols\n"
    "are those of the very build that saved it, and are read by llvm-symbolizer.\n"
    "\n"
    "A file of words is UTF-8 text, one word a line:\n"
    "  component slotbus\n"
    "  usage 1 line\n"
    "  property 5 form of a number\n"
    "  value 5 1 decimal digits\n"
    "\n"
    "Examples:\n"
    "  slotbus_demo --save rack.statuses; oxdiagreport rack.statuses\n"
    "  oxdiagreport --words english.words --symbols build rack.statuses\n"
    "  oxdiagreport --format json --language german <rack.statuses\n"
    "\n"
    "Exit code: 0 everything was printed, 1 the file is damaged or no file of statuses\n"
    "(what stands before the damage is printed), or a file of words is wrong, 2 a file\n"
    "or folder cannot be read, 3 the library cannot be started, 4 the output cannot be\n"
    "written, 64 the command line is wrong.";

std::map<std::string, tFormat> const kFormats = {{"text", tFormat::kText},
                                                 {"json", tFormat::kJson}};

}  // namespace

std::optional<tReportOptions> readOptions(std::vector<std::string> const& words, int& exitCode) {
  tReportOptions options;
  CLI::App app(kDescription, "oxdiagreport");
  app.get_formatter()->column_width(18);
  app.footer(kFooter);
  app.allow_windows_style_options(false);  // a path may begin with a slash
  app.set_version_flag("--version", std::string("oxdiagreport ") + getToolVersion() +
                                        "\nexecutive: " + getExecutiveName());
  std::string format = "text";
  app.add_option("FILE", options.file, "The saved statuses; by default, or as -, standard input")
      ->type_name("");
  app.add_option("--format", format, "text (by default) or json")
      ->check(CLI::IsMember({"text", "json"}))
      ->type_name("FORMAT");
  app.add_option("--language", options.language, "english (by default) or german")
      ->check(CLI::IsMember({"english", "german"}))
      ->type_name("LANGUAGE");
  app.add_option("--words", options.words,
                 "What a component's numbers are called, see below; may be\ngiven more than once")
      ->type_name("FILE")
      ->allow_extra_args(false);
  app.add_option("--symbols", options.symbols,
                 "Modules as they were built, with their PDB beside them or\ndebugging information "
                 "in them: function, file and line of\neach frame are shown")
      ->type_name("FOLDER");
  try {
    // The last word first.
    app.parse(std::vector<std::string>(words.rbegin(), words.rend()));
  } catch (CLI::ParseError const& problem) {
    bool const isHelp = app.exit(problem) == 0;
    exitCode = isHelp ? endOfHelp("oxdiagreport", kExitGood, kExitNoOutput) : int{kExitUsage};
    return std::nullopt;
  }
  options.format = kFormats.at(format);
  return options;
}
