// JSON that a parser of somebody else's takes, whatever the statuses hold.

#include "oxdiagk/statusMacros.h"
#include "oxdiagk/tIntrinsicTypeReportable.h"
#include "oxdiagk/tSSTimeAbsoluteReportable.h"
#include "oxdiagk/tStatus2Description.h"
#include "oxdiagk/tStringProxyReportable.h"
#include "oxdiagreport/jsonFormat.h"
#include "oxdiagreport/reportText.h"
#include "oxdiagreport/textFormat.h"
#include "qelmk/tBinaryObjectWriter.h"
#include "report/reportTest.h"
#include "slotbus/slotbusSupport.h"

using nOXDIAG100::tIntrinsicTypeReportable;
using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;

namespace {

class OxdiagReportJson : public tReportTest {
 protected:
  // What Python's parser reads, as a Python expression of `data` shows it.
  std::string parsed(std::string const& json, std::string const& expression) const {
    std::string const program =
        "import json,sys; data=json.load(open(sys.argv[1],encoding='utf-8')); print(" + expression +
        ")";
    return runProgram({"python3", "-X", "utf8", "-c", program, write("json", json)}).output;
  }
};

_STL::wstring everyUnit() {
  _STL::wstring text;
  for (u32 unit = 0; unit < 0x3000; ++unit) text.push_back(static_cast<wchar_t>(unit));
  for (u32 unit = 0xD7F0; unit < 0x10000; ++unit) text.push_back(static_cast<wchar_t>(unit));
  return text;
}

tStatus2 statusWith(_STL::wstring const& text, char const* component) {
  tStatus2 making;
  tStatus2Description description(making);
  tIntrinsicTypeReportable<_STL::wstring> const reportable(text, making);
  description.addReportItem(3, reportable, making);
  EXPECT_EQ(making.getCode(), 0);
  tStatus2 status;
#define OXDIAG_COMPONENT component
  OXDIAG_SET_STATUS_WITH_DESCRIPTION(status, -7, description);
#undef OXDIAG_COMPONENT
  return status;
}

tWordFile const kNoWords;
tLanguage const kEnglish("english", kNoWords);

std::string jsonOf(tStatus2 const& status, tLanguage const& language) {
  return jsonOf(status, language, {}, {});
}

std::string textOf(tStatus2 const& status, u32 number, tLanguage const& language) {
  return textOf(status, number, language, {});
}

}  // namespace

TEST_F(OxdiagReportJson, OfARackHasItsParts) {
  std::string const json = report({save("1O | 1 | A | d\n"), "--format", "json"}).output;
  EXPECT_EQ(parsed(json,
                   "len(data), data[0]['code'], data[0]['kind'], data[0]['origin']['file'], "
                   "len(data[0]['origin']['stackTrace']) > 0"),
            "2 -61007 error examples/slotbus/component/tRackLine.cpp True\n");
  EXPECT_EQ(parsed(json, "[item['usageType'] for item in data[0]['description']]"),
            "[-61007, 1, 2, 3, 4, 6, 8, 9]\n");
  EXPECT_EQ(parsed(json, "data[0]['description'][1]"),
            "{'usageType': 1, 'class': 'nOXDIAG100::tIntrinsicTypeReportable<u32>', 'text': 'Line: "
            "1', 'values': [1]}\n");
  EXPECT_EQ(parsed(json, "data[1]['kind'], data[1]['description']"), "warning []\n");
}

TEST_F(OxdiagReportJson, HasTheValuesAsTheyAre) {
  std::string const json = report({save("1O | 1 | A | d\n"), "--format", "json"}).output;
  EXPECT_EQ(parsed(json, "[item['values'] for item in data[0]['description']][:-1]"),
            "[[], [1], [{'property': 1}], ['1O'], [1, 99], [{'property': 5, 'value': 1}, "
            "{'property': 5, 'value': 2}], ['{6D1F20C4-8A57-4B3E-910C-5E27B84413F9}']]\n");
  EXPECT_EQ(
      parsed(json,
             "__import__('re').fullmatch(r'\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d[.]\\d{7}Z', "
             "data[0]['description'][-1]['values'][0]) is not None"),
      "True\n");
}

TEST_F(OxdiagReportJson, HasEveryKindOfValue) {
  tStatus2 making;
  tStatus2Description description(making);
  _STL::vector<i64> numbers;
  numbers.push_back(-9223372036854775807LL - 1);
  numbers.push_back(9223372036854775807LL);
  description.addReportItem(1, tIntrinsicTypeReportable<i64>(numbers, making), making);
  description.addReportItem(2, tIntrinsicTypeReportable<u64>(~u64{0}, making), making);
  description.addReportItem(3, tIntrinsicTypeReportable<i32>(-5, making), making);
  description.addReportItem(4, nOXDIAG100::tStringProxyReportable(7, "nX::tTexts", making), making);
  description.addReportItem(5, tIntrinsicTypeReportable<u32>(making), making);
  nOXDIAG100::tSSTimeAbsoluteReportable const time(
      tSSTimeAbsolute::ofKernelTime(u64{134'082'846'001'234'567}), making);
  description.addReportItem(6, time, making);
  EXPECT_EQ(making.getCode(), 0);
  tStatus2 status(-7);
  status.setDescription(description);
  EXPECT_EQ(parsed(jsonOf(status, kEnglish), "[item['values'] for item in data['description']]"),
            "[[-9223372036854775808, 9223372036854775807], [18446744073709551615], [-5], "
            "[{'string': 7, 'of': 'nX::tTexts'}], [], ['2025-11-22T11:30:00.1234567Z']]\n");
}

TEST_F(OxdiagReportJson, HasASignInFrontOfALongYear) {
  // The last second of the year 9999, and the one behind it.
  for (auto const& [second, text] : {std::pair{265046774399, "9999-12-31T23:59:59.0000000Z"},
                                     std::pair{265046774400, "+10000-01-01T00:00:00.0000000Z"}}) {
    tStatus2 making;
    tStatus2Description description(making);
    auto const time = tSSTimeAbsolute::ofKernelTime(static_cast<u64>(second) * 10'000'000);
    description.addReportItem(1, nOXDIAG100::tSSTimeAbsoluteReportable(time, making), making);
    tStatus2 status(-7);
    status.setDescription(description);
    EXPECT_EQ(parsed(jsonOf(status, kEnglish), "data['description'][0]['values'][0]"),
              std::string(text) + "\n");
  }
}

TEST_F(OxdiagReportJson, IsAWholeArrayInFrontOfDamage) {
  std::string const file = save("1O | 1 | A | d\n1 | 1 | A | d");
  std::ofstream(file, std::ios::binary | std::ios::app) << "behind";
  tRun const done = report({file, "--format", "json"});
  EXPECT_EQ(done.exitCode, 1);
  EXPECT_EQ(parsed(done.output, "len(data)"), "1\n");
}

TEST_F(OxdiagReportJson, OfAPlainCodeHasNoOrigin) {
  EXPECT_EQ(parsed(jsonOf(tStatus2(-5), kEnglish), "data['code'], data['origin']"), "-5 None\n");
  EXPECT_EQ(parsed(jsonOf(tStatus2(), kEnglish), "data['kind'], data['description']"),
            "success []\n");
}

TEST_F(OxdiagReportJson, TakesEveryCharacter) {
  std::string const json = jsonOf(statusWith(everyUnit(), "a\x80\"\\\x01"), kEnglish);
  EXPECT_EQ(parsed(json, "ascii(data['origin']['component'])"), "'a\\x80\"\\\\\\x01'\n");
  EXPECT_EQ(parsed(json,
                   "data['description'][0]['text'][9:0x3009] == "
                   "''.join(chr(u) for u in range(0x3000))"),
            "True\n");
}

TEST_F(OxdiagReportJson, PutsAReplacementForHalfAPair) {
  _STL::wstring text(L"a\xD83D");
  text.push_back(L'b');
  text.append(L"\xDE00\xD83D\xDE00");
  EXPECT_EQ(utf8Of(text), "a\uFFFDb\uFFFD\U0001F600");
  EXPECT_EQ(utf8Of(_STL::wstring(L"\xD83D")), "\uFFFD");
}

TEST_F(OxdiagReportJson, TextSteersNoTerminal) {
  std::string const text = textOf(statusWith(everyUnit(), "a\x1B[2J\x9B"), 1, kEnglish);
  for (size_t index = 0; index < text.size(); ++index) {
    unsigned char const byte = static_cast<unsigned char>(text[index]);
    EXPECT_TRUE(byte == '\n' || (byte >= ' ' && byte != 0x7F)) << index;
    if (byte != 0xC2) continue;
    EXPECT_GE(static_cast<unsigned char>(text[index + 1]), 0xA0) << index;
  }
  EXPECT_NE(text.find("a\\x1B[2J\\x9B"), std::string::npos);
}

TEST_F(OxdiagReportJson, NoTextTurnsItsDirection) {
  std::string const shown = withoutControls("a\u202Eb\u2066c\u00E4");
  EXPECT_EQ(shown, "a\\u202Eb\\u2066c\u00E4");
  EXPECT_EQ(textOf(statusWith(everyUnit(), "a"), 1, kEnglish).find("\u202E"), std::string::npos);
  EXPECT_EQ(jsonOf(statusWith(everyUnit(), "a"), kEnglish, {}, {}).find("\u202E"),
            std::string::npos);
}

TEST_F(OxdiagReportJson, SteersNoTerminalEither) {
  tSourcePlace const place = {"f\xC2\x9B", "\x7F.cpp", 1};
  std::string const json = jsonOf(statusWith(everyUnit(), "a\x1B[2J\x9B\x7F"), kEnglish,
                                  {{1, "m\x9B", 1, {place}, ""}}, {{1, 2, 0, "", "\x9D"}});
  for (size_t index = 0; index < json.size(); ++index) {
    unsigned char const byte = static_cast<unsigned char>(json[index]);
    EXPECT_TRUE(byte == '\n' || (byte >= ' ' && byte != 0x7F)) << index;
    if (byte != 0xC2) continue;
    EXPECT_GE(static_cast<unsigned char>(json[index + 1]), 0xA0) << index;
  }
  EXPECT_EQ(parsed(json, "ascii(data['origin']['frames'][0]['places'][0]['function'])"),
            "'f\\x9b'\n");
}

TEST_F(OxdiagReportJson, NoNameBeginsALineOfText) {
  tStatus2 status;
#define OXDIAG_COMPONENT "a\nStatus 2: success"
  OXDIAG_SET_STATUS(status, -7);
#undef OXDIAG_COMPONENT
  tSourcePlace const place = {"f\nStatus 3", "g\nStatus 4", 1};
  std::string const text = textOf(
      status, 1, kEnglish, {{1, "m\nStatus 5", 1, {place}, ""}, {2, "n\nStatus 6", 1, {}, ""}});
  EXPECT_TRUE(text.starts_with("Status 1: error -7, a\\x0AStatus 2: success, ")) << text;
  EXPECT_EQ(text.find("\nStatus"), std::string::npos) << text;
  EXPECT_NE(text.find("    m\\x0AStatus 5+0x1 f\\x0AStatus 3 (g\\x0AStatus 4:1)\n"),
            std::string::npos)
      << text;
}

TEST_F(OxdiagReportJson, AnItemWithoutValueHasNoValues) {
  tStatus2 making;
  tStatus2Description const description(making);
  tStatus2 status(-7);
  status.setDescription(description);
  i32 code = 0;
  std::string bytes(1000, '\0');
  nQELM100::tBinaryObjectWriter writer(bytes.data(), bytes.size());
  status.writeExternal(writer, code);
  writer.finish(code);
  ASSERT_EQ(code, 0);
  bytes.resize(writer.getSize());
  std::string const kNoItems("tStatus2Description\4\0\0\0\0\0\0\0", 27);
  size_t const place = bytes.find(kNoItems);
  ASSERT_NE(place, std::string::npos);
  bytes.replace(place + 19, 8, std::string("\14\0\0\0\1\0\0\0\3\0\0\0\0\0\0\0", 16));
  tRun const done = reportWithoutWords({write("item.statuses", bytes), "--format", "json"});
  EXPECT_EQ(parsed(done.output, "data[0]['description'][0]['values']"), "[]\n") << done.errors;
}

TEST_F(OxdiagReportJson, LineBreaksInTextAreIndented) {
  std::string const text = textOf(statusWith(_STL::wstring(L"a\nStatus 2"), "c"), 1, kEnglish);
  EXPECT_NE(text.find("  Item 3: \"a\n  Status 2\"\n"), std::string::npos) << text;
}
