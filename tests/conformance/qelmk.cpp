#include "qelmk/qelmk.h"
#include "conformance/harness.h"
#include "ntos/status.h"
#include "support/callerCodes.h"
#include "vexk/memory.h"

namespace qelmkTests {

using nQELM100::dynamicCast;
using nQELM100::iCloneable;
using nQELM100::iCloneableExternalizable;
using nQELM100::iExternalizable;
using nQELM100::iObjectReader;
using nQELM100::iObjectWriter;
using nQELM100::tClass;
using nQELM100::tObject;

// An interface beside the framework's, with a table of operations in front of theirs.
class iMeasured : public virtual tObject {
  QELM_DECLARE_INTERFACE(iMeasured, tObject)

 public:
  virtual i32 measure() const = 0;
};

class tPoint : public iMeasured, public virtual iCloneableExternalizable {
  QELM_DECLARE_CLASS(tPoint, iMeasured, iCloneableExternalizable)

 public:
  tPoint() { ++living; }
  tPoint(tPoint const& other) : tObject(other), x(other.x), y(other.y) { ++living; }
  ~tPoint() override { --living; }
  tPoint& operator=(tPoint const&) = default;

  i32 measure() const override { return x + y; }
  iCloneable* clone(i32& status) const override;
  void writeExternal(iObjectWriter& writer, i32& status) const override;
  void readExternal(iObjectReader& reader, i32& status) override;

  static i32 living;
  i32 x = 1;
  i32 y = 2;
};

// A class derived from a class.
class tNamedPoint : public tPoint {
  QELM_DECLARE_CLASS(tNamedPoint, tPoint)

 public:
  char name = 'n';
};

// A class with none of the interfaces.
class tPlain : public virtual tObject {
  QELM_DECLARE_CLASS(tPlain, tObject)
};

// An object that claims to be of a class that has no instances.
class tImpostor : public tPlain {
 public:
  tClass getClass(i32& status) const override { return iMeasured::staticGetClass(status); }
};

constinit i32 tPoint::living = 0;

iCloneable* tPoint::clone(i32& status) const {
  auto* copy = dynamicCast<tPoint>(staticGetClass(status).newInstance(status));
  if (copy != nullptr) *copy = *this;
  return copy;
}

void tPoint::writeExternal(iObjectWriter& writer, i32& status) const {
  writer.writeI32(x, status);
  writer.writeI32(y, status);
}

void tPoint::readExternal(iObjectReader& reader, i32& status) {
  reader.readI32(x, status);
  reader.readI32(y, status);
}

// A stream of numbers only, of two items at most.
class tNumberStream final : public iObjectWriter, public iObjectReader {
 public:
  static constexpr u32 kCapacity = 2;

  void writeI32(i32 value, i32& status) override {
    if (status < 0) return;
    if (written == kCapacity) {
      status = kEarlierError;
      return;
    }
    items[written++] = value;
  }
  void readI32(i32& value, i32& status) override {
    if (status < 0) return;
    if (read == written) {
      status = kEarlierError;
      return;
    }
    value = items[read++];
  }
  void writeCharacter(char, i32& status) override { status = kEarlierError; }
  void writeU32(u32, i32& status) override { status = kEarlierError; }
  void writeI64(i64, i32& status) override { status = kEarlierError; }
  void writeU64(u64, i32& status) override { status = kEarlierError; }
  void writeString(_STL::string const&, i32& status) override { status = kEarlierError; }
  void writeWideString(_STL::wstring const&, i32& status) override { status = kEarlierError; }
  void writeObject(tObject const*, i32& status) override { status = kEarlierError; }
  void readCharacter(char&, i32& status) override { status = kEarlierError; }
  void readU32(u32&, i32& status) override { status = kEarlierError; }
  void readI64(i64&, i32& status) override { status = kEarlierError; }
  void readU64(u64&, i32& status) override { status = kEarlierError; }
  void readString(_STL::string&, i32& status) override { status = kEarlierError; }
  void readWideString(_STL::wstring&, i32& status) override { status = kEarlierError; }
  tObject* readObject(i32& status) override {
    status = kEarlierError;
    return nullptr;
  }
  u64 getMostItems() const override { return written - read; }

 private:
  i32 items[kCapacity] = {};
  u32 written = 0;
  u32 read = 0;
};

template <class T>
bool isSeenAs(tObject& object, T* expected) {
  tObject const& constant = object;
  return dynamicCast<T>(&object) == expected && dynamicCast<T>(&constant) == expected;
}

}  // namespace qelmkTests

QELM_DEFINE_INTERFACE(qelmkTests::iMeasured, "qelmkTests::iMeasured")
QELM_DEFINE_CLASS(qelmkTests::tPoint, "qelmkTests::tPoint")
QELM_DEFINE_CLASS(qelmkTests::tNamedPoint, "qelmkTests::tNamedPoint")
QELM_DEFINE_CLASS(qelmkTests::tPlain, "qelmkTests::tPlain")

using namespace qelmkTests;

TEST(QelmkCast, AnObjectIsSeenAsItselfAndAllItsBases) {
  tPoint point;
  tObject& object = point;
  EXPECT_TRUE(isSeenAs<tPoint>(object, &point));
  EXPECT_TRUE(isSeenAs<iMeasured>(object, &point));
  EXPECT_TRUE(isSeenAs<iCloneableExternalizable>(object, &point));
  EXPECT_TRUE(isSeenAs<iCloneable>(object, &point));
  EXPECT_TRUE(isSeenAs<iExternalizable>(object, &point));
  EXPECT_TRUE(isSeenAs<tObject>(object, &point));
}

TEST(QelmkCast, AnInterfaceFoundByCastWorks) {
  tPoint point;
  point.x = 40;
  auto* measured = dynamicCast<iMeasured>(static_cast<tObject*>(&point));
  ASSERT_TRUE(measured != nullptr);
  EXPECT_EQ(i32{42}, measured->measure());
}

TEST(QelmkCast, FromOneInterfaceToAnother) {
  tPoint point;
  iExternalizable* externalizable = &point;
  EXPECT_TRUE(dynamicCast<iMeasured>(externalizable) == static_cast<iMeasured*>(&point));
}

TEST(QelmkCast, ADerivedObjectIsSeenAsItsBaseButNotTheOtherWay) {
  tNamedPoint named;
  tPoint point;
  EXPECT_TRUE(isSeenAs<tNamedPoint>(named, &named));
  EXPECT_TRUE(isSeenAs<tPoint>(named, &named));
  EXPECT_TRUE(isSeenAs<iCloneable>(named, &named));
  EXPECT_TRUE(isSeenAs<tNamedPoint>(point, nullptr));
}

TEST(QelmkCast, AnUnrelatedClassIsNotFound) {
  tPlain plain;
  EXPECT_TRUE(isSeenAs<tPlain>(plain, &plain));
  EXPECT_TRUE(isSeenAs<tObject>(plain, &plain));
  EXPECT_TRUE(isSeenAs<tPoint>(plain, nullptr));
  EXPECT_TRUE(isSeenAs<iCloneable>(plain, nullptr));
  EXPECT_TRUE(isSeenAs<iMeasured>(plain, nullptr));
}

TEST(QelmkCast, NullIsSeenAsNull) {
  EXPECT_TRUE(dynamicCast<tPoint>(static_cast<tObject*>(nullptr)) == nullptr);
  EXPECT_TRUE(dynamicCast<tPoint>(static_cast<tObject const*>(nullptr)) == nullptr);
}

TEST(QelmkCast, AnUnknownIdentityIsNotFound) {
  tPoint point;
  void* const unknown = nullptr;
  tObject& object = point;
  EXPECT_TRUE(object.___CPPKRLDynamicCast(&unknown) == nullptr);
  EXPECT_TRUE(object.___CPPKRLDynamicCast(nullptr) == nullptr);
}

TEST(QelmkCast, OfTheBaseOfAllKnowsThatAlone) {
  struct tCast : tObject {
    using tObject::___CPPKRLCast;
  };
  tPoint point;
  tObject* const object = &point;
  tObject const* const constant = object;
  EXPECT_TRUE(tCast::___CPPKRLCast(object, &tObject::___classID) == object);
  EXPECT_TRUE(tCast::___CPPKRLCast(constant, &tObject::___classID) == constant);
  EXPECT_TRUE(tCast::___CPPKRLCast(object, &tPoint::___classID) == nullptr);
  EXPECT_TRUE(tCast::___CPPKRLCast(constant, &tPoint::___classID) == nullptr);
}

TEST(QelmkCast, EveryClassHasAnIdentityOfItsOwn) {
  void* const* const identities[] = {
      &tObject::___classID,   &iCloneable::___classID, &iExternalizable::___classID,
      &iMeasured::___classID, &tPoint::___classID,     &iCloneableExternalizable::___classID,
      &tPlain::___classID,    &tNamedPoint::___classID};
  for (void* const* const* one = identities; one != identities + 8; ++one) {
    for (void* const* const* other = identities; other != one; ++other) {
      EXPECT_TRUE(*one != *other);
    }
  }
}

TEST(QelmkObject, GivesItsOneTObject) {
  tPoint point;
  iMeasured& measured = point;
  EXPECT_TRUE(&measured.___QELMGetTObject() == static_cast<tObject*>(&point));
}

TEST(QelmkObject, AssigningTheTObjectPartKeepsTheContent) {
  tPoint one;
  tPoint other;
  other.x = 100;
  tObject& part = one;
  EXPECT_TRUE(&(part = static_cast<tObject const&>(other)) == &part);
  EXPECT_EQ(i32{1}, one.x);
}

TEST(QelmkClass, TellsItsRegisteredName) {
  tPoint const point;
  tNamedPoint const named;
  i32 status = kEarlierWarning;
  EXPECT_STREQ("qelmkTests::tPoint", point.getClass(status).getName());
  EXPECT_STREQ("qelmkTests::tNamedPoint", named.getClass(status).getName());
  EXPECT_STREQ("qelmkTests::iMeasured", iMeasured::staticGetClass(status).getName());
  EXPECT_STREQ("nQELM100::iCloneable", iCloneable::staticGetClass(status).getName());
  EXPECT_STREQ("nQELM100::iExternalizable", iExternalizable::staticGetClass(status).getName());
  EXPECT_STREQ("nQELM100::iCloneableExternalizable",
               iCloneableExternalizable::staticGetClass(status).getName());
  EXPECT_EQ(kEarlierWarning, status);
}

TEST(QelmkClass, IsEqualWhenItIsTheSameClass) {
  tPoint const one;
  tPoint const other;
  tNamedPoint const named;
  i32 status = 0;
  EXPECT_TRUE(one.getClass(status) == other.getClass(status));
  EXPECT_TRUE(one.getClass(status) == tPoint::staticGetClass(status));
  EXPECT_TRUE(one.getClass(status) != named.getClass(status));
  EXPECT_TRUE(tClass() == tClass());
  EXPECT_TRUE(tClass() != one.getClass(status));
}

TEST(QelmkClass, MakesAndDestroysInstances) {
  i32 const before = tPoint::living;
  i32 status = 0;
  tClass const pointClass = tPoint::staticGetClass(status);
  tObject* object = pointClass.newInstance(status);
  ASSERT_TRUE(object != nullptr);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(before + 1, tPoint::living);
  EXPECT_TRUE(object->getClass(status) == pointClass);
  EXPECT_EQ(i32{3}, dynamicCast<tPoint>(object)->measure());
  pointClass.deleteInstance(object, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(before, tPoint::living);
}

TEST(QelmkClass, MakesAnInstanceOfADerivedClass) {
  i32 status = kEarlierWarning;
  tClass const namedClass = tNamedPoint::staticGetClass(status);
  tObject* object = namedClass.newInstance(status);
  ASSERT_TRUE(dynamicCast<tNamedPoint>(object) != nullptr);
  EXPECT_EQ('n', dynamicCast<tNamedPoint>(object)->name);
  namedClass.deleteInstance(object, status);
  EXPECT_EQ(kEarlierWarning, status);
}

TEST(QelmkClass, MakesNothingAfterAnError) {
  i32 const before = tPoint::living;
  i32 status = 0;
  tClass const pointClass = tPoint::staticGetClass(status);
  status = kEarlierError;
  EXPECT_TRUE(pointClass.newInstance(status) == nullptr);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(before, tPoint::living);
}

TEST(QelmkClass, AnAbstractClassMakesNoInstance) {
  i32 status = 0;
  EXPECT_TRUE(iMeasured::staticGetClass(status).newInstance(status) == nullptr);
  EXPECT_EQ(nQELM100::kStatusClassAbstract, status);
}

TEST(QelmkClass, NoClassIsInvalidAndMakesNothing) {
  tClass const none;
  EXPECT_FALSE(none.isValid());
  EXPECT_STREQ("", none.getName());
  i32 status = 0;
  EXPECT_TRUE(none.newInstance(status) == nullptr);
  EXPECT_EQ(nQELM100::kStatusClassInvalid, status);
}

TEST(QelmkClass, DestroysAlsoAfterAnErrorAndKeepsIt) {
  i32 const before = tPoint::living;
  i32 status = 0;
  tClass const pointClass = tPoint::staticGetClass(status);
  tObject* object = pointClass.newInstance(status);
  status = kEarlierError;
  pointClass.deleteInstance(object, status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(before, tPoint::living);
}

TEST(QelmkClass, DestroyingNullDoesNothing) {
  i32 status = 0;
  tPoint::staticGetClass(status).deleteInstance(nullptr, status);
  tClass().deleteInstance(nullptr, status);
  EXPECT_EQ(i32{0}, status);
}

TEST(QelmkClass, DoesNotDestroyAnObjectOfAnotherClass) {
  tPoint point;
  i32 const before = tPoint::living;
  i32 status = 0;
  tNamedPoint::staticGetClass(status).deleteInstance(&point, status);
  EXPECT_EQ(nQELM100::kStatusClassMismatch, status);
  status = 0;
  iMeasured::staticGetClass(status).deleteInstance(&point, status);
  EXPECT_EQ(nQELM100::kStatusClassMismatch, status);
  status = 0;
  tClass().deleteInstance(&point, status);
  EXPECT_EQ(nQELM100::kStatusClassInvalid, status);
  status = kEarlierError;
  tClass().deleteInstance(&point, status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(before, tPoint::living);
}

TEST(QelmkClass, AnAbstractClassDestroysNothing) {
  tImpostor impostor;
  i32 status = 0;
  iMeasured::staticGetClass(status).deleteInstance(&impostor, status);
  EXPECT_EQ(nQELM100::kStatusClassMismatch, status);
}

TEST(QelmkInterfaces, ACloneHasTheContentAndTheClass) {
  tPoint point;
  point.x = 20;
  i32 status = 0;
  iCloneable* copy = point.clone(status);
  ASSERT_TRUE(copy != nullptr);
  EXPECT_TRUE(copy->getClass(status) == point.getClass(status));
  EXPECT_EQ(i32{22}, dynamicCast<tPoint>(copy)->measure());
  copy->getClass(status).deleteInstance(copy, status);
  EXPECT_EQ(i32{0}, status);
}

TEST(QelmkInterfaces, WhatIsWrittenIsReadBack) {
  tPoint source;
  source.x = 30;
  source.y = 40;
  tPoint target;
  tNumberStream stream;
  i32 status = 0;
  static_cast<iExternalizable&>(source).writeExternal(stream, status);
  static_cast<iExternalizable&>(target).readExternal(stream, status);
  EXPECT_EQ(i32{0}, status);
  EXPECT_EQ(i32{30}, target.x);
  EXPECT_EQ(i32{40}, target.y);
}

TEST(QelmkInterfaces, AFailingStreamLeavesItsCode) {
  tPoint point;
  tNumberStream stream;
  i32 status = 0;
  point.readExternal(stream, status);
  EXPECT_EQ(kEarlierError, status);
  EXPECT_EQ(i32{1}, point.x);
}

TEST(QelmkModule, RunsUntilEveryStartHasMetItsStop) {
  EXPECT_EQ(u32{1}, pkgIsQelmkInitialized());
  EXPECT_EQ(NTSTATUS{0}, qelmkInitialize());
  EXPECT_EQ(NTSTATUS{0}, qelmkUnload());
  EXPECT_EQ(u32{1}, pkgIsQelmkInitialized());
}
