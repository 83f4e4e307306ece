// The page of a trace, but for what a browser does with it.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "oxdiagview/page/scriptText.h"
#include "oxdiagview/page/tNameList.h"
#include "oxdiagview/page/tPageFormat.h"

namespace {

using oxdiagview::appendScriptText;
using oxdiagview::tKind;
using oxdiagview::tPageFormat;
using oxdiagview::tRecord;

constexpr std::string_view kDataBegin = "<script type=\"application/json\" id=\"trace\">";

// What a format writes into a file in memory.
class tPage {
 public:
  explicit tPage(std::string const& title, uint64_t most = tPageFormat::kMostLines)
      : file(open_memstream(&text, &size)), output(file), format(output, title, most) {}
  ~tPage() { std::free(text); }
  tPage(tPage const&) = delete;
  tPage& operator=(tPage const&) = delete;

  void take(tRecord const& record) { format.take(record); }

  std::string finish() {
    format.finish();
    output.flush();
    std::fclose(file);
    return std::string(text, size);
  }

  uint64_t getLeftOut() const { return format.getLeftOut(); }

 private:
  char* text = nullptr;
  size_t size = 0;
  std::FILE* file;
  oxdiagview::tOutput output;
  tPageFormat format;
};

std::string dataOf(std::string const& page) {
  size_t const begin = page.find(kDataBegin) + kDataBegin.size();
  return page.substr(begin, page.find("</script>", begin) - begin);
}

std::string dataOf(tRecord const& record) {
  tPage page("t");
  page.take(record);
  return dataOf(page.finish());
}

std::string scriptText(std::string_view text) {
  std::string json;
  appendScriptText(json, text);
  return json;
}

tRecord plainLine(std::string_view text) {
  tRecord record;
  record.number = 1;
  record.text = text;
  return record;
}

size_t countOf(std::string_view text, std::string_view wanted) {
  size_t count = 0;
  for (size_t at = 0; (at = text.find(wanted, at)) != std::string_view::npos; ++at) ++count;
  return count;
}

std::string pageLineOf(tRecord const& record) {
  std::string const data = dataOf(record);
  size_t const begin = data.find("\n[") + 1;
  return data.substr(begin, data.find("\n]") - begin);
}

}  // namespace

TEST(PageFormat, EmptyTraceIsAnObjectWithoutLines) {
  tPage page("rack.txt");
  EXPECT_EQ(dataOf(page.finish()),
            "{\"title\":\"rack.txt\",\"lines\":[\n],\n\"components\":[],\n\"files\":[],\n"
            "\"threads\":[],\n\"leftOut\":0,\n\"isInTicks\":true}");
}

TEST(PageFormat, LineHasEveryField) {
  tRecord record = plainLine("open; {");
  record.number = 7;
  record.kind = tKind::kBlockBegin;
  record.hasPrefix = true;
  record.component = "rack";
  record.sourceLine = 21;
  record.file = "a.cpp";
  record.thread = 0x1A;
  record.verbosity = 60;
  record.time = 5000;
  record.timeDelta = 12;
  record.depth = 3;
  record.function = "open";
  std::string const data = dataOf(record);
  EXPECT_TRUE(data.find("\n[7,1,0,3,0,0,21,60,0,0,null,1,\"open; {\",\"open\"]\n") !=
              std::string::npos)
      << data;
  EXPECT_TRUE(
      data.ends_with("\"components\":[\"rack\"],\n\"files\":[\"a.cpp\"],\n"
                     "\"threads\":[\"0x1A\"],\n\"leftOut\":0,\n\"isInTicks\":false}"))
      << data;
}

TEST(PageFormat, FieldThatIsNotThereIsMinusOneOrNull) {
  EXPECT_EQ(pageLineOf(plainLine("x")), "[1,0,0,0,-1,-1,-1,-1,-1,null,null,0,\"x\"]");
}

TEST(PageFormat, TimesCountFromTheFirstLineAndDeltasFromTheSecond) {
  tPage page("t");
  tRecord record = plainLine("x");
  record.time = 1'000'000'000'000;
  record.timeDelta = 1'000'000'000'000;
  page.take(record);
  record.time = 1'000'000'000'250;
  record.timeDelta = 200;
  page.take(record);
  record.time = 999'999'999'990;
  record.timeDelta = -3;
  page.take(record);
  std::string const data = dataOf(page.finish());
  EXPECT_NE(data.find(",0,null,0,\"x\"]"), std::string::npos) << data;
  EXPECT_NE(data.find(",250,200,0,\"x\"]"), std::string::npos) << data;
  EXPECT_NE(data.find(",-10,-3,0,\"x\"]"), std::string::npos) << data;
}

TEST(PageFormat, WithoutARateTimesAreTicks) {
  tPage page("t");
  tRecord record = plainLine("x");
  record.stamp = 500;
  page.take(record);
  record.stamp = 750;
  record.delta = 40;
  page.take(record);
  record.delta = 41;
  page.take(record);
  std::string const data = dataOf(page.finish());
  EXPECT_NE(data.find(",250,41,0,\"x\"]"), std::string::npos) << data;
  EXPECT_TRUE(data.ends_with("\"isInTicks\":true}")) << data;
}

TEST(PageFormat, AssertionsAndErrorsAreMarked) {
  tRecord record = plainLine("x");
  record.kind = tKind::kAssertion;
  record.category = "warning";
  EXPECT_TRUE(pageLineOf(record).starts_with("[1,3,1,")) << pageLineOf(record);
  record.category = "default";
  EXPECT_TRUE(pageLineOf(record).starts_with("[1,3,2,")) << pageLineOf(record);
  record.kind = tKind::kStatus;
  EXPECT_TRUE(pageLineOf(record).starts_with("[1,4,0,")) << pageLineOf(record);
  record.code = -61007;
  EXPECT_TRUE(pageLineOf(record).starts_with("[1,4,2,")) << pageLineOf(record);
  record.code = 61001;
  EXPECT_TRUE(pageLineOf(record).starts_with("[1,4,1,")) << pageLineOf(record);
  record.kind = tKind::kBlockEnd;
  EXPECT_TRUE(pageLineOf(record).starts_with("[1,2,0,")) << pageLineOf(record);
}

TEST(PageFormat, LinesThatAreCutOrUnendedSaySo) {
  tRecord record = plainLine("x");
  record.isCut = true;
  EXPECT_TRUE(pageLineOf(record).ends_with(",2,\"x\"]"));
  record.isEnded = false;
  EXPECT_TRUE(pageLineOf(record).ends_with(",6,\"x\"]"));
}

TEST(PageFormat, EqualNamesHaveOneNumber) {
  tPage page("t");
  for (char const* name : {"rack", "bus", "rack"}) {
    tRecord record = plainLine("x");
    record.component = name;
    page.take(record);
  }
  EXPECT_NE(dataOf(page.finish()).find("\"components\":[\"rack\",\"bus\"]"), std::string::npos);
}

TEST(PageFormat, LinesBehindTheMostAreCounted) {
  tPage page("t", 3);
  for (int line = 0; line < 5; ++line) page.take(plainLine("x"));
  EXPECT_EQ(page.getLeftOut(), 2U);
  std::string const data = dataOf(page.finish());
  EXPECT_EQ(countOf(data, "\"x\""), 3U);
  EXPECT_NE(data.find("\"leftOut\":2,"), std::string::npos);
}

TEST(PageFormat, LargeTraceIsWrittenAsItComes) {
  tPage page("t");
  std::string const text(1000, 'x');
  for (int line = 0; line < 5000; ++line) page.take(plainLine(text));
  std::string const data = dataOf(page.finish());
  EXPECT_EQ(countOf(data, text), 5000U);
}

// The two scripts of the page itself are all that there is.
TEST(PageFormat, NothingInATraceEndsTheData) {
  tRecord record = plainLine("</script><script>x</script><!--<img onerror=x>");
  record.component = record.file = record.function = "</script><b>";
  tPage page("</title></script>");
  page.take(record);
  std::string const text = page.finish();
  EXPECT_EQ(countOf(text, "<script"), 2U);
  EXPECT_EQ(dataOf(text).find('<'), std::string::npos);
  EXPECT_TRUE(text.ends_with("</script>\n</body>\n</html>\n"));
}

TEST(PageFormat, PageRefersToNothingElse) {
  tPage page("t");
  std::string const text = page.finish();
  for (char const* word :
       {"http:", "https:", "src=", "href=", "url(", "@import", "fetch(", "XMLHttpRequest",
        "innerHTML", "insertAdjacentHTML", "document.write", "eval(", "localStorage"}) {
    EXPECT_EQ(text.find(word), std::string::npos) << word;
  }
}

TEST(NameList, NamesWithoutNumberAreOthers) {
  oxdiagview::tNameList names;
  constexpr int kMost = oxdiagview::tNameList::kMostNames;
  for (int number = 0; number < kMost; ++number) {
    EXPECT_EQ(names.numberOf("name" + std::to_string(number)), number);
  }
  for (char const* later : {"one", "two", "one"}) EXPECT_EQ(names.numberOf(later), kMost);
  EXPECT_EQ(names.numberOf("name17"), 17);
  EXPECT_TRUE(names.getJson().ends_with("\"name9999\",\"(others)\"]"));
}

TEST(ScriptText, QuotesWhatJsonAndAScriptElementDemand) {
  EXPECT_EQ(scriptText("a\"b\\c<d\te"), R"("a\"b\\c\u003Cd\te")");
}

TEST(ScriptText, ControlCharactersAreTheirPictures) {
  EXPECT_EQ(scriptText(std::string_view("\0\x1B\x1F\x7F", 4)), "\"\u2400\u241B\u241F\u2421\"");
}

TEST(ScriptText, CharactersOfUtf8Stay) {
  std::string const text = "\u00E4\u20AC\uFFFF\U0001F600\U0010FFFF\u0080\u0800\uD7FF\uE000";
  EXPECT_EQ(scriptText(text), "\"" + text + "\"");
}

TEST(ScriptText, EachByteOfWhatIsNotUtf8IsReplaced) {
  for (char const* text :
       {"\x80", "\xC0", "\xC1", "\xF5", "\xFF", "\xC3", "\xE2\x82", "\xF0\x9F\x98", "\xC0\xAF",
        "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80"}) {
    std::string wanted = "\"";
    for (char const* byte = text; *byte != '\0'; ++byte) wanted += "\uFFFD";
    EXPECT_EQ(scriptText(text), wanted + "\"") << text;
  }
  EXPECT_EQ(scriptText("\xE2\x82x"), "\"\uFFFD\uFFFDx\"");
}
