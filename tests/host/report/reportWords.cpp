// Words of components from files.

#include "oxdiagreport/reportText.h"
#include "oxdiagreport/tWordFile.h"
#include "report/reportTest.h"

namespace {

class OxdiagReportWords : public tReportTest {};

// What is wrong with a text as words; empty for a good one.
std::string problemOf(std::string const& text) {
  tWordFile words;
  std::string problem;
  bool const isGood = words.add(text, problem);
  EXPECT_EQ(isGood, problem.empty());
  return problem;
}

std::string usageIn(tWordFile const& words, char const* component, i32 number) {
  wchar_t const* const word = words.find(component).findUsageType(number);
  return word == nullptr ? "(none)" : utf8Of(_STL::wstring(word));
}

std::string const kNoKind = "a line begins with component, usage, property, value or #";

}  // namespace

TEST_F(OxdiagReportWords, WithoutThemNumbersAreShown) {
  tRun const done = reportWithoutWords({save("1O | 1 | A | d\n1 | 1 | A | d\n")});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.output, "  Item -61007\n  Item 1: 1\n  Item 2: property 1\n"))
      << done.output;
}

TEST_F(OxdiagReportWords, OfSeveralComponentsComeFromSeveralFiles) {
  std::string const other = write("other.words", "component rack\nusage 1 x\n");
  tRun const done = reportWithoutWords(
      {"--words", other, "--words", kEnglishWords, save("1O | 1 | A | d\n1 | 1 | A | d\n")});
  EXPECT_EQ(done.exitCode, 0);
  EXPECT_TRUE(contains(done.output, "  The slot is not a number\n  Line: 1\n")) << done.output;
}

TEST_F(OxdiagReportWords, ABadFileGetsTheLine) {
  std::string const bad = write("bad.words", "component rack\n\nusage one line\n");
  tRun const done = reportWithoutWords({"--words", bad, save("4\n")});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(done.output, "");
  EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  EXPECT_TRUE(contains(done.errors, "bad.words', line 3: a number is missing")) << done.errors;
}

TEST_F(OxdiagReportWords, AFileThatCannotBeReadGetsOneSentence) {
  for (std::string const& name : {pathOf("absent"), pathOf(""), std::string("/dev/zero")}) {
    tRun const done = reportWithoutWords({"--words", name, save("4\n")});
    EXPECT_EQ(done.exitCode, 2);
    EXPECT_EQ(done.output, "");
    EXPECT_TRUE(isOneSentence(done.errors)) << done.errors;
  }
}

TEST(WordFile, HasTheWordsOfEachComponent) {
  tWordFile words;
  std::string problem;
  ASSERT_TRUE(
      words.add("\xEF\xBB\xBF# no words\r\n"
                "component one\r\n usage  1\t line of it \r\nproperty 2 slot\r\n"
                "component two\nusage 1 Zeile \xC3\xA4 \xF0\x9F\x98\x80\n"
                "value 5 -1 digits\nvalue 5 2 0x",
                problem))
      << problem;
  EXPECT_EQ(usageIn(words, "one", 1), "line of it");
  EXPECT_EQ(usageIn(words, "two", 1), "Zeile \u00E4 \U0001F600");
  EXPECT_EQ(usageIn(words, "one", 2), "(none)");
  EXPECT_EQ(usageIn(words, "three", 1), "(none)");
  EXPECT_EQ(utf8Of(_STL::wstring(words.find("one").findProperty(2))), "slot");
  EXPECT_EQ(utf8Of(_STL::wstring(words.find("two").findEnumValue(5, -1))), "digits");
  EXPECT_EQ(utf8Of(_STL::wstring(words.find("two").findEnumValue(5, 2))), "0x");
  EXPECT_EQ(words.find("two").findEnumValue(2, 5), nullptr);
}

TEST(WordFile, AddsToTheWordsOfAComponent) {
  tWordFile words;
  std::string problem;
  ASSERT_TRUE(words.add("component one\nusage 1 first", problem));
  ASSERT_TRUE(words.add("component one\nusage 2 second", problem));
  EXPECT_EQ(usageIn(words, "one", 1) + usageIn(words, "one", 2), "firstsecond");
}

TEST(WordFile, BadLinesAreToldByTheirNumber) {
  EXPECT_EQ(problemOf("component c\n#\nusages 1 x"), "line 3: " + kNoKind);
  EXPECT_EQ(problemOf("{\"component\": \"c\"}"), "line 1: " + kNoKind);
  EXPECT_EQ(problemOf("usage 1 x"), "line 1: words follow a line 'component NAME'");
  EXPECT_EQ(problemOf("component  \n"), "line 1: the name of the component is missing");
  for (char const* number : {"", "x", "1x", "0x1", "2147483648", "-2147483649", "1.5", "+1"}) {
    EXPECT_EQ(problemOf("component c\nusage " + std::string(number) + " word"),
              "line 2: a number is missing, or has no 32 bits")
        << number;
  }
  EXPECT_EQ(problemOf("component c\nvalue 5 word"),
            "line 2: a number is missing, or has no 32 bits");
  EXPECT_EQ(problemOf("component c\nusage 1"), "line 2: the word is missing");
  EXPECT_EQ(problemOf("component c\nusage 1 a\nproperty 1 b\nusage 1 c"),
            "line 4: this number has a word already");
}

TEST(WordFile, TextThatIsNoUtf8IsToldByItsLine) {
  for (char const* text :
       {"\xFF", "\xC3", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\x80",
        "a\xC3"
        "b"}) {
    EXPECT_EQ(problemOf("component c\nusage 1 " + std::string(text)),
              "line 2: the word is no UTF-8 text")
        << text;
  }
  EXPECT_EQ(problemOf("component c\nusage 1 a" + std::string(1, '\0') + "b"),
            "line 2: the word is no UTF-8 text");
}

TEST(WordFile, ALineOfAMebibyteIsAWord) {
  tWordFile words;
  std::string problem;
  std::string const text(size_t{1} << 20, 'x');
  ASSERT_TRUE(words.add("component c\nusage 1 " + text, problem)) << problem;
  EXPECT_EQ(usageIn(words, "c", 1), text);
  EXPECT_EQ(problemOf(text), "line 1: " + kNoKind);
}
