#pragma once

// Descriptions and other objects of the framework, for tests of what owns descriptions.

#include "oxdiagk/iStatus2Description.h"

// A description with one number. It counts who lives, and its cloning can be made to go wrong.
class tTestDescription : public nOXDIAG100::iStatus2Description {
  QELM_DECLARE_CLASS(tTestDescription, nOXDIAG100::iStatus2Description)

 public:
  static constexpr i32 kStatusCloneFailed = -77101;

  enum tCloning : u32 {
    kCloning,           // yields a clone
    kFailing,           // yields null and kStatusCloneFailed
    kFailingSilently,   // yields null and no status
    kYieldingForeign,   // yields an object that is no description
    kYieldingAndWarns,  // yields a clone and a warning
  };

  // In every object of the class and of those derived from it.
  static i32 living;
  static tCloning cloning;

  // The status with which the last clone was asked for.
  static i32 lastCloneStatus;

  explicit tTestDescription(i32 content = 0) : number(content) { ++living; }
  tTestDescription(tTestDescription const& other);
  ~tTestDescription() override { --living; }
  tTestDescription& operator=(tTestDescription const&) = delete;

  nQELM100::iCloneable* clone(i32& status) const override;
  void writeExternal(nQELM100::iObjectWriter& writer, i32& status) const override;
  void readExternal(nQELM100::iObjectReader& reader, i32& status) override;

  i32 number;
};

// A description with text of its own: `number` letters, or as many as the buffer has room for.
class tTalkingDescription : public tTestDescription {
  QELM_DECLARE_CLASS(tTalkingDescription, tTestDescription)

 public:
  explicit tTalkingDescription(i32 content = 0) : tTestDescription(content) {}

  // The size of the buffer that the last toString got, and whether it left out the terminator.
  static u32 lastSize;
  static bool isCareless;

  nQELM100::iCloneable* clone(i32& status) const override;
  void toString(char* buffer, u32 size) const override;
};

// No description, but cloneable and externalizable like one.
class tForeignObject : public virtual nQELM100::iCloneableExternalizable {
  QELM_DECLARE_CLASS(tForeignObject, nQELM100::iCloneableExternalizable)

 public:
  static i32 living;

  tForeignObject() { ++living; }
  tForeignObject(tForeignObject const& other) : tObject(other) { ++living; }
  ~tForeignObject() override { --living; }
  tForeignObject& operator=(tForeignObject const&) = delete;

  nQELM100::iCloneable* clone(i32& status) const override;
  void writeExternal(nQELM100::iObjectWriter&, i32&) const override {}
  void readExternal(nQELM100::iObjectReader&, i32&) override {}
};

// The number of a test description; -1 when it is none.
i32 numberOf(nOXDIAG100::iStatus2Description const* description);

// Makes cloning go another way for the length of a test.
class tCloningScope {
 public:
  explicit tCloningScope(tTestDescription::tCloning way) { tTestDescription::cloning = way; }
  ~tCloningScope() { tTestDescription::cloning = tTestDescription::kCloning; }
  tCloningScope(tCloningScope const&) = delete;
  tCloningScope& operator=(tCloningScope const&) = delete;
};
