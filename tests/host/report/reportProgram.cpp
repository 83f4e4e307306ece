// The report tool: its options, outputs and exit codes.

#include "patterns.h"
#include "reportTest.h"

namespace {

class OxdiagReport : public tReportTest {};

std::string const kTwoBadLines = "1 | 1 | A | d\n1O | 2 | A | d\n1 | 3 | A | d\n";

// Without what differs from run to run.
std::string withoutTimes(std::string const& text) {
  return replaceAll(text, "(Time|Zeitpunkt): [^\n\"]*", "$1: T");
}

std::string const kEnglish =
    "Status 1: error -61007, slotbus, examples/slotbus/component/tRackLine.cpp:N\n"
    "  The slot is not a number\n"
    "  Line: 2\n"
    "  Field: slot\n"
    "  Found: \"1O\"\n"
    "  Allowed: 1 to 99\n"
    "  Forms: decimal digits, 0x and hexadecimal digits\n"
    "  Bus: {6D1F20C4-8A57-4B3E-910C-5E27B84413F9}\n"
    "  Time: T\n"
    "\n"
    "Status 2: error -61017, slotbus, examples/slotbus/component/tRack.cpp:N\n"
    "  The slot is taken by an earlier line\n"
    "  Line: 3\n"
    "  Field: slot\n"
    "  Found: \"1 | 3 | A | d\"\n"
    "  Earlier line: 1\n"
    "  Bus: {6D1F20C4-8A57-4B3E-910C-5E27B84413F9}\n"
    "  Time: T\n";

std::string shortened(std::string const& text) {
  return replaceAll(withoutTimes(text), "cpp:[0-9]+", "cpp:N");
}

}  // namespace

TEST_F(OxdiagReport, PrintsEachStatusAsAParagraph) {
  tRun const done = report({save(kTwoBadLines)});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.errors, "");
  EXPECT_EQ(shortened(done.output), kEnglish);
}

TEST_F(OxdiagReport, TextAndEnglishAreWhatIsThereByDefault) {
  std::string const file = save(kTwoBadLines);
  EXPECT_EQ(report({file, "--format", "text", "--language", "english"}).output,
            report({file}).output);
}

TEST_F(OxdiagReport, SpeaksGerman) {
  tRun const done =
      reportWithoutWords({"--language", "german", "--words", kGermanWords, save(kTwoBadLines)});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.output, "Status 1: Fehler -61007, slotbus, "));
  EXPECT_TRUE(contains(done.output, "  Der Steckplatz ist keine Zahl\n  Zeile: 2\n"));
  EXPECT_TRUE(contains(done.output, "  Gefunden: \u201E1O\u201C\n  Erlaubt: 1 bis 99\n"));
  EXPECT_TRUE(contains(done.output, "  Fr\u00FChere Zeile: 1\n"));
}

TEST_F(OxdiagReport, ReadsStandardInput) {
  std::string const file = save(kTwoBadLines);
  std::string const wanted = reportWithoutWords({file}).output;
  for (char const* name : {"", " -"}) {
    std::string const command = std::string(kReport) + name + " <" + file;
    tRun const done = runProgram({"sh", "-c", command});
    EXPECT_EQ(done.exitCode, 0);
    EXPECT_EQ(done.output, wanted);
  }
}

TEST_F(OxdiagReport, ReadsAPipe) {
  std::string const command =
      "cat " + save(kTwoBadLines) + " | " + kReport + " --words " + kEnglishWords;
  EXPECT_EQ(shortened(runProgram({"sh", "-c", command}).output), kEnglish);
}

TEST_F(OxdiagReport, TellsOfAWarning) {
  tRun const done = report({save("# nothing\n")});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_EQ(done.output.substr(0, 34), "Status 1: warning 61001, slotbus, ");
  EXPECT_EQ(countLines(done.output), 1U);
}

TEST_F(OxdiagReport, AnEmptyFileHasNoStatuses) {
  std::string const file = save("1 | 1 | A | d\n");
  EXPECT_EQ(std::filesystem::file_size(file), 0U);
  tRun const asText = report({file});
  EXPECT_EQ(asText.exitCode, 0);
  EXPECT_EQ(asText.output + asText.errors, "");
  EXPECT_EQ(report({file, "--format", "json"}).output, "[]\n");
}

TEST_F(OxdiagReport, AMissingFileGetsOneSentence) {
  tRun const done = report({pathOf("absent")});
  EXPECT_EQ(done.exitCode, 2);
  EXPECT_EQ(done.output, "");
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "absent': No such file")) << done.errors;
}

TEST_F(OxdiagReport, AFolderAndAnEndlessFileGetOneSentence) {
  for (std::string const& name : {pathOf(""), std::string("/dev/zero")}) {
    tRun const done = report({name});
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(OxdiagReport, AFileOfSomethingElseGetsTheOffset) {
  tRun const done = report({kDefaultRack});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(done.output, "");
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "rack.txt' is damaged at byte 0: no status begins there"));
}

TEST_F(OxdiagReport, WhatStandsBeforeTheDamageIsPrinted) {
  std::string const file = save(kTwoBadLines);
  std::string const whole = report({file}).output;
  size_t const size = std::filesystem::file_size(file);
  std::filesystem::resize_file(file, size - 1);
  tRun const done = report({file});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(done.output, whole.substr(0, whole.find("\nStatus 2")));
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  std::string const place = std::to_string(size - 4);
  EXPECT_TRUE(contains(done.errors, "damaged at byte " + place + ": the status is cut off"))
      << done.errors;
}

TEST_F(OxdiagReport, WrongUsageIsDistinctFromDamage) {
  for (std::vector<std::string> const& arguments : {std::vector<std::string>{"--colour"},
                                                    {"--format"},
                                                    {"--format", "xml"},
                                                    {"--language", "latin"},
                                                    {"--language"},
                                                    {"one", "two"}}) {
    tRun const done = report(arguments);
    EXPECT_EQ(done.exitCode, 64);
    EXPECT_EQ(done.output, "");
    EXPECT_NE(done.errors, "");
  }
}

TEST_F(OxdiagReport, HelpTellsOptionsAndExitCodes) {
  tRun const done = report({"--help"});
  EXPECT_EQ(done.exitCode, 0);
  for (char const* wanted : {"--format", "--language", "german", "json", "Exit code", "64"}) {
    EXPECT_TRUE(contains(done.output, wanted)) << wanted;
  }
}

TEST_F(OxdiagReport, OutputThatCannotBeWrittenGetsOneSentence) {
  std::string const file = save(kTwoBadLines);
  tRun const done = report({file}, "/dev/full");
  EXPECT_EQ(done.exitCode, 4);
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
}

TEST_F(OxdiagReport, StatusesThatCannotBeSavedGetOneSentenceFromTheDemo) {
  for (std::string const& name : {pathOf("absent/file"), std::string("/dev/full")}) {
    tRun const done = run({write("rack.txt", kTwoBadLines), "--save", name});
    EXPECT_EQ(done.exitCode, 4);
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST_F(OxdiagReport, SavingReplacesAnOlderFile) {
  std::string const file = save(kTwoBadLines);
  auto const size = std::filesystem::file_size(file);
  write("rack.statuses", std::string(size * 2, 'x'));
  save(kTwoBadLines);
  EXPECT_EQ(std::filesystem::file_size(file), size);
}
