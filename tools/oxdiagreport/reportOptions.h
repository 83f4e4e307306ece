#pragma once

#include <optional>
#include <string>

enum class tFormat { kText, kJson };

// What the user typed.
struct tReportOptions {
  std::string file = "-";  // "-" is standard input
  tFormat format = tFormat::kText;
  std::string language = "english";
};

// Reads the command line. Returns nothing when the program has to end at once, for --help or a
// usage error, which have been printed then; `exitCode` is set in that case.
std::optional<tReportOptions> readOptions(int argc, char** argv, int& exitCode);
