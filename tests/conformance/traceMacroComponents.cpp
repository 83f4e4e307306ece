// Components and versions that are written in other ways than as a literal.

#include "conformance/harness.h"
#include "support/prefixedStream.h"

#define OXDIAG_COMPONENT_VERSION kVersion
#define OXDIAG_TRACE_FILE "port.cpp"
#define OXDIAG_TRACE_STREAM (*stream)
#include "oxdiagk/traceMacros.h"

namespace {

constinit nOXDIAG100::tTrace* stream = nullptr;

constexpr tSSVersion kVersion(1, 0, 0, tSSVersion::kPhaseReleased, 7, 0);
tSSVersion const kConstVersion(2, 0, 0, tSSVersion::kPhaseReleased, 8, 0);

struct tComponentStream : tPrefixedStream {
  tComponentStream() {
    showFieldsInFull();
    trace.disableLineNumber();
    stream = &trace;
  }

  char const* text() const { return record.text(); }
};

char const* getName() {
  return "function";
}

constexpr char const* getConstantName() {
  return "constant function";
}

constexpr char const* kConstantPointer = "constant pointer";
char const* const kConstPointer = "const pointer";
constinit char const* changingPointer = "changing pointer";
constexpr char kConstantArray[] = "constant array";
char const kConstArray[] = "const array";
constinit char changingArray[] = "changing array";
constexpr char const* kNoName = nullptr;

}  // namespace

#define OXDIAG_COMPONENT getName()
TEST(TraceMacroComponents, AFunctionGivesTheName) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[function--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT getConstantName()
TEST(TraceMacroComponents, AConstantFunctionGivesTheName) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[constant function--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT kConstantPointer
TEST(TraceMacroComponents, AConstantPointerIsTheName) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[constant pointer--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT kConstPointer
TEST(TraceMacroComponents, AConstPointerIsTheName) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[const pointer--port.cpp] x\n", component.text());
}

void traceBlock() {
  OXDIAG_BLOCK_STATUS(100, stream, static_cast<i32*>(nullptr));
}

TEST(TraceMacroComponents, ABlockHasANameOfAConstPointer) {
  tComponentStream component;
  ASSERT_NE(component.trace.getFilter(), nullptr);
  component.trace.getFilter()->removeAll();
  component.trace.getFilter()->addTerm("==const pointer", nOXDIAG100::tTraceFilter::kFirst,
                                       nOXDIAG100::tTraceFilter::kComponentName);
  traceBlock();
  EXPECT_EQ(u32{2}, component.record.pieceCount());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT changingPointer
TEST(TraceMacroComponents, AChangingPointerIsTheNameOfTheMoment) {
  tComponentStream component;
  for (u32 count = 0; count < 2; ++count) {
    OXDIAG_TRACE(100, put("x"));
    changingPointer = count == 0 ? "another" : "changing pointer";
  }
  EXPECT_STREQ("[changing pointer--port.cpp] x\n[another--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT kConstantArray
TEST(TraceMacroComponents, AConstantArrayIsTheName) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[constant array--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT kConstArray
TEST(TraceMacroComponents, AConstArrayIsTheName) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[const array--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT changingArray
TEST(TraceMacroComponents, AChangingArrayIsTheNameOfTheMoment) {
  tComponentStream component;
  for (u32 count = 0; count < 2; ++count) {
    OXDIAG_TRACE(100, put("x"));
    changingArray[0] = count == 0 ? 'C' : 'c';
  }
  EXPECT_STREQ("[changing array--port.cpp] x\n[Changing array--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT kNoName
TEST(TraceMacroComponents, NoNameIsAnEmptyOne) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT ""
TEST(TraceMacroComponents, TheNameMayBeEmpty) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT

namespace {

#define OXDIAG_COMPONENT name
struct tPart {
  char const* name;

  void trace() const { OXDIAG_TRACE(100, put("x")); }
  void traceVolatile() const volatile { OXDIAG_TRACE(100, put("x")); }
  void traceInLambda() {
    auto const trace = [this] { OXDIAG_TRACE(100, put("x")); };
    trace();
  }
};

void traceLocal(char const* name) {
  OXDIAG_TRACE(100, put("x"));
  auto const trace = [&] { OXDIAG_TRACE(100, put("y")); };
  trace();
}

void traceConstLocal() {
  [[maybe_unused]] char const* const name = "const local";
  OXDIAG_TRACE(100, put("x"));
}

template <class tNamed>
void traceOf(tNamed const& named) {
  char const* const name = named.name;
  OXDIAG_TRACE(100, put("x"));
}
#undef OXDIAG_COMPONENT

#define OXDIAG_COMPONENT tNamed::kName
struct tFan {
  static constexpr char const* kName = "fan";
};
struct tLamp {
  static constexpr char const* kName = "lamp";
};

template <class tNamed>
void traceKind() {
  OXDIAG_TRACE(100, put("x"));
}
#undef OXDIAG_COMPONENT

}  // namespace

TEST(TraceMacroComponents, AMemberIsTheName) {
  tComponentStream component;
  tPart part{"member"};
  part.trace();
  part.traceVolatile();
  part.traceInLambda();
  traceOf(part);
  EXPECT_STREQ(
      "[member--port.cpp] x\n[member--port.cpp] x\n[member--port.cpp] x\n"
      "[member--port.cpp] x\n",
      component.text());
}

TEST(TraceMacroComponents, ALocalNameIsTheName) {
  tComponentStream component;
  traceLocal("local");
  traceConstLocal();
  EXPECT_STREQ("[local--port.cpp] x\n[local--port.cpp] y\n[const local--port.cpp] x\n",
               component.text());
}

TEST(TraceMacroComponents, EachKindOfATemplateHasItsName) {
  tComponentStream component;
  traceKind<tFan>();
  traceKind<tLamp>();
  EXPECT_STREQ("[fan--port.cpp] x\n[lamp--port.cpp] x\n", component.text());
}

#undef OXDIAG_COMPONENT_VERSION
#define OXDIAG_COMPONENT_VERSION kConstVersion
#define OXDIAG_COMPONENT "rack"
TEST(TraceMacroComponents, AVersionMayBeConstOnly) {
  tComponentStream component;
  component.trace.enableComponentVersion();
  OXDIAG_TRACE(100, put("x"));
  EXPECT_STREQ("[rack--2.0.0f8--port.cpp] x\n", component.text());
}
#undef OXDIAG_COMPONENT_VERSION
#define OXDIAG_COMPONENT_VERSION kVersion

TEST(TraceMacroComponents, OfALiteralTheCompilerKnowsThePlace) {
  OXDIAG_TRACE_SITE(site);
  constexpr bool kIsKnown = VEX_IS_CONSTANT(kVersion.getPacked());
  EXPECT_EQ(kIsKnown, site.isSomewhere());
}

TEST(TraceMacroComponents, AChainMayEndInAnything) {
  tComponentStream component;
  OXDIAG_TRACE(100, put("x").getNestingLevel());
  OXDIAG_TRACE(100, getDestination());
  EXPECT_STREQ("[rack--port.cpp] x\n[rack--port.cpp] \n", component.text());
}

TEST(TraceMacroComponents, AMacroMayStandInAChain) {
  tComponentStream component;
  auto const getSlot = [] {
    OXDIAG_TRACE(100, put("asked"));
    return 3;
  };
  OXDIAG_TRACE(100, put("slot ").put(getSlot(), 10).put([] {
    OXDIAG_TRACE(99, put("hidden"));
    return true;
  }()));
  EXPECT_STREQ("[rack--port.cpp] slot [rack--port.cpp] asked\n3true(1)\n", component.text());
}
