#include "oxdiagk/tTraceFilter.h"

#include "conformance/harness.h"

using nOXDIAG100::tTraceFilter;

namespace {

constexpr unsigned int kTextSize = 256;

// A filter with its written form at hand.
struct tWrittenFilter : tTraceFilter {
  tWrittenFilter() = default;

  // Without the default term.
  explicit tWrittenFilter(char const* expression) {
    removeAll();
    parseExpression(expression);
  }

  char const* text() {
    write(buffer, kTextSize, nullptr);
    return buffer;
  }

  char buffer[kTextSize];
};

// A line of one component; the tests set what they look at.
struct tLine {
  char const* component = "";
  char const* version = "";
  u32 line = 0;
  char const* file = "";
  u32 threadId = 0;
  u32 verbosity = 0;

  bool isShown(tTraceFilter const& filter) const {
    return filter.evaluate(component, version, line, file, threadId, verbosity);
  }
};

bool showsVerbosity(tTraceFilter const& filter, u32 verbosity) {
  tLine line;
  line.verbosity = verbosity;
  return line.isShown(filter);
}

bool showsLine(tTraceFilter const& filter, u32 number) {
  tLine line;
  line.line = number;
  return line.isShown(filter);
}

bool showsComponent(tTraceFilter const& filter, char const* component) {
  tLine line;
  line.component = component;
  return line.isShown(filter);
}

// Which of a smaller, an equal and a greater number an operator lets through.
u32 passedNumbers(char const* expression) {
  tWrittenFilter const filter(expression);
  return (showsLine(filter, 9) ? 100u : 0u) + (showsLine(filter, 10) ? 10u : 0u) +
         (showsLine(filter, 11) ? 1u : 0u);
}

u32 passedTexts(char const* expression) {
  tWrittenFilter const filter(expression);
  return (showsComponent(filter, "abb") ? 100u : 0u) + (showsComponent(filter, "abc") ? 10u : 0u) +
         (showsComponent(filter, "abd") ? 1u : 0u);
}

}  // namespace

// The filter as it is built.

TEST(TraceFilter, ANewFilterHasTheDefaultTerm) {
  tWrittenFilter filter;
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
  EXPECT_FALSE(filter.isEmpty());
  EXPECT_FALSE(filter.hasFailed());
}

TEST(TraceFilter, TheDefaultTermShowsVerbosity100AndAbove) {
  tTraceFilter const filter;
  EXPECT_FALSE(showsVerbosity(filter, 0));
  EXPECT_FALSE(showsVerbosity(filter, 99));
  EXPECT_TRUE(showsVerbosity(filter, 100));
  EXPECT_TRUE(showsVerbosity(filter, 0xFFFFFFFF));
}

TEST(TraceFilter, CreateMakesAFilterWithTheDefaultTerm) {
  tTraceFilter* const filter = tTraceFilter::create();
  ASSERT_TRUE(filter != nullptr);
  EXPECT_FALSE(showsVerbosity(*filter, 99));
  EXPECT_TRUE(showsVerbosity(*filter, 100));
  delete filter;
}

TEST(TraceFilter, WithoutTermsEveryLineIsShown) {
  tTraceFilter filter;
  filter.removeAll();
  EXPECT_TRUE(filter.isEmpty());
  EXPECT_TRUE(showsVerbosity(filter, 0));
}

TEST(TraceFilter, RemovingFromAnEmptyFilterDoesNothing) {
  tTraceFilter filter;
  filter.removeAll();
  filter.removeAll();
  filter.removeField(tTraceFilter::kVerbosity);
  EXPECT_TRUE(filter.isEmpty());
}

// Expressions.

TEST(TraceFilter, AnExpressionThatBeginsWithATermReplacesTheFilter) {
  tWrittenFilter filter;
  filter.parseExpression("verbosity>=200");
  EXPECT_STREQ(" --filter \"verbosity>=200\"", filter.text());
}

TEST(TraceFilter, AnExpressionThatBeginsWithAConnectorExtendsTheFilter) {
  tWrittenFilter filter;
  filter.parseExpression("verbosity>=200");
  filter.parseExpression("&& linenumber<500");
  filter.parseExpression("||compname==abc");
  EXPECT_STREQ(" --filter \"verbosity>=200 && linenumber<500 || compname==abc\"", filter.text());
}

TEST(TraceFilter, ATermWithoutConnectorWithinAnExpressionEmptiesTheFilterToo) {
  tWrittenFilter filter;
  filter.parseExpression("comp==a line==5");
  EXPECT_STREQ(" --filter \"linenumber==5\"", filter.text());
}

TEST(TraceFilter, AConnectorBeforeTheFirstTermOfAnEmptyFilterIsDropped) {
  EXPECT_STREQ(" --filter \"linenumber==5\"", tWrittenFilter("&& line==5").text());
  EXPECT_STREQ(" --filter \"linenumber==5\"", tWrittenFilter("|| line==5").text());
}

TEST(TraceFilter, AnEmptyExpressionChangesNothing) {
  tWrittenFilter filter;
  filter.parseExpression("");
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

TEST(TraceFilter, ABlankExpressionChangesNothing) {
  tWrittenFilter filter;
  filter.parseExpression(" \t\n\v\f\r ");
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

TEST(TraceFilter, ANullExpressionChangesNothing) {
  tWrittenFilter filter;
  filter.parseExpression(nullptr);
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

TEST(TraceFilter, TrailingBlanksChangeNothing) {
  EXPECT_STREQ(" --filter \"linenumber==5\"", tWrittenFilter("line==5 \t ").text());
}

TEST(TraceFilter, BlanksMayStandBetweenAllParts) {
  EXPECT_STREQ(" --filter \"linenumber>5 || compname==a\"",
               tWrittenFilter(" \tline \n> \v5 \f|| \r comp\t==\ta").text());
}

TEST(TraceFilter, NoBlanksAreNeeded) {
  EXPECT_STREQ(" --filter \"linenumber>5 || compname==a && verbosity<3\"",
               tWrittenFilter("line>5||comp==a&&verb<3").text());
}

TEST(TraceFilter, TheCallersTextIsNotChanged) {
  char expression[] = "line == 5 && comp == abc";
  tWrittenFilter filter(expression);
  EXPECT_STREQ("line == 5 && comp == abc", expression);
  EXPECT_STREQ(" --filter \"linenumber==5 && compname==abc\"", filter.text());
}

TEST(TraceFilter, TermsKeepCopiesOfTheirTexts) {
  char expression[] = "comp==abc";
  tWrittenFilter filter(expression);
  for (char* character = expression; *character != '\0'; ++character) *character = '?';
  EXPECT_STREQ(" --filter \"compname==abc\"", filter.text());
}

// Field words.

TEST(TraceFilter, EveryFieldIsKnownByItsName) {
  EXPECT_STREQ(" --filter \"compname==1\"", tWrittenFilter("compname==1").text());
  EXPECT_STREQ(" --filter \"compver==1\"", tWrittenFilter("compver==1").text());
  EXPECT_STREQ(" --filter \"linenumber==1\"", tWrittenFilter("linenumber==1").text());
  EXPECT_STREQ(" --filter \"filename==1\"", tWrittenFilter("filename==1").text());
  EXPECT_STREQ(" --filter \"threadid==1\"", tWrittenFilter("threadid==1").text());
  EXPECT_STREQ(" --filter \"verbosity==1\"", tWrittenFilter("verbosity==1").text());
}

TEST(TraceFilter, ALeadingPartOfAFieldNameIsEnough) {
  EXPECT_STREQ(" --filter \"linenumber==1\"", tWrittenFilter("line==1").text());
  EXPECT_STREQ(" --filter \"linenumber==1\"", tWrittenFilter("l==1").text());
  EXPECT_STREQ(" --filter \"filename==1\"", tWrittenFilter("file==1").text());
  EXPECT_STREQ(" --filter \"threadid==1\"", tWrittenFilter("t==1").text());
  EXPECT_STREQ(" --filter \"verbosity==1\"", tWrittenFilter("v==1").text());
}

TEST(TraceFilter, CompIsTheComponentNameAndNotTheVersion) {
  EXPECT_STREQ(" --filter \"compname==1\"", tWrittenFilter("comp==1").text());
  EXPECT_STREQ(" --filter \"compname==1\"", tWrittenFilter("c==1").text());
  EXPECT_STREQ(" --filter \"compver==1\"", tWrittenFilter("compv==1").text());
}

TEST(TraceFilter, AnUnknownFieldDropsItsTermAndStillEmptiesTheFilter) {
  tWrittenFilter filter;
  filter.parseExpression("colour==1");
  EXPECT_TRUE(filter.isEmpty());
  EXPECT_STREQ("", filter.text());
}

TEST(TraceFilter, AnUnknownFieldBehindAConnectorDropsOnlyItsTerm) {
  tWrittenFilter filter;
  filter.parseExpression("&& colour==1 || line==5");
  EXPECT_STREQ(" --filter \"verbosity>=100 || linenumber==5\"", filter.text());
}

TEST(TraceFilter, AWordLongerThanTheFieldNameIsUnknown) {
  EXPECT_TRUE(tWrittenFilter("linenumbers==1").isEmpty());
}

TEST(TraceFilter, FieldWordsAreCaseSensitive) {
  EXPECT_TRUE(tWrittenFilter("Line==1").isEmpty());
}

TEST(TraceFilter, AnEmptyFieldWordIsNoField) {
  tWrittenFilter filter;
  filter.parseExpression("&& ==5 || line==6");
  EXPECT_STREQ(" --filter \"verbosity>=100 || linenumber==6\"", filter.text());
  EXPECT_TRUE(tWrittenFilter("==5").isEmpty());
}

TEST(TraceFilter, ASingleAmpersandIsNoConnector) {
  tWrittenFilter filter;
  filter.parseExpression("& line==5");
  EXPECT_TRUE(filter.isEmpty());
}

TEST(TraceFilter, ASingleBarIsNoConnector) {
  tWrittenFilter filter;
  filter.parseExpression("line==4|line==5");
  EXPECT_TRUE(filter.isEmpty());
}

TEST(TraceFilter, TwoDifferentConnectorCharactersAreNoConnector) {
  tWrittenFilter filter;
  filter.parseExpression("&|line==5");
  EXPECT_TRUE(filter.isEmpty());
}

TEST(TraceFilter, TwoEqualLettersAreNoConnector) {
  tWrittenFilter filter("line==1");
  filter.parseExpression("ll==2");
  EXPECT_STREQ("", filter.text());
}

TEST(TraceFilter, NothingBehindTheEndOfTheTextIsRead) {
  tWrittenFilter filter("line==1");
  filter.parseExpression("compname\0==slotbus");
  EXPECT_STREQ("", filter.text());
  filter.parseExpression("&&\0line==2");
  EXPECT_STREQ("", filter.text());
  filter.parseExpression("line \0==2");
  EXPECT_STREQ("", filter.text());
}

TEST(TraceFilter, AThirdConnectorCharacterBelongsToTheFieldWord) {
  tWrittenFilter filter;
  filter.parseExpression("&&& line==5");
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

// Where reading ends.

TEST(TraceFilter, TextThatEndsBeforeAFieldWordAddsNothing) {
  tWrittenFilter filter;
  filter.parseExpression("&&");
  filter.parseExpression("|| ");
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

TEST(TraceFilter, TextThatEndsBeforeAnOperatorAddsNothing) {
  tWrittenFilter filter;
  filter.parseExpression("&& line");
  filter.parseExpression("&& line ");
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

TEST(TraceFilter, TextThatEndsBeforeAnOperatorHasEmptiedTheFilterWithoutConnector) {
  tWrittenFilter filter;
  filter.parseExpression("line");
  EXPECT_TRUE(filter.isEmpty());
}

TEST(TraceFilter, TextThatEndsBeforeAValueAddsNothing) {
  tWrittenFilter filter;
  filter.parseExpression("&& line==");
  filter.parseExpression("&& line== ");
  EXPECT_STREQ(" --filter \"verbosity>=100\"", filter.text());
}

TEST(TraceFilter, AnEmptyValueEndsReading) {
  EXPECT_STREQ(" --filter \"linenumber==5\"",
               tWrittenFilter("line==5 && comp== || line==6").text());
  EXPECT_TRUE(tWrittenFilter("line==&& line==6").isEmpty());
}

TEST(TraceFilter, AnEmptyValueOfAnUnknownFieldEndsReadingToo) {
  EXPECT_STREQ(" --filter \"linenumber==5\"",
               tWrittenFilter("line==5 && colour==&& line==6").text());
}

// Operators.

TEST(TraceFilter, EveryOperatorComparesNumbers) {
  EXPECT_EQ(10u, passedNumbers("line==10"));
  EXPECT_EQ(101u, passedNumbers("line!=10"));
  EXPECT_EQ(1u, passedNumbers("line>10"));
  EXPECT_EQ(100u, passedNumbers("line<10"));
  EXPECT_EQ(11u, passedNumbers("line>=10"));
  EXPECT_EQ(110u, passedNumbers("line<=10"));
}

TEST(TraceFilter, EveryOperatorComparesTexts) {
  EXPECT_EQ(10u, passedTexts("comp==abc"));
  EXPECT_EQ(101u, passedTexts("comp!=abc"));
  EXPECT_EQ(1u, passedTexts("comp>abc"));
  EXPECT_EQ(100u, passedTexts("comp<abc"));
  EXPECT_EQ(11u, passedTexts("comp>=abc"));
  EXPECT_EQ(110u, passedTexts("comp<=abc"));
}

TEST(TraceFilter, EveryOperatorIsWrittenAsItIsRead) {
  EXPECT_STREQ(
      " --filter \"linenumber==1 && linenumber!=2 && linenumber>3 && linenumber<4 && "
      "linenumber>=5 && linenumber<=6\"",
      tWrittenFilter("line==1&&line!=2&&line>3&&line<4&&line>=5&&line<=6").text());
}

TEST(TraceFilter, ASingleEqualsSignIsNoOperator) {
  tWrittenFilter filter;
  filter.parseExpression("verbosity=5");
  EXPECT_STREQ(" --filter \"verbosity0\"", filter.text());
}

TEST(TraceFilter, ASingleExclamationMarkIsNoOperator) {
  EXPECT_STREQ(" --filter \"compname!abc\"", tWrittenFilter("comp!abc").text());
}

TEST(TraceFilter, OperatorCharactersInTheWrongOrderAreNoOperator) {
  EXPECT_STREQ(" --filter \"compname=>abc\"", tWrittenFilter("comp=>abc").text());
  EXPECT_STREQ(" --filter \"compname=!abc\"", tWrittenFilter("comp=!abc").text());
}

TEST(TraceFilter, OperatorCharactersBehindAnOperatorBelongToTheValue) {
  EXPECT_STREQ(" --filter \"compname===abc\"", tWrittenFilter("comp===abc").text());
  EXPECT_TRUE(showsComponent(tWrittenFilter("comp===abc"), "=abc"));
  EXPECT_STREQ(" --filter \"compname>>abc\"", tWrittenFilter("comp>>abc").text());
  EXPECT_STREQ(" --filter \"linenumber<0\"", tWrittenFilter("line<>5").text());
}

TEST(TraceFilter, AMissingOperatorMakesATermWithoutOne) {
  EXPECT_STREQ(" --filter \"compnameabc\"", tWrittenFilter("comp abc").text());
}

TEST(TraceFilter, ATextWithoutOperatorKeepsItsCharactersAndBlanks) {
  EXPECT_STREQ(" --filter \"compname= abc\"", tWrittenFilter("comp = abc").text());
}

TEST(TraceFilter, ATermWithoutOperatorRepeatsTheOutcomeBefore) {
  tWrittenFilter filter;
  filter.parseExpression("verbosity>=100 && verbosity=5");
  EXPECT_TRUE(showsVerbosity(filter, 100));
  EXPECT_FALSE(showsVerbosity(filter, 5));
}

TEST(TraceFilter, ATermWithoutOperatorRepeatsTheTermAndNotTheResult) {
  // The result is true behind the second term, whose own outcome is false.
  tWrittenFilter const filter("line==1 || line==2 && line=3");
  EXPECT_FALSE(showsLine(filter, 1));
  EXPECT_TRUE(showsLine(filter, 2));
}

TEST(TraceFilter, TermsWithoutOperatorPassTheOutcomeOn) {
  tWrittenFilter const filter("line==1 && line=2 && line=3");
  EXPECT_TRUE(showsLine(filter, 1));
  EXPECT_FALSE(showsLine(filter, 3));
}

TEST(TraceFilter, AFirstTermWithoutOperatorIsFalse) {
  tWrittenFilter const filter("verbosity=5");
  EXPECT_FALSE(showsVerbosity(filter, 5));
  EXPECT_FALSE(showsVerbosity(filter, 0));
  tWrittenFilter const extended("verbosity=5 || line==1");
  EXPECT_TRUE(showsLine(extended, 1));
  EXPECT_FALSE(showsLine(extended, 2));
}

// Joining.

TEST(TraceFilter, OrShowsWhatEitherTermShows) {
  tTraceFilter filter;
  filter.parseExpression("|| compname==abc");
  tLine line;
  line.component = "abc";
  line.verbosity = 50;
  EXPECT_TRUE(line.isShown(filter));
  line.component = "abd";
  EXPECT_FALSE(line.isShown(filter));
  line.verbosity = 100;
  EXPECT_TRUE(line.isShown(filter));
}

TEST(TraceFilter, AndShowsWhatBothTermsShow) {
  tWrittenFilter const filter("line>10 && line<20");
  EXPECT_FALSE(showsLine(filter, 10));
  EXPECT_TRUE(showsLine(filter, 11));
  EXPECT_TRUE(showsLine(filter, 19));
  EXPECT_FALSE(showsLine(filter, 20));
}

TEST(TraceFilter, TermsAreJoinedFromLeftToRightWithoutPrecedence) {
  tWrittenFilter const filter("line==1 || line==2 && verb==3");
  tLine line;
  line.line = 1;
  EXPECT_FALSE(line.isShown(filter));
  line.verbosity = 3;
  EXPECT_TRUE(line.isShown(filter));
  line.line = 2;
  EXPECT_TRUE(line.isShown(filter));
}

TEST(TraceFilter, AnOrAtTheEndOutweighsEverythingBefore) {
  tWrittenFilter const filter("line==1 && line==2 || line==3");
  EXPECT_FALSE(showsLine(filter, 1));
  EXPECT_TRUE(showsLine(filter, 3));
}

// Fields.

TEST(TraceFilter, EachFieldLooksAtItsOwnProperty) {
  tLine line;
  line.component = "one";
  line.version = "two";
  line.line = 3;
  line.file = "four";
  line.threadId = 5;
  line.verbosity = 6;
  EXPECT_TRUE(line.isShown(tWrittenFilter("compname==one")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("compver==two")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("linenumber==3")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("filename==four")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("threadid==5")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("verbosity==6")));
}

TEST(TraceFilter, TheFileIsComparedWithItsPath) {
  tLine line;
  line.file = "source/rack.cpp";
  EXPECT_TRUE(line.isShown(tWrittenFilter("file==source/rack.cpp")));
  EXPECT_FALSE(line.isShown(tWrittenFilter("file==rack.cpp")));
}

TEST(TraceFilter, TheVersionIsComparedAsText) {
  tLine line;
  line.version = "10.0.0f1";
  EXPECT_TRUE(line.isShown(tWrittenFilter("compver<9.0.0f1")));
}

TEST(TraceFilter, TextsCompareAsUnsignedCharacters) {
  EXPECT_TRUE(showsComponent(tWrittenFilter("comp>a"), "\x80"));
  EXPECT_TRUE(showsComponent(tWrittenFilter("comp<\xFF"), "\x7F"));
  EXPECT_FALSE(showsComponent(tWrittenFilter("comp<\x80"), "\xFF"));
}

TEST(TraceFilter, ALongerTextIsGreaterThanItsBeginning) {
  EXPECT_TRUE(showsComponent(tWrittenFilter("comp>ab"), "abc"));
  EXPECT_TRUE(showsComponent(tWrittenFilter("comp<abc"), "ab"));
  EXPECT_FALSE(showsComponent(tWrittenFilter("comp==abc"), "ab"));
  EXPECT_FALSE(showsComponent(tWrittenFilter("comp==ab"), "abc"));
}

TEST(TraceFilter, TextsAreCaseSensitive) {
  EXPECT_FALSE(showsComponent(tWrittenFilter("comp==abc"), "ABC"));
}

TEST(TraceFilter, NumbersCompareAsUnsigned32Bits) {
  EXPECT_TRUE(showsLine(tWrittenFilter("line>0x7FFFFFFF"), 0x80000000));
  EXPECT_TRUE(showsLine(tWrittenFilter("line==4294967295"), 0xFFFFFFFF));
  EXPECT_TRUE(showsLine(tWrittenFilter("line==4294967301"), 5));
}

TEST(TraceFilter, NumbersMayBeHexadecimalOrHaveARadix) {
  EXPECT_STREQ(" --filter \"linenumber==31 && verbosity<5\"",
               tWrittenFilter("line==0x1f && verb<2#101").text());
}

TEST(TraceFilter, AMalformedNumberReadsAsFarAsItsDigitsGo) {
  EXPECT_STREQ(" --filter \"linenumber==12 && verbosity<0\"",
               tWrittenFilter("line==12x && verb<x").text());
}

TEST(TraceFilter, AThreadIdComparesAsANumber) {
  tLine line;
  line.threadId = 26;
  EXPECT_TRUE(line.isShown(tWrittenFilter("threadid==26")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("threadid==0x1A")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("threadid==026")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("threadid>3")));
  EXPECT_FALSE(line.isShown(tWrittenFilter("threadid!=26")));
}

TEST(TraceFilter, AThreadIdKeepsItsTextInTheWrittenForm) {
  EXPECT_STREQ(" --filter \"threadid==0x1a || threadid<007\"",
               tWrittenFilter("threadid==0x1a || threadid<007").text());
}

TEST(TraceFilter, AThreadIdThatIsNoNumberIsZero) {
  tLine line;
  EXPECT_TRUE(line.isShown(tWrittenFilter("threadid==worker")));
  line.threadId = 1;
  EXPECT_FALSE(line.isShown(tWrittenFilter("threadid==worker")));
}

TEST(TraceFilter, MissingTextsOfALineCountAsEmpty) {
  tLine line;
  line.component = nullptr;
  line.version = nullptr;
  line.file = nullptr;
  EXPECT_FALSE(line.isShown(tWrittenFilter("comp==a")));
  EXPECT_TRUE(line.isShown(tWrittenFilter("compver<a && file<a && comp<a")));
}

TEST(TraceFilter, UsesFieldTellsWhichPropertiesMatter) {
  tTraceFilter filter;
  filter.parseExpression("compver==1 && thread==2");
  EXPECT_FALSE(filter.usesField(tTraceFilter::kComponentName));
  EXPECT_TRUE(filter.usesField(tTraceFilter::kComponentVersion));
  EXPECT_FALSE(filter.usesField(tTraceFilter::kLineNumber));
  EXPECT_FALSE(filter.usesField(tTraceFilter::kFileName));
  EXPECT_TRUE(filter.usesField(tTraceFilter::kThreadId));
  EXPECT_FALSE(filter.usesField(tTraceFilter::kVerbosity));
  EXPECT_FALSE(filter.usesField(tTraceFilter::kNoField));
  EXPECT_FALSE(filter.usesField(tTraceFilter::kFieldCount));
}

TEST(TraceFilter, UsesFieldForgetsRemovedTerms) {
  tTraceFilter filter;
  filter.parseExpression("compver==1 && thread==2");
  filter.removeField(tTraceFilter::kThreadId);
  EXPECT_FALSE(filter.usesField(tTraceFilter::kThreadId));
  EXPECT_TRUE(filter.usesField(tTraceFilter::kComponentVersion));
  filter.removeAll();
  EXPECT_FALSE(filter.usesField(tTraceFilter::kComponentVersion));
}
