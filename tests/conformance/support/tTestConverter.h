#pragma once

// A lookup class of string ids.

#include "oxdiagk/iStringIDToWideStringConverter.h"
#include "qelmk/statusCodes.h"

// Says "string 3" for the id 3; a negative id fails with kStatusUnknownString. It counts who lives.
class tTestConverter : public nOXDIAG100::iStringIDToWideStringConverter {
  QELM_DECLARE_CLASS(tTestConverter, nOXDIAG100::iStringIDToWideStringConverter)

 public:
  static constexpr char kName[] = "nTESTS::tTestConverter";
  static constexpr i32 kStatusUnknownString = -77301;

  static i32 living;
  static i32 made;

  tTestConverter() {
    ++living;
    ++made;
  }
  tTestConverter(tTestConverter const&) = delete;
  tTestConverter& operator=(tTestConverter const&) = delete;
  ~tTestConverter() override { --living; }

  _STL::wstring convert(i32 stringID, nOXDIAG100::tStatus2& status) const override;
};

// Lets a class be found by its name for the length of a test.
template <class T>
class tRegistration {
 public:
  tRegistration() { T::___registerClass(status); }
  ~tRegistration() { T::___unregisterClass(); }
  tRegistration(tRegistration const&) = delete;
  tRegistration& operator=(tRegistration const&) = delete;

  i32 getStatus() const { return status; }

 private:
  i32 status = 0;
};
