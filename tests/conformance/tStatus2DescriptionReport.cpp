// The report of a description.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "support/callerCodes.h"
#include "support/tItemStream.h"
#include "support/tItemTranslator.h"
#include "support/tTestReportable.h"

using nOXDIAG100::tStatus2;
using nOXDIAG100::tStatus2Description;

namespace {

// The report of `description`, behind the text that the output holds already.
class tReport {
 public:
  explicit tReport(tStatus2Description const& description,
                   tItemTranslator const& translator = tItemTranslator(), i32 codeOnEntry = 0)
      : status(codeOnEntry), output(L"at: ") {
    description.generateReport(translator, output, status);
  }
  tNarrowText text() const { return tNarrowText(output); }

  tStatus2 status;
  _STL::wstring output;
};

// A translator whose text with the number `call`, from 1, goes wrong.
tItemTranslator failingAt(u32 call) {
  tItemTranslator translator;
  translator.failAt = call;
  return translator;
}
tItemTranslator cutAt(u32 call) {
  tItemTranslator translator;
  translator.cutAt = call;
  return translator;
}

void expectOutOfMemory(tStatus2 const& status) {
  EXPECT_EQ(status.getCode(), kStatusOutOfMemory);
  EXPECT_STREQ(status.getComponentName(), "oxdiagk");
  EXPECT_STREQ(status.getFileName(), "source/status/tStatus2DescriptionImplementation");
}

// Usage types 10, 0, 30 and the numbers 1 and 3; the second item has no reportable.
void readWithGap(tStatus2Description& description) {
  tItemStream& stream = cleanStream();
  tStatus2Description whole;
  i32 code = addItems(whole, 3);
  whole.writeExternal(stream, code);
  EXPECT_EQ(code, 0);
  if (code != 0) return;
  // The count, then four items of the stream for every one of the list.
  stream.erase(8);
  stream.erase(7);
  stream.replace(6, 0);
  description.readExternal(stream, code);
  EXPECT_EQ(code, 0);
}

}  // namespace

TEST(DescriptionReport, OfAnEmptyListIsEmpty) {
  tReport const report{tStatus2Description()};
  EXPECT_STREQ(report.text().get(), "at: ");
  EXPECT_EQ(report.status.getCode(), 0);
}

TEST(DescriptionReport, IsUsageTextAndValue) {
  tStatus2Description description;
  addItems(description, 1);
  tReport const report(description);
  EXPECT_STREQ(report.text().get(), "at: <10>1");
  EXPECT_EQ(report.status.getCode(), 0);
}

TEST(DescriptionReport, HasSeparatorsBetweenItemsAndNoneBehindTheLast) {
  tStatus2Description description;
  addItems(description, 3);
  EXPECT_STREQ(tReport(description).text().get(), "at: <10>1; <20>2; <30>3");
}

TEST(DescriptionReport, OfHeaderNewlineAndValue) {
  tStatus2Description description;
  tStatus2 status;
  description.addHeader(10, status);
  description.addNewline(status);
  description.addReportItem(20, tTestReportable(2), status);
  EXPECT_STREQ(tReport(description).text().get(), "at: [<10>]; <223>; <20>2");
}

TEST(DescriptionReport, ATitleSeesItsOwnItemOnly) {
  tStatus2Description description;
  addItems(description, 1);
  tStatus2 status;
  description.addHeader(20, status);
  EXPECT_STREQ(tReport(description).text().get(), "at: <10>1; [<20>]");
}

TEST(DescriptionReport, SkipsAnItemWithoutReportableButNotItsSeparator) {
  tStatus2Description description;
  readWithGap(description);
  EXPECT_STREQ(tReport(description).text().get(), "at: <10>1; ; <30>3");
}

TEST(DescriptionReport, KeepsAWarningOnEntry) {
  tStatus2Description description;
  addItems(description, 1);
  tReport const report(description, tItemTranslator(), kEarlierWarning);
  EXPECT_STREQ(report.text().get(), "at: <10>1");
  EXPECT_EQ(report.status.getCode(), kEarlierWarning);
}

TEST(DescriptionReport, IsNotMadeWithAnErrorOnEntry) {
  tStatus2Description description;
  addItems(description, 1);
  tItemTranslator const translator;
  tReport const report(description, translator, kEarlierError);
  EXPECT_STREQ(report.text().get(), "at: ");
  EXPECT_EQ(report.status.getCode(), kEarlierError);
  EXPECT_EQ(translator.calls, u32{0});
}

TEST(DescriptionReport, EndsWithATranslatorThatFails) {
  tStatus2Description description;
  addItems(description, 3);
  char const* const texts[] = {"at: ", "at: <10>", "at: <10>1", "at: <10>1; ", "at: <10>1; <20>"};
  for (u32 call = 1; call <= 5; ++call) {
    tReport const report(description, failingAt(call));
    EXPECT_STREQ(report.text().get(), texts[call - 1]);
    EXPECT_EQ(report.status.getCode(), tItemTranslator::kStatusFailed);
  }
}

TEST(DescriptionReport, AsksNothingAfterAFailure) {
  tStatus2Description description;
  addItems(description, 3);
  tItemTranslator const translator = failingAt(3);
  tReport const report(description, translator);
  EXPECT_EQ(translator.calls, u32{3});
}

TEST(DescriptionReport, EndsWithAReportableThatFails) {
  tStatus2Description description;
  addItems(description, 3);
  tBehaviourScope const failing(tTestReportable::kReportFails);
  tReport const report(description);
  EXPECT_STREQ(report.text().get(), "at: <10>1");
  EXPECT_EQ(report.status.getCode(), tTestReportable::kStatusReportFailed);
}

TEST(DescriptionReport, TellsOfATextThatIsNotWhole) {
  tStatus2Description description;
  addItems(description, 2);
  // The first usage text, and the separator.
  tReport const usage(description, cutAt(1));
  expectOutOfMemory(usage.status);
  EXPECT_STREQ(usage.text().get(), "at: ");
  tReport const separator(description, cutAt(3));
  expectOutOfMemory(separator.status);
  EXPECT_STREQ(separator.text().get(), "at: <10>1");
}

TEST(DescriptionReport, TellsOfAReportThatIsNotWhole) {
  tStatus2Description description;
  addItems(description, 2);
  tBehaviourScope const cut(tTestReportable::kReportIsCut);
  tReport const report(description);
  expectOutOfMemory(report.status);
  EXPECT_STREQ(report.text().get(), "at: <10>1");
}
