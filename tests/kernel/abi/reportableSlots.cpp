// The slots of the virtual operations of reportables, translators and converters, which other
// modules call by position.

#include "conformance/harness.h"
#include "oxdiagk/tStatus2.h"
#include "qelmk/tGUID.h"
#include "support/reportableSamples.h"
#include "support/tTestConverter.h"
#include "support/tTestTranslator.h"

namespace {

using namespace nOXDIAG100;
using _STL::wstring;

// The operation in a slot, counted from 1 as the interface counts them.
template <class Function>
Function* getSlot(void const* object, u32 slot) {
  return reinterpret_cast<Function*>((*static_cast<void** const*>(object))[slot - 1]);
}

// A text is returned in storage of the caller, whose address follows the object's.
using tReportCall = void(void const* object, iReportableTranslator const* translator,
                         wstring* output, tStatus2* status);
using tEquivalentCall = u32(void const* object, iVariantReportable const* other, tStatus2* status);
using tObjectCall = nQELM100::tObject const*(void const* object, tStatus2* status);
using tU32Call = void*(void const* object, void* text, u32 value, tStatus2* status);
using tI32Call = void*(void const* object, void* text, i32 value, tStatus2* status);
using tReferenceCall = void*(void const* object, void* text, void const* value, tStatus2* status);
using tPlainCall = void*(void const* object, void* text, tStatus2* status);
using tTitleCall = void(void const* object, wstring* output, tStatus2* status);
using tEnumCall = void*(void const* object, void* text, i32 id, i32 value, tStatus2* status);

// Storage for a text that a raw slot makes.
class tRawText {
 public:
  tRawText() = default;
  ~tRawText() { reinterpret_cast<wstring*>(storage)->~wstring(); }
  tRawText(tRawText const&) = delete;
  tRawText& operator=(tRawText const&) = delete;

  void* address() { return storage; }
  tNarrowText narrow() const { return tNarrowText(*reinterpret_cast<wstring const*>(storage)); }

 private:
  alignas(wstring) u8 storage[sizeof(wstring)];
};

// The text that the operation in a slot makes of its arguments.
template <class tCall, class... tArguments>
tNarrowText textOf(void const* object, u32 slot, tArguments... arguments) {
  tRawText text;
  tStatus2 status;
  getSlot<tCall>(object, slot)(object, text.address(), arguments..., &status);
  EXPECT_EQ(status.getCode(), 0);
  return text.narrow();
}

}  // namespace

TEST(ReportableSlots, TheReportIsInTheFirstAndTheComparisonInTheSecond) {
  visitReportables([](auto tag) {
    auto const reportable = tag.one();
    iVariantReportable const* const face = &reportable;
    tTestTranslator const translator;
    wstring output;
    wstring expected;
    tStatus2 status;
    tStatus2 ignored;
    getSlot<tReportCall>(face, 1)(face, &translator, &output, &status);
    reportable.generateReport(translator, expected, ignored);
    EXPECT_STREQ(tNarrowText(output).get(), tNarrowText(expected).get());
    EXPECT_EQ(status.getCode(), ignored.getCode());
    status.setCode(0);
    EXPECT_EQ(getSlot<tEquivalentCall>(face, 2)(face, face, &status), u32{1});
  });
}

TEST(ReportableSlots, TheFrameworkFaceIsInItsOrder) {
  using tCastCall = void*(void* object, void* const* id);
  using tTObjectCall = nQELM100::tObject*(void* object);
  tPropertyIDReportable reportable;
  nQELM100::tObject* const object = &reportable;
  auto* const cast = getSlot<tCastCall>(object, 1);
  EXPECT_TRUE(cast(object, &tPropertyIDReportable::___classID) == &reportable);
  auto* const constCast = getSlot<tCastCall>(object, 2);
  EXPECT_TRUE(constCast(object, &tPropertyIDReportable::___classID) == &reportable);
  EXPECT_TRUE(constCast(object, &tTitleReportable::___classID) == nullptr);
  EXPECT_TRUE(getSlot<tTObjectCall>(object, 4)(object) == object);
}

TEST(ReportableSlots, ATranslatorIsInTheOrderOfItsInterface) {
  tTestTranslator const plain;
  nOXDIAG100::iReportableTranslator const* const translator = &plain;
  tStatus2 status;
  EXPECT_TRUE(getSlot<tObjectCall>(translator, 2)(translator, &status) == nullptr);
  u64 const wide = 0x100000002;
  wstring const text(L"slot");
  EXPECT_STREQ(textOf<tU32Call>(translator, 3, u32{1}).get(), "u32 1");
  EXPECT_STREQ(textOf<tReferenceCall>(translator, 4, &wide).get(), "u64 4294967298");
  EXPECT_STREQ(textOf<tReferenceCall>(translator, 5, &text).get(), "text slot");
  EXPECT_STREQ(textOf<tI32Call>(translator, 6, -1).get(), "i32 -1");
  EXPECT_STREQ(textOf<tI32Call>(translator, 7, -1).get(), "reserved -1");
  EXPECT_STREQ(textOf<tPlainCall>(translator, 8).get(), ", ");
  EXPECT_STREQ(textOf<tI32Call>(translator, 9, 5).get(), "usage 5");
  EXPECT_STREQ(textOf<tPlainCall>(translator, 10).get(), "; ");
  EXPECT_STREQ(textOf<tPlainCall>(translator, 11).get(), "[");
  EXPECT_STREQ(textOf<tPlainCall>(translator, 12).get(), "..");
  EXPECT_STREQ(textOf<tReferenceCall>(translator, 14, &kSecondGUID).get(), "guid 1");
  EXPECT_STREQ(textOf<tI32Call>(translator, 15, 7).get(), "property 7");
  EXPECT_STREQ(textOf<tEnumCall>(translator, 16, 7, 3).get(), "property 7 is 3");
}

TEST(ReportableSlots, TheTitleOperationIsInTheThirteenth) {
  tTestTranslator const plain;
  nOXDIAG100::iReportableTranslator const* const translator = &plain;
  tStatus2 status;
  wstring output(L"slot");
  getSlot<tTitleCall>(translator, 13)(translator, &output, &status);
  EXPECT_STREQ(tNarrowText(output).get(), "<slot>");
}

TEST(ReportableSlots, ASpecialisedTextIsBehindTheDestructor) {
  tFullTranslator const full;
  i64 const wide = -0x100000002;
  tSSTimeAbsolute const time = timeOf(1, 2, 3, 0);
  nOXDIAG100::iReportableTranslatorForI64 const* const forI64 = &full;
  nOXDIAG100::iReportableTranslatorForEmptyContainers const* const forEmpty = &full;
  nOXDIAG100::iReportableTranslatorTimeAbsolute const* const forTimes = &full;
  EXPECT_STREQ(textOf<tReferenceCall>(forI64, 2, &wide).get(), "i64 -4294967298");
  EXPECT_STREQ(textOf<tPlainCall>(forEmpty, 2).get(), "none");
  EXPECT_STREQ(textOf<tReferenceCall>(forTimes, 2, &time).get(), "time 3");
}

TEST(ReportableSlots, AConverterConvertsInTheFirst) {
  tTestConverter const one;
  nOXDIAG100::iStringIDToWideStringConverter const* const converter = &one;
  EXPECT_STREQ(textOf<tI32Call>(converter, 1, 3).get(), "string 3");
}
