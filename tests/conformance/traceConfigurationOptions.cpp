// The option words of the trace stream, but for destinations.

#include "conformance/harness.h"
#include "oxdiagk/tTrace.h"
#include "support/recordingDestination.h"
#include "support/traceState.h"

namespace {

using nOXDIAG100::tTrace;

constexpr char kDefaultFilter[] = " --filter \"verbosity>=100\"";

// A stream of the test's own, with a recorder behind it.
struct tStream {
  tRecordingDestination recorder;
  tPrivateTrace trace{recorder};

  explicit tStream(char const* options = "") { trace.configure(options); }
};

// A switch and its option word; `field` is true when a filter term may follow it.
struct tSwitchOption {
  char const* option;
  u32 (tTrace::*isEnabled)() const;
  char const* field;
};

constexpr u32 kSwitchOptionCount = 12;

tSwitchOption getSwitchOption(u32 index) {
  tSwitchOption const options[] = {
      {"--compname", &tTrace::componentNameIsEnabled, "compname"},
      {"--compver", &tTrace::componentVersionIsEnabled, "compver"},
      {"--linenumber", &tTrace::lineNumberIsEnabled, "linenumber"},
      {"--filename", &tTrace::fileNameIsEnabled, "filename"},
      {"--filepath", &tTrace::filePathIsEnabled, nullptr},
      {"--timestamp", &tTrace::timeStampIsEnabled, nullptr},
      {"--timedelta", &tTrace::timeDeltaIsEnabled, nullptr},
      {"--threadid", &tTrace::threadIdIsEnabled, "threadid"},
      {"--mutex", &tTrace::mutexIsEnabled, nullptr},
      {"--verbosity", &tTrace::verbosityIsEnabled, "verbosity"},
      {"--indent", &tTrace::indentingIsEnabled, nullptr},
      {"--truncation", &tTrace::truncationIsEnabled, nullptr},
  };
  return options[index];
}

// configure with the option and up to two words behind it.
void configure(tTrace& trace, char const* option, char const* first, char const* second = nullptr) {
  char* words[] = {const_cast<char*>(option), const_cast<char*>(first), const_cast<char*>(second)};
  trace.configure(first == nullptr ? 1 : second == nullptr ? 2 : 3, words);
}

bool contains(char const* text, char const* piece) {
  size_t const length = __builtin_strlen(piece);
  for (; *text != 0; ++text) {
    if (__builtin_memcmp(text, piece, 1) == 0 && __builtin_strlen(text) >= length &&
        __builtin_memcmp(text, piece, length) == 0) {
      return true;
    }
  }
  return false;
}

}  // namespace

TEST(TraceOptions, OffAndOnAreTheMasterSwitch) {
  tStream stream("--off");
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
  stream.trace.configure("--on");
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
}

TEST(TraceOptions, LastOfContradictingOptionsHolds) {
  tStream stream("--off --on --compname on --compname off --prefixwidth 3 --prefixwidth 4");
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
  EXPECT_EQ(stream.trace.componentNameIsEnabled(), u32{0});
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{4});
}

TEST(TraceOptions, OnSwitchesOn) {
  tStream stream;
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    configure(stream.trace, tested.option, "off");
    configure(stream.trace, tested.option, "on");
    EXPECT_EQ((stream.trace.*tested.isEnabled)(), u32{1});
  }
}

TEST(TraceOptions, OffSwitchesOff) {
  tStream stream;
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    configure(stream.trace, tested.option, "on");
    configure(stream.trace, tested.option, "off");
    EXPECT_EQ((stream.trace.*tested.isEnabled)(), u32{0});
  }
}

TEST(TraceOptions, BareSwitchSwitchesOn) {
  tStream stream;
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    configure(stream.trace, tested.option, "off");
    configure(stream.trace, tested.option, nullptr);
    EXPECT_EQ((stream.trace.*tested.isEnabled)(), u32{1});
  }
}

TEST(TraceOptions, SwitchBeforeAnotherOptionSwitchesOnAndLetsItBeRead) {
  tStream stream;
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    configure(stream.trace, tested.option, "off");
    configure(stream.trace, tested.option, "--off");
    EXPECT_EQ((stream.trace.*tested.isEnabled)(), u32{1});
    EXPECT_EQ(stream.trace.isEnabled(), u32{0});
    stream.trace.enable();
  }
}

TEST(TraceOptions, OtherWordBehindASwitchSwitchesOnAndIsConsumed) {
  tStream stream;
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    configure(stream.trace, tested.option, "off");
    configure(stream.trace, tested.option, "==12", "off");
    EXPECT_EQ((stream.trace.*tested.isEnabled)(), u32{1});
  }
}

TEST(TraceOptions, WordBehindASwitchWithAFieldBecomesAFilterTerm) {
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    if (tested.field == nullptr) continue;
    tStream stream;
    configure(stream.trace, tested.option, "==12");
    tFilterText const filter(stream.trace);
    EXPECT_TRUE(contains(filter.text, "\"verbosity>=100 && "));
    EXPECT_TRUE(contains(filter.text, tested.field));
    EXPECT_TRUE(contains(filter.text, "==12\""));
  }
}

TEST(TraceOptions, WordBehindASwitchWithoutAFieldLeavesTheFilterAlone) {
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    if (tested.field != nullptr) continue;
    tStream stream;
    configure(stream.trace, tested.option, "==12");
    EXPECT_STREQ(tFilterText(stream.trace).text, kDefaultFilter);
  }
}

TEST(TraceOptions, BareSwitchRemovesTheTermsOfItsFieldAlone) {
  for (u32 index = 0; index < kSwitchOptionCount; ++index) {
    tSwitchOption const tested = getSwitchOption(index);
    if (tested.field == nullptr) continue;
    tStream stream("--filter comp==1&&compver==1&&line==1&&filename==1&&thread==1&&verb==1");
    configure(stream.trace, tested.option, nullptr);
    tFilterText const filter(stream.trace);
    for (u32 other = 0; other < kSwitchOptionCount; ++other) {
      char const* const field = getSwitchOption(other).field;
      if (field == nullptr) continue;
      EXPECT_EQ(contains(filter.text, field), other != index);
    }
  }
}

TEST(TraceOptions, SwitchWithOnOrOffKeepsTheTermsOfItsField) {
  tStream stream("--filter line==5 --linenumber on");
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"linenumber==5\"");
  stream.trace.configure("--linenumber off");
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"linenumber==5\"");
}

TEST(TraceOptions, SwitchAsTheLastWordRemovesTheTermsOfItsField) {
  tStream stream("--filter line==5&&verbosity>=7 --linenumber");
  EXPECT_EQ(stream.trace.lineNumberIsEnabled(), u32{1});
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"verbosity>=7\"");
}

TEST(TraceOptions, SwitchesAreComparedExactly) {
  tStream stream("--Timestamp on --timestamps on -timestamp on timestamp on ---timestamp on");
  EXPECT_EQ(stream.trace.timeStampIsEnabled(), u32{0});
}

TEST(TraceOptions, OnAndOffAreComparedExactly) {
  tStream stream("--compname OFF");
  EXPECT_EQ(stream.trace.componentNameIsEnabled(), u32{1});
}

TEST(TraceOptions, UnknownWordsAreIgnored) {
  tStream stream("--nonsense off on x \"\" --off nonsense --timestamp on");
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
  EXPECT_EQ(stream.trace.timeStampIsEnabled(), u32{1});
}

TEST(TraceOptions, AWordWithoutTheTwoDashesIsNoOption) {
  tStream stream("xxoff -xoff x-off off");
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
  configure(stream.trace, "\0xoff", "-");
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
}

TEST(TraceOptions, UnnamedSwitchesKeepTheirValues) {
  tStream stream("--timestamp on --compname off --prefixwidth 9");
  stream.trace.configure("--threadid on");
  EXPECT_EQ(stream.trace.timeStampIsEnabled(), u32{1});
  EXPECT_EQ(stream.trace.componentNameIsEnabled(), u32{0});
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{9});
  EXPECT_STREQ(tFilterText(stream.trace).text, kDefaultFilter);
}

TEST(TraceOptions, PrefixWidthIsReadInEveryFormOfNumbers) {
  tStream stream("--prefixwidth 80");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{80});
  stream.trace.configure("--prefixwidth 0x1f");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{31});
  stream.trace.configure("--prefixwidth 2#101");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{5});
  stream.trace.configure("--prefixwidth 007");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{7});
  stream.trace.configure("--prefixwidth 4294967295");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{0xFFFFFFFF});
}

TEST(TraceOptions, PrefixWidthWithoutDigitsIsZero) {
  tStream stream("--prefixwidth wide");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{0});
}

TEST(TraceOptions, PrefixWidthWithoutANumberIsLeftAlone) {
  tStream stream("--prefixwidth --indent off");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{50});
  EXPECT_EQ(stream.trace.indentingIsEnabled(), u32{0});
  stream.trace.configure("--prefixwidth");
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{50});
}

TEST(TraceOptions, FilterTakesOneExpression) {
  tStream stream("--filter \"verbosity>=200 && comp==slotbus\" --off");
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"verbosity>=200 && compname==slotbus\"");
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
}

TEST(TraceOptions, FilterBehindAConnectorExtendsTheFilter) {
  tStream stream("--filter \"|| line<5\"");
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"verbosity>=100 || linenumber<5\"");
}

TEST(TraceOptions, FilterAtTheEndRemovesAllTerms) {
  tStream stream("--filter");
  EXPECT_STREQ(tFilterText(stream.trace).text, "");
}

TEST(TraceOptions, FilterBeforeAnOptionRemovesAllTermsAndLetsItBeRead) {
  tStream stream("--filter --off");
  EXPECT_STREQ(tFilterText(stream.trace).text, "");
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
}

TEST(TraceOptions, FilterOnIsAnExpressionAndEmptiesTheFilter) {
  tStream stream("--filter on");
  EXPECT_STREQ(tFilterText(stream.trace).text, "");
}

TEST(TraceOptions, EmptyExpressionChangesNothing) {
  tStream stream("--filter \"\" --off");
  EXPECT_STREQ(tFilterText(stream.trace).text, kDefaultFilter);
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
}

TEST(TraceOptions, LastFilterExpressionReplacesTheOneBefore) {
  tStream stream("--filter line==1 --filter line==2");
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"linenumber==2\"");
}

TEST(TraceOptions, TermsAndFieldRemovalsTakeEffectInTheirOrder) {
  tStream stream("--filter line==1 --linenumber --linenumber ==2 --verbosity >=3");
  EXPECT_STREQ(tFilterText(stream.trace).text, " --filter \"linenumber==2 && verbosity>=3\"");
}

TEST(TraceOptions, EveryWordBehindTheTokenOptionIsAToken) {
  tStream stream("--mutex-kernel-token 7:0 --off --compname off");
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
  EXPECT_EQ(stream.trace.componentNameIsEnabled(), u32{1});
}

TEST(TraceOptions, TokenOptionWithoutATokenChangesNothing) {
  tStream stream("--off --mutex-kernel-token");
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
  stream.trace.enableMutex();
  EXPECT_EQ(stream.trace.mutexIsEnabled(), u32{1});
}

TEST(TraceOptions, CalibrateMeasuresAndLeavesTheSettingsAlone) {
  tStream stream("--off --calibrate");
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
  stream.trace.configure("--calibrate --on");
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
  EXPECT_EQ(stream.trace.getNestingLevel(), i32{0});
  EXPECT_EQ(stream.recorder.pieceCount(), u32{0});
}

TEST(TraceOptions, SwitchesAreAppliedBeforeTheDestinationIsInstalled) {
  tStream stream("--destination vex --off");
  EXPECT_EQ(stream.recorder.pieceCount(), u32{0});
  EXPECT_STREQ(stream.trace.getDestination()->getDescription(), "VEX print to debugger");
}

TEST(TraceOptions, NullVectorCountsAsNoWords) {
  tStream stream;
  stream.trace.configure(3, nullptr);
  stream.trace.configure(0, nullptr);
  EXPECT_STREQ(tTraceState(stream.trace).withoutCalibration(),
               "--on --destination recording --compname on --compver off --linenumber on "
               "--filename on --filepath off --threadid off --timestamp off --timedelta off "
               "--verbosity off --indent on --truncation on --prefixwidth 50 "
               "--filter \"verbosity>=100\" --mutex off");
}

TEST(TraceOptions, NullWordEndsTheList) {
  tStream stream;
  char width[] = "--prefixwidth";
  char number[] = "7";
  char off[] = "--off";
  char* words[] = {width, number, nullptr, off};
  stream.trace.configure(4, words);
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{7});
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
}

TEST(TraceOptions, CountOfZeroOrLessReadsNoWord) {
  tStream stream;
  char word[] = "--off";
  char* words[] = {word};
  stream.trace.configure(0, words);
  stream.trace.configure(-1, words);
  EXPECT_EQ(stream.trace.isEnabled(), u32{1});
}

TEST(TraceOptions, OnlyTheCountedWordsAreRead) {
  tStream stream;
  char off[] = "--off";
  char width[] = "--prefixwidth";
  char number[] = "7";
  char* words[] = {off, width, number};
  stream.trace.configure(2, words);
  EXPECT_EQ(stream.trace.isEnabled(), u32{0});
  EXPECT_EQ(stream.trace.getMinPrefixWidth(), u32{50});
}

TEST(TraceOptions, ConfigureWithoutArgumentsDoesNothing) {
  tStream stream("--compname off --prefixwidth 12");
  tTraceState const before(stream.trace, 0);
  stream.trace.configure();
  tTraceState const after(stream.trace, 1);
  EXPECT_STREQ(before.get(), after.get());
  EXPECT_EQ(stream.recorder.pieceCount(), u32{0});
}

TEST(TraceOptions, ConfigurationWritesNoLineOfItsOwn) {
  tStream stream("--off --on --compname off --filter --prefixwidth 3 --mutex on --mutex off");
  EXPECT_EQ(stream.recorder.pieceCount(), u32{0});
}
