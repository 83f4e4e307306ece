#include "slotbus/component/statusCodes.h"

namespace nSLOTBUS100 {
namespace {

struct tMeaning {
  i32 code;
  char const* text;
};

constexpr tMeaning kMeanings[] = {
    {kStatusTextNotPlain, "the file is UTF-16; save it as plain text (ASCII or UTF-8)"},
    {kStatusTextTooLong, "the file is longer than 1 MiB, which no rack needs"},
    {kStatusLineTooLong, "the line is longer than 2000 bytes"},
    {kStatusBadCharacter, "the line holds a character that is not printable ASCII"},
    {kStatusMissingField, "a field is missing (slot | instance | hardware ids | description)"},
    {kStatusExtraField, "there are more than four fields"},
    {kStatusSlotNotANumber, "the slot is not a number"},
    {kStatusSlotOutOfRange, "the slot is not in the range 1 to 99"},
    {kStatusInstanceNotANumber, "the instance is not a number (decimal, or 0x and hexadecimal)"},
    {kStatusInstanceTooLarge, "the instance does not fit into 64 bits"},
    {kStatusNoHardwareId, "a hardware id is missing"},
    {kStatusBlankInHardwareId, "a hardware id has a blank in it (ids are separated by commas)"},
    {kStatusHardwareIdTooLong, "a hardware id is longer than 201 characters"},
    {kStatusHardwareIdsTooLong, "the hardware ids together are longer than 1024 characters"},
    {kStatusNoDescription, "the description is missing"},
    {kStatusDescriptionTooLong, "the description is longer than 120 characters"},
    {kStatusSlotTaken, "the slot is taken by an earlier line"},
    {kStatusInstanceTaken, "the instance number is used by an earlier line"},
    {kWarningEmptyRack, "the rack is empty"},
};

}  // namespace

char const* describeStatusCode(i32 code) {
  for (tMeaning const& meaning : kMeanings) {
    if (meaning.code == code) {
      return meaning.text;
    }
  }
  return "an unexpected failure";
}

}  // namespace nSLOTBUS100
