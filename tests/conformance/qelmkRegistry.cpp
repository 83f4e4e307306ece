#include "conformance/harness.h"
#include "qelmk/qelmk.h"
#include "support/callerCodes.h"
#include "support/tParcel.h"
#include "support/tRegistration.h"
#include "support/tTexts.h"
#include "vexk/statusCodes.h"

namespace {

using nQELM100::kMostClassNameLength;
using nQELM100::registerClass;
using nQELM100::tClass;
using nQELM100::tClassImplementation;
using nQELM100::unregisterClass;

bool isFound(char const* name) {
  i32 status = 0;
  return tClass::forName(name, status).isValid() && status == 0;
}

i32 tryToRegister(tClassImplementation& record) {
  i32 status = 0;
  registerClass(record, status);
  return status;
}

// `length` times the letter n, with room for one too long.
char const* longName(u32 length) {
  static char name[kMostClassNameLength + 2];
  for (u32 index = 0; index < length; ++index) name[index] = 'n';
  name[length] = '\0';
  return name;
}

}  // namespace

TEST(QelmkRegistry, FindsARegisteredClassByItsName) {
  tRegistration<tParcel> const registration;
  i32 status = 0;
  tClass const found = tClass::forName("tParcel", status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_TRUE(found == tParcel::staticGetClass(status));
}

TEST(QelmkRegistry, FindsAClassByExactlyAsManyCharacters) {
  tRegistration<tParcel> const registration;
  char const text[] = "tParcel\0tail";
  for (size_t length = 0; length < sizeof(text); ++length) {
    i32 status = 0;
    EXPECT_EQ(tClass::forName(text, length, status).isValid(), length == 7);
    EXPECT_EQ(status, length == 7 ? 0 : nQELM100::kStatusClassUnknown);
  }
}

TEST(QelmkRegistry, FindsNothingWithoutAName) {
  i32 status = 0;
  EXPECT_FALSE(tClass::forName(nullptr, 7, status).isValid());
  EXPECT_EQ(status, nQELM100::kStatusClassUnknown);
}

TEST(QelmkRegistry, AClassFoundByNameMakesInstances) {
  tRegistration<tParcel> const registration;
  i32 status = 0;
  nQELM100::tObject* const object = tClass::forName("tParcel", status).newInstance(status);
  EXPECT_TRUE(nQELM100::dynamicCast<tParcel>(object) != nullptr);
  destroy(object);
}

TEST(QelmkRegistry, FindsTheInterfacesOfTheFramework) {
  EXPECT_TRUE(isFound("nQELM100::iCloneable"));
  EXPECT_TRUE(isFound("nQELM100::iExternalizable"));
  EXPECT_TRUE(isFound("nQELM100::iCloneableExternalizable"));
}

TEST(QelmkRegistry, FindsTheInterfacesOfTheLibrary) {
  EXPECT_TRUE(isFound("nOXDIAG100::iReportableTranslatorForEmptyContainers"));
  EXPECT_TRUE(isFound("nOXDIAG100::iReportableTranslatorForI64"));
  EXPECT_TRUE(isFound("nOXDIAG100::iReportableTranslatorTimeAbsolute"));
  EXPECT_TRUE(isFound("nOXDIAG100::iStatus2Description"));
  EXPECT_TRUE(isFound("nOXDIAG100::iStringIDToWideStringConverter"));
  EXPECT_TRUE(isFound("nOXDIAG100::iVariantReportable"));
}

TEST(QelmkRegistry, AnUnknownNameStandsForNoClass) {
  tRegistration<tParcel> const registration;
  for (char const* name : tTexts{"tParcels", "tParce", "tparcel", " tParcel", ""}) {
    i32 status = 0;
    EXPECT_FALSE(tClass::forName(name, status).isValid());
    EXPECT_EQ(nQELM100::kStatusClassUnknown, status);
  }
}

TEST(QelmkRegistry, NoNameStandsForNoClass) {
  i32 status = 0;
  EXPECT_FALSE(tClass::forName(nullptr, status).isValid());
  EXPECT_EQ(nQELM100::kStatusClassUnknown, status);
}

TEST(QelmkRegistry, LooksForNothingAfterAnError) {
  i32 status = kEarlierError;
  EXPECT_FALSE(tClass::forName("nQELM100::iCloneable", status).isValid());
  EXPECT_EQ(kEarlierError, status);
}

TEST(QelmkRegistry, AWarningStaysWhenAClassIsFound) {
  i32 status = kEarlierWarning;
  EXPECT_TRUE(tClass::forName("nQELM100::iCloneable", status).isValid());
  EXPECT_EQ(kEarlierWarning, status);
}

TEST(QelmkRegistry, ForgetsAnUnregisteredClass) {
  {
    tRegistration<tParcel> const registration;
    EXPECT_TRUE(isFound("tParcel"));
  }
  EXPECT_FALSE(isFound("tParcel"));
}

TEST(QelmkRegistry, AClassIsFoundUntilEveryRegistrationIsUndone) {
  i32 status = 0;
  tParcel::___registerClass(status);
  tParcel::___registerClass(status);
  EXPECT_EQ(i32{0}, status);
  tParcel::___unregisterClass();
  EXPECT_TRUE(isFound("tParcel"));
  tParcel::___unregisterClass();
  EXPECT_FALSE(isFound("tParcel"));
  tParcel::___unregisterClass();
  EXPECT_FALSE(isFound("tParcel"));
}

TEST(QelmkRegistry, RefusesASecondClassOfTheSameName) {
  tRegistration<tParcel> const registration;
  tClassImplementation second("tParcel", nullptr, nullptr);
  EXPECT_EQ(nQELM100::kStatusClassNameTaken, tryToRegister(second));
  i32 status = 0;
  EXPECT_TRUE(tClass::forName("tParcel", status) == tParcel::staticGetClass(status));
  unregisterClass(second);
  EXPECT_TRUE(isFound("tParcel"));
}

TEST(QelmkRegistry, ANameIsFreeAgainWhenItsClassIsUnregistered) {
  tClassImplementation first("tVacant", nullptr, nullptr);
  tClassImplementation second("tVacant", nullptr, nullptr);
  EXPECT_EQ(i32{0}, tryToRegister(first));
  unregisterClass(first);
  EXPECT_EQ(i32{0}, tryToRegister(second));
  i32 status = 0;
  EXPECT_TRUE(tClass::forName("tVacant", status) == tClass(second));
  unregisterClass(second);
}

TEST(QelmkRegistry, NamesAreComparedByTheirTextAndNotByTheirPlace) {
  char name[] = "tCopied";
  tClassImplementation record("tCopied", nullptr, nullptr);
  EXPECT_EQ(i32{0}, tryToRegister(record));
  EXPECT_TRUE(isFound(name));
  unregisterClass(record);
}

TEST(QelmkRegistry, RegistersNothingAfterAnError) {
  i32 status = kEarlierError;
  tParcel::___registerClass(status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_FALSE(isFound("tParcel"));
  tClassImplementation nameless(nullptr, nullptr, nullptr);
  nQELM100::registerClass(nameless, status);
  EXPECT_EQ(kEarlierError, status);
}

TEST(QelmkRegistry, AWarningStaysWhenAClassIsRegistered) {
  i32 status = kEarlierWarning;
  tParcel::___registerClass(status);
  EXPECT_EQ(kEarlierWarning, status);
  EXPECT_TRUE(isFound("tParcel"));
  tParcel::___unregisterClass();
}

TEST(QelmkRegistry, AClassHasAName) {
  tClassImplementation nameless(nullptr, nullptr, nullptr);
  EXPECT_EQ(kStatusBadArgument, tryToRegister(nameless));
  unregisterClass(nameless);
  tClassImplementation empty("", nullptr, nullptr);
  EXPECT_EQ(kStatusBadArgument, tryToRegister(empty));
}

TEST(QelmkRegistry, ANameHasALargestLength) {
  tClassImplementation tooLong(longName(kMostClassNameLength + 1), nullptr, nullptr);
  EXPECT_EQ(kStatusBadArgument, tryToRegister(tooLong));
  EXPECT_FALSE(isFound(longName(kMostClassNameLength + 1)));
  tClassImplementation longest(longName(kMostClassNameLength), nullptr, nullptr);
  EXPECT_EQ(i32{0}, tryToRegister(longest));
  EXPECT_TRUE(isFound(longName(kMostClassNameLength)));
  unregisterClass(longest);
}

TEST(QelmkRegistry, ANameMayHaveOneCharacter) {
  tClassImplementation shortest(longName(1), nullptr, nullptr);
  EXPECT_EQ(i32{0}, tryToRegister(shortest));
  EXPECT_TRUE(isFound("n"));
  EXPECT_FALSE(isFound("m"));
  unregisterClass(shortest);
}

TEST(QelmkRegistry, UnregisteringWhatIsNotRegisteredDoesNothing) {
  tClassImplementation never("tNever", nullptr, nullptr);
  unregisterClass(never);
  EXPECT_FALSE(isFound("tNever"));
}
