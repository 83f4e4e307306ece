// Terms that are added and removed by themselves, as behind a field switch, and the written form in
// buffers of every size.

#include "conformance/harness.h"
#include "oxdiagk/tTraceFilter.h"

using nOXDIAG100::tTraceFilter;

namespace {

constexpr unsigned int kWrittenSize = 256;
constexpr char kUnwritten = '\x55';

struct tEmptyFilter : tTraceFilter {
  tEmptyFilter() { removeAll(); }

  char const* text() {
    write(buffer, kWrittenSize, nullptr);
    return buffer;
  }

  bool showsVerbosity(u32 verbosity) const { return evaluate("", "", 0, "", 0, verbosity); }

  char buffer[kWrittenSize];
};

unsigned int lengthOf(char const* text) {
  unsigned int length = 0;
  while (text[length] != '\0') ++length;
  return length;
}

// Whether `buffer` begins with the first `size` - 1 characters of `text` and a terminator, and is
// untouched behind.
bool holdsCut(char const* buffer, unsigned int size, char const* text) {
  for (unsigned int index = 0; index + 1 < size; ++index) {
    if (buffer[index] != text[index]) return false;
  }
  if (size != 0 && buffer[size - 1] != '\0') return false;
  for (unsigned int index = size; index < kWrittenSize; ++index) {
    if (buffer[index] != kUnwritten) return false;
  }
  return true;
}

}  // namespace

TEST(TraceFilterTerms, ATermIsAppendedWithItsConnector) {
  tEmptyFilter filter;
  filter.addTerm(">=200", tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  filter.addTerm("==abc", tTraceFilter::kOr, tTraceFilter::kComponentName);
  filter.addTerm("<7", tTraceFilter::kAnd, tTraceFilter::kLineNumber);
  EXPECT_STREQ(" --filter \"verbosity>=200 || compname==abc && linenumber<7\"", filter.text());
}

TEST(TraceFilterTerms, TheFirstTermHasNoConnector) {
  tEmptyFilter filter;
  filter.addTerm(">=200", tTraceFilter::kOr, tTraceFilter::kVerbosity);
  EXPECT_STREQ(" --filter \"verbosity>=200\"", filter.text());
  EXPECT_FALSE(filter.showsVerbosity(199));
}

TEST(TraceFilterTerms, ATermWithoutConnectorDoesNotRemoveThoseBefore) {
  tEmptyFilter filter;
  filter.addTerm(">=200", tTraceFilter::kFirst, tTraceFilter::kVerbosity);
  filter.addTerm("<10", tTraceFilter::kFirst, tTraceFilter::kVerbosity);
  EXPECT_STREQ(" --filter \"verbosity>=200verbosity<10\"", filter.text());
  EXPECT_TRUE(filter.showsVerbosity(9));
  EXPECT_FALSE(filter.showsVerbosity(200));
}

TEST(TraceFilterTerms, ATermOfNoFieldIsNotAdded) {
  tEmptyFilter filter;
  filter.addTerm("==1", tTraceFilter::kAnd, tTraceFilter::kNoField);
  filter.addTerm("==1", tTraceFilter::kAnd, tTraceFilter::kFieldCount);
  filter.addTerm("==1", tTraceFilter::kAnd, INT32_MIN);
  filter.addTerm("==1", tTraceFilter::kAnd, INT32_MAX);
  EXPECT_TRUE(filter.isEmpty());
  EXPECT_FALSE(filter.hasFailed());
}

TEST(TraceFilterTerms, ATermOfNoConnectorIsNotAdded) {
  tEmptyFilter filter;
  filter.addTerm("==1", tTraceFilter::kOr + 1, tTraceFilter::kVerbosity);
  filter.addTerm("==1", UINT32_MAX, tTraceFilter::kVerbosity);
  EXPECT_TRUE(filter.isEmpty());
}

TEST(TraceFilterTerms, ANullTermIsNotAdded) {
  tEmptyFilter filter;
  filter.addTerm(nullptr, tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  filter.addTerm(nullptr, 5, tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  EXPECT_TRUE(filter.isEmpty());
}

TEST(TraceFilterTerms, TheValueIsTheRestOfTheText) {
  tEmptyFilter filter;
  filter.addTerm("== a b|c&d ", tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_STREQ(" --filter \"compname==a b|c&d \"", filter.text());
  EXPECT_TRUE(filter.evaluate("a b|c&d ", "", 0, "", 0, 0));
}

TEST(TraceFilterTerms, BlanksBeforeTheValueAreSkipped) {
  tEmptyFilter filter;
  filter.addTerm("== \t\n\v\f\rabc", tTraceFilter::kAnd, tTraceFilter::kComponentName);
  filter.addTerm("> \n 0x10", tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  EXPECT_STREQ(" --filter \"compname==abc && verbosity>16\"", filter.text());
}

TEST(TraceFilterTerms, ABlankBeforeTheOperatorHidesIt) {
  tEmptyFilter filter;
  filter.addTerm(" ==abc", tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_STREQ(" --filter \"compname==abc\"", filter.text());
  EXPECT_FALSE(filter.evaluate("abc", "", 0, "", 0, 0));
}

TEST(TraceFilterTerms, AnEmptyValueIsAValue) {
  tEmptyFilter filter;
  filter.addTerm("==", tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_STREQ(" --filter \"compname==\"", filter.text());
  EXPECT_TRUE(filter.evaluate("", "", 0, "", 0, 0));
  EXPECT_FALSE(filter.evaluate("a", "", 0, "", 0, 0));
}

TEST(TraceFilterTerms, AnEmptyTextIsATermWithoutOperator) {
  tEmptyFilter filter;
  filter.addTerm("", tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_FALSE(filter.isEmpty());
  EXPECT_FALSE(filter.evaluate("", "", 0, "", 0, 0));
}

TEST(TraceFilterTerms, EveryFieldAcceptsAnEmptyValue) {
  tEmptyFilter filter;
  for (i32 field = 0; field < tTraceFilter::kFieldCount; ++field) {
    filter.addTerm(">=", tTraceFilter::kAnd, field);
  }
  EXPECT_TRUE(filter.evaluate(nullptr, nullptr, 0, nullptr, 0, 0));
  EXPECT_STREQ(
      " --filter \"compname>= && compver>= && linenumber>=0 && filename>= && threadid>= "
      "&& verbosity>=0\"",
      filter.text());
}

TEST(TraceFilterTerms, ALoneGreaterOrLessIsAnOperator) {
  tEmptyFilter filter;
  filter.addTerm(">", tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  EXPECT_FALSE(filter.showsVerbosity(0));
  EXPECT_TRUE(filter.showsVerbosity(1));
}

TEST(TraceFilterTerms, NothingBehindTheGivenLengthIsRead) {
  tEmptyFilter filter;
  filter.addTerm(">=200", 1, tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  filter.addTerm(">=200", 3, tTraceFilter::kAnd, tTraceFilter::kVerbosity);
  filter.addTerm("==abc", 4, tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_STREQ(" --filter \"verbosity>0 && verbosity>=2 && compname==ab\"", filter.text());
}

TEST(TraceFilterTerms, BlanksBehindTheGivenLengthAreNotSkipped) {
  tEmptyFilter filter;
  filter.addTerm(">=  500", 3, tTraceFilter::kFirst, tTraceFilter::kVerbosity);
  EXPECT_STREQ(" --filter \"verbosity>=0\"", filter.text());
  filter.addTerm("==  abc", 3, tTraceFilter::kAnd, tTraceFilter::kComponentName);
  EXPECT_STREQ(" --filter \"verbosity>=0 && compname==\"", filter.text());
}

TEST(TraceFilterTerms, RemovingWhatIsNoFieldChangesNothing) {
  tEmptyFilter filter;
  for (i32 field = 0; field < tTraceFilter::kFieldCount; ++field) {
    filter.addTerm("==1", tTraceFilter::kAnd, field);
  }
  constexpr i32 kNoFields[] = {-1, 6, 32, 33, INT32_MIN, INT32_MAX};
  for (i32 const field : kNoFields) filter.removeField(field);
  for (i32 field = 0; field < tTraceFilter::kFieldCount; ++field) {
    EXPECT_TRUE(filter.usesField(field));
  }
}

TEST(TraceFilterTerms, RemovingAFieldRemovesAllItsTermsAndNoOther) {
  tEmptyFilter filter;
  filter.parseExpression("line>1 && verb>2 && line<9 || comp==a || verb<5");
  filter.removeField(tTraceFilter::kVerbosity);
  EXPECT_STREQ(" --filter \"linenumber>1 && linenumber<9 || compname==a\"", filter.text());
}

TEST(TraceFilterTerms, RemovingTheFirstFieldMakesTheNextTermTheFirst) {
  tEmptyFilter filter;
  filter.parseExpression("verb>2 && verb<9 || line>1 && comp==a");
  filter.removeField(tTraceFilter::kVerbosity);
  EXPECT_STREQ(" --filter \"linenumber>1 && compname==a\"", filter.text());
}

TEST(TraceFilterTerms, RemovingTheLastFieldLeavesRoomForMore) {
  tEmptyFilter filter;
  filter.parseExpression("line>1 && verb>2");
  filter.removeField(tTraceFilter::kVerbosity);
  filter.parseExpression("|| comp==a");
  EXPECT_STREQ(" --filter \"linenumber>1 || compname==a\"", filter.text());
}

TEST(TraceFilterTerms, RemovingTheOnlyFieldEmptiesTheFilter) {
  tEmptyFilter filter;
  filter.parseExpression("verb>2 && verb<9");
  filter.removeField(tTraceFilter::kVerbosity);
  EXPECT_TRUE(filter.isEmpty());
  filter.parseExpression("&& line==1");
  EXPECT_STREQ(" --filter \"linenumber==1\"", filter.text());
}

TEST(TraceFilterTerms, RemovingAFieldThatHasNoTermsChangesNothing) {
  tEmptyFilter filter;
  filter.parseExpression("line>1 && comp==a");
  filter.removeField(tTraceFilter::kVerbosity);
  filter.removeField(tTraceFilter::kNoField);
  filter.removeField(tTraceFilter::kFieldCount);
  EXPECT_STREQ(" --filter \"linenumber>1 && compname==a\"", filter.text());
}

// The written form.

TEST(TraceFilterWrittenForm, AnEmptyFilterIsWrittenAsNothing) {
  tEmptyFilter filter;
  char buffer[4] = "xyz";
  unsigned int needed = 99;
  EXPECT_TRUE(filter.write(buffer, sizeof(buffer), &needed) == buffer);
  EXPECT_STREQ("", buffer);
  EXPECT_EQ(1u, needed);
}

TEST(TraceFilterWrittenForm, EveryBufferSizeCutsAndTerminates) {
  tEmptyFilter filter;
  filter.parseExpression("comp==abc || line<12 && thread>=0x1A");
  char const wanted[] = " --filter \"compname==abc || linenumber<12 && threadid>=0x1A\"";
  unsigned int const fullSize = sizeof(wanted);
  for (unsigned int size = 0; size <= fullSize + 2; ++size) {
    char buffer[kWrittenSize];
    for (char& character : buffer) character = kUnwritten;
    unsigned int needed = 0;
    char const* const end = filter.write(buffer, size, &needed);
    EXPECT_EQ(fullSize, needed);
    EXPECT_TRUE(end == buffer + (size < fullSize ? size : fullSize - 1));
    if (size <= fullSize) {
      EXPECT_TRUE(holdsCut(buffer, size, wanted));
    } else {
      EXPECT_STREQ(wanted, buffer);
      EXPECT_EQ('\0', buffer[size - 1]);
      EXPECT_EQ(kUnwritten, buffer[size]);
    }
  }
}

TEST(TraceFilterWrittenForm, WithoutBufferOnlyTheSizeIsTold) {
  tTraceFilter const filter;
  unsigned int needed = 0;
  EXPECT_TRUE(filter.write(nullptr, 0, &needed) == nullptr);
  EXPECT_EQ(lengthOf(" --filter \"verbosity>=100\"") + 1, needed);
  needed = 0;
  EXPECT_TRUE(filter.write(nullptr, 100, &needed) == nullptr);
  EXPECT_EQ(lengthOf(" --filter \"verbosity>=100\"") + 1, needed);
}

TEST(TraceFilterWrittenForm, TheSizeNeedNotBeAskedFor) {
  tTraceFilter const filter;
  char buffer[kWrittenSize];
  char const* const end = filter.write(buffer, kWrittenSize, nullptr);
  EXPECT_STREQ(" --filter \"verbosity>=100\"", buffer);
  EXPECT_TRUE(end == buffer + lengthOf(buffer));
}

TEST(TraceFilterWrittenForm, NumbersAreWrittenInDecimal) {
  tEmptyFilter filter;
  filter.parseExpression("line==0xFFFFFFFF && verb<2#0");
  EXPECT_STREQ(" --filter \"linenumber==4294967295 && verbosity<0\"", filter.text());
}
