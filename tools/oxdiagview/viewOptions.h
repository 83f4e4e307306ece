#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace oxdiagview {

enum class tColorChoice { kAuto, kAlways, kNever };

// What the user typed.
struct tViewOptions {
  std::string file = "-";  // "-" is standard input
  bool follows = false;
  bool isDump = false;
  bool wantsSummary = false;
  bool wantsJsonLines = false;
  std::string perfettoFile;  // empty: none
  std::string htmlFile;      // empty: none
  std::string filter;        // empty: everything is shown
  tColorChoice color = tColorChoice::kAuto;
  std::optional<uint64_t> start;           // of the trace, in nanoseconds since 1970
  std::optional<uint64_t> ticksPerSecond;  // none: those of this computer
};

// Reads the words of the command line. Returns nothing when the program has to end at once, for
// --help or a usage error, which have been printed then; `exitCode` is set in that case.
std::optional<tViewOptions> readOptions(std::vector<std::string> const& words, int& exitCode);

}  // namespace oxdiagview
