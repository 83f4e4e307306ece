#include "conformance/harness.h"
#include "support/assertSwitches.h"
#include "support/contractStream.h"

#define OXDIAG_COMPONENT "rack"
#define OXDIAG_COMPONENT_VERSION tSSVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0)
#define OXDIAG_TRACE_FILE "source/port.cpp"
#include "oxdiagk/contractMacros.h"

namespace {

// Counts its evaluations.
struct tCondition {
  bool value = false;
  u32 uses = 0;

  bool evaluate() {
    ++uses;
    return value;
  }
};

char const* countedText(u32& uses, char const* text) {
  ++uses;
  return text;
}

// One kind of contract in its three forms.
struct tKind {
  char const* option;
  void (*plain)(tCondition& condition);
  void (*withMessage)(tCondition& condition, char const* message);
  void (*in)(char const* category, tCondition& condition, char const* message);
};

#define KIND(option, MACRO)                                                    \
  {                                                                            \
    option, [](tCondition& condition) { MACRO(condition.evaluate()); },        \
        [](tCondition& condition, char const* message) {                       \
          MACRO##_MESSAGE(condition.evaluate(), message);                      \
        },                                                                     \
        [](char const* category, tCondition& condition, char const* message) { \
          MACRO##_IN(category, condition.evaluate(), message);                 \
        }                                                                      \
  }
constexpr tKind kKinds[] = {
    KIND("--preconditions", OXDIAG_REQUIRE),
    KIND("--postconditions", OXDIAG_ENSURE),
    KIND("--classinvariants", OXDIAG_CLASS_INVARIANT),
    KIND("--loopinvariants", OXDIAG_LOOP_INVARIANT),
    KIND("--checks", OXDIAG_CHECK),
    KIND("--exceptions", OXDIAG_EXCEPTION),
};
#undef KIND

void turnAllBut(nOXDIAG100::tAssertConfiguration& contracts, char const* category,
                char const* option, bool isOn) {
  for (tKind const& kind : kKinds) {
    bool const isMeant = __builtin_strcmp(kind.option, option) == 0;
    configureWords(contracts, "--category", category, kind.option, isMeant != isOn ? "on" : "off");
  }
}

u32 runEveryForm(tKind const& kind, bool value) {
  tCondition condition{value, 0};
  kind.plain(condition);
  kind.withMessage(condition, "text");
  kind.in("default", condition, "text");
  return condition.uses;
}

template <class A, class B>
bool isFirst(A const&, B const&) {
  return false;
}
template <u32 First, u32 Second>
bool isLess() {
  return First < Second;
}

struct tHandle {
  explicit operator bool() const { return isOpen; }
  bool isOpen;
};

// Every name that the macros or what stands behind them might use.
u32 checkShadowed(u32 category, u32 component, u32 version, u32 line, u32 file, u32 message) {
  u32 condition = 0;
  u32 evaluate = 0;
  u32 oxdiagContract = 0;
  OXDIAG_CHECK(category + component + version + line + file + message + condition + evaluate +
                   oxdiagContract ==
               0);
  OXDIAG_CHECK_MESSAGE(category == message, "differs");
  return category;
}

#define EVALUATED(MACRO)                            \
  [](u32& uses) {                                   \
    MACRO##_IN("statusFatal", ++uses != 0, "text"); \
    MACRO##_MESSAGE(++uses != 0, "text");           \
    MACRO(++uses != 0);                             \
  }
constexpr void (*kPlaces[])(u32& uses) = {
    EVALUATED(OXDIAG_REQUIRE),        EVALUATED(OXDIAG_ENSURE), EVALUATED(OXDIAG_CLASS_INVARIANT),
    EVALUATED(OXDIAG_LOOP_INVARIANT), EVALUATED(OXDIAG_CHECK),  EVALUATED(OXDIAG_EXCEPTION),
};
#undef EVALUATED

u32 countEvaluations(u32 kind) {
  u32 uses = 0;
  kPlaces[kind](uses);
  return uses;
}

// Whether the contract at this one place is evaluated in the category of that name.
bool isEvaluatedIn(char const* category) {
  bool isEvaluated = false;
  OXDIAG_CHECK_IN(category, (isEvaluated = true), "text");
  return isEvaluated;
}

bool isEvaluatedIn(char const (&category)[12], bool isFirst) {
  bool isEvaluated = false;
  OXDIAG_CHECK_IN(isFirst ? "statusFatal" : category, (isEvaluated = true), "text");
  return isEvaluated;
}

constexpr bool isLiteral(char const* expression) {
  return nOXDIAG100::isTextLiteral(expression);
}
static_assert(isLiteral("\"rack\"") && isLiteral("\"ra\" \"ck\"") && isLiteral("\"a\\\"b\""));
static_assert(!isLiteral("rack") && !isLiteral("\"rack\" + 1") && !isLiteral("\"rack\"_name"));
static_assert(!isLiteral("isFirst ? \"a\" : \"b\"") && !isLiteral("(\"a\")"));

bool isRight(bool value) {
  OXDIAG_REQUIRE_MESSAGE(value, "inner");
  return value;
}

}  // namespace

TEST(ContractMacros, AContractThatHoldsIsEvaluatedOnceAndWritesNothing) {
  tContractStream stream;
  for (tKind const& kind : kKinds) EXPECT_EQ(u32{3}, runEveryForm(kind, true));
  EXPECT_EQ(u32{0}, stream.record.pieceCount());
}

TEST(ContractMacros, AContractThatDoesNotHoldIsEvaluatedOnceAndGoesOn) {
  tContractStream stream;
  for (tKind const& kind : kKinds) {
    stream.record.clear();
    EXPECT_EQ(u32{3}, runEveryForm(kind, false));
    EXPECT_STREQ(
        "ASSERTION FAILED: condition.evaluate()\n"
        "ASSERTION FAILED: text\n"
        "ASSERTION FAILED: text\n",
        stream.text());
  }
}

TEST(ContractMacros, AContractWhoseSwitchAloneIsOffIsNotEvaluated) {
  tContractStream stream;
  for (tKind const& kind : kKinds) {
    turnAllBut(stream.contracts, "default", kind.option, false);
    for (tKind const& other : kKinds) {
      EXPECT_EQ(runEveryForm(other, true), &other == &kind ? u32{3} : u32{0});
    }
    turnAllBut(stream.contracts, "default", kind.option, true);
    stream.record.clear();
    EXPECT_EQ(u32{0}, runEveryForm(kind, false));
    EXPECT_STREQ("", stream.text());
  }
}

TEST(ContractMacros, ACategoryOfItsOwnDecidesForAContractInIt) {
  tContractStream stream;
  for (char const* category : kBuiltInNames) {
    for (tKind const& kind : kKinds) {
      turnAllBut(stream.contracts, category, kind.option, false);
      for (tKind const& other : kKinds) {
        tCondition condition{true, 0};
        other.in(category, condition, "text");
        EXPECT_EQ(condition.uses, &other == &kind ? u32{1} : u32{0});
      }
    }
  }
}

TEST(ContractMacros, AContractInAnUnknownCategoryIsNotEvaluated) {
  tContractStream stream;
  for (tKind const& kind : kKinds) {
    tCondition condition;
    kind.in("no such category", condition, "text");
    kind.in(nullptr, condition, "text");
    EXPECT_EQ(u32{0}, condition.uses);
  }
  EXPECT_STREQ("", stream.text());
}

TEST(ContractMacros, TheCategoryIsNamedInTheLine) {
  tContractStream stream;
  OXDIAG_REQUIRE_IN("statusFatal", 1 == 2, "one");
  OXDIAG_ENSURE_IN("warning", 1 == 2, "two");
  EXPECT_STREQ("ASSERTION FAILED (statusFatal): one\nASSERTION WARNING: two\n", stream.text());
}

TEST(ContractMacros, TheCategoryIsEvaluatedOnce) {
  tContractStream stream;
  u32 uses = 0;
  OXDIAG_CHECK_IN(countedText(uses, "warning"), 1 == 2, "text");
  EXPECT_EQ(u32{1}, uses);
}

TEST(ContractMacros, TheMessageIsEvaluatedOnceWhenTheContractDoesNotHold) {
  tContractStream stream;
  u32 uses = 0;
  OXDIAG_CHECK_MESSAGE(1 == 2, countedText(uses, "text"));
  EXPECT_EQ(u32{1}, uses);
  EXPECT_STREQ("ASSERTION FAILED: text\n", stream.text());
}

TEST(ContractMacros, TheMessageIsNotEvaluatedOtherwise) {
  tContractStream stream;
  u32 uses = 0;
  OXDIAG_CHECK_MESSAGE(1 == 1, countedText(uses, "text"));
  stream.contracts.disableChecks("default");
  OXDIAG_CHECK_MESSAGE(1 == 2, countedText(uses, "text"));
  EXPECT_EQ(u32{0}, uses);
}

TEST(ContractMacros, TheMessageMayBeMissing) {
  tContractStream stream;
  OXDIAG_CHECK_MESSAGE(1 == 2, nullptr);
  EXPECT_STREQ("ASSERTION FAILED: \n", stream.text());
}

TEST(ContractMacros, TheConditionIsShownAsItIsWritten) {
  tContractStream stream;
#define SLOT_LIMIT 17
  u32 slot = 40;
  OXDIAG_REQUIRE(slot < SLOT_LIMIT);
  OXDIAG_REQUIRE(slot == '\n' && "a %d \"b\"");
#undef SLOT_LIMIT
  EXPECT_STREQ(
      "ASSERTION FAILED: slot < SLOT_LIMIT\n"
      "ASSERTION FAILED: slot == '\\n' && \"a %d \\\"b\\\"\"\n",
      stream.text());
}

TEST(ContractMacros, TheLineNamesTheComponentItsVersionAndTheFile) {
  tContractStream stream;
  stream.trace.configure(
      "--compname on --compver on --filename on --filepath on "
      "--verbosity on --truncation off");
  OXDIAG_CHECK_MESSAGE(1 == 2, "x");
  EXPECT_STREQ("[rack--1.0.0f7--source/port.cpp--105] ASSERTION FAILED: x\n", stream.text());
}

TEST(ContractMacros, TheLineHasTheNumberItStandsIn) {
  tContractStream stream;
  stream.trace.configure("--linenumber on --truncation off");
  // clang-format off
  OXDIAG_CHECK_MESSAGE(1 == 2, "x"); u32 const line = __LINE__;
  // clang-format on
  stream.trace.put("[").put(line, 10).put("] ASSERTION FAILED: x").endl();
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
  EXPECT_EQ(stream.record.pieceLength(0), stream.record.pieceLength(1));
  EXPECT_TRUE(stream.record.pieceIs(0, stream.text() + stream.record.pieceLength(0)));
}

TEST(ContractMacros, AContractIsOneStatement) {
  tContractStream stream;
  for (u32 count = 0; count < 3; ++count)
    if (count == 1)
      OXDIAG_REQUIRE_MESSAGE(count == 0, "one");
    else
      OXDIAG_ENSURE_IN("warning", count == 1, "other");
  EXPECT_STREQ("ASSERTION WARNING: other\nASSERTION FAILED: one\nASSERTION WARNING: other\n",
               stream.text());
}

TEST(ContractMacros, AConditionMayHoldCommasOfTemplateArguments) {
  tContractStream stream;
  OXDIAG_REQUIRE(isLess<1, 2>());
  OXDIAG_REQUIRE(isLess<2, 1>());
  OXDIAG_REQUIRE(isFirst<u32, u8>(1, 2));
  EXPECT_STREQ(
      "ASSERTION FAILED: isLess<2, 1>()\n"
      "ASSERTION FAILED: isFirst<u32, u8>(1, 2)\n",
      stream.text());
}

TEST(ContractMacros, AConditionInParenthesesMayHoldThemInEveryForm) {
  tContractStream stream;
  OXDIAG_REQUIRE_MESSAGE((isLess<2, 1>()), "one");
  OXDIAG_REQUIRE_IN("warning", (isLess<2, 1>()), "two");
  EXPECT_STREQ("ASSERTION FAILED: one\nASSERTION WARNING: two\n", stream.text());
}

TEST(ContractMacros, AConditionIsWhateverAnIfWouldTake) {
  tContractStream stream;
  u32 const value = 5;
  u32 const* none = nullptr;
  OXDIAG_CHECK(value);
  OXDIAG_CHECK(&value);
  OXDIAG_CHECK(value & 4);
  OXDIAG_CHECK(value == 4 || value == 5);
  OXDIAG_CHECK(tHandle{true});
  OXDIAG_CHECK([&] { return value == 5; }());
  EXPECT_STREQ("", stream.text());
  OXDIAG_CHECK(none);
  OXDIAG_CHECK(tHandle{false});
  EXPECT_STREQ("ASSERTION FAILED: none\nASSERTION FAILED: tHandle{false}\n", stream.text());
}

TEST(ContractMacros, NamesOfTheCallerAreNotShadowed) {
  tContractStream stream;
  checkShadowed(0, 0, 0, 0, 0, 0);
  EXPECT_STREQ("", stream.text());
  checkShadowed(1, 0, 0, 0, 0, 0);
  EXPECT_EQ(u32{2}, stream.record.pieceCount());
}

TEST(ContractMacros, AContractMayStandInTheConditionOfAnother) {
  tContractStream stream;
  OXDIAG_REQUIRE_MESSAGE(isRight(false), "outer");
  EXPECT_STREQ("ASSERTION FAILED: inner\nASSERTION FAILED: outer\n", stream.text());
}

TEST(ContractMacros, AProgramDoesTheSameWithAllContractsOff) {
  tContractStream stream;
  u32 const checked = checkShadowed(7, 1, 1, 1, 1, 1);
  for (tTestSwitch const& entry : kTestSwitches) entry.disable(stream.contracts, "default");
  stream.record.clear();
  EXPECT_EQ(checked, checkShadowed(7, 1, 1, 1, 1, 1));
  EXPECT_STREQ("", stream.text());
}

TEST(ContractMacros, ASwitchDecidesAtTheNextCheckOfAContractThatWasCheckedBefore) {
  tContractStream stream;
  for (u32 kind = 0; kind < sizeof(kKinds) / sizeof(kKinds[0]); ++kind) {
    configureWords(stream.contracts, "--category", "statusFatal", kKinds[kind].option, "on");
    EXPECT_EQ(u32{3}, countEvaluations(kind));
    configureWords(stream.contracts, "--category", "default", kKinds[kind].option, "off");
    EXPECT_EQ(u32{1}, countEvaluations(kind));
    configureWords(stream.contracts, "--category", "statusFatal", kKinds[kind].option, "off");
    EXPECT_EQ(u32{0}, countEvaluations(kind));
    configureWords(stream.contracts, "--category", "default", kKinds[kind].option, "on");
    EXPECT_EQ(u32{2}, countEvaluations(kind));
  }
}

TEST(ContractMacros, APopDecidesAtTheNextCheck) {
  tContractStream stream;
  EXPECT_EQ(u32{3}, countEvaluations(0));
  stream.contracts.pushConfiguration();
  stream.contracts.configure("--category default --preconditions off");
  EXPECT_EQ(u32{1}, countEvaluations(0));
  stream.contracts.popConfiguration();
  EXPECT_EQ(u32{3}, countEvaluations(0));
}

TEST(ContractMacros, ATextThatIsNoLiteralIsLookedUpAtEachCheck) {
  tContractStream stream;
  stream.contracts.disableChecks("warning");
  EXPECT_TRUE(isEvaluatedIn("statusFatal"));
  EXPECT_FALSE(isEvaluatedIn("warning"));
  EXPECT_FALSE(isEvaluatedIn("no such category"));
  EXPECT_TRUE(isEvaluatedIn("default"));
  char name[] = "warning";
  EXPECT_FALSE(isEvaluatedIn(name));
  __builtin_memcpy(name, "default", sizeof(name));
  EXPECT_TRUE(isEvaluatedIn(name));
  constexpr char kOther[12] = "warning";
  EXPECT_TRUE(isEvaluatedIn(kOther, true));
  EXPECT_FALSE(isEvaluatedIn(kOther, false));
}
