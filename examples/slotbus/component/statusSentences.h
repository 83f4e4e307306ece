#pragma once

// What is wrong, in a sentence part for each status code: told once, for the trace as narrow text
// and for reports as wide text. SLOTBUS_STATUS_SENTENCES(ENTRY) calls ENTRY(code, text) for each.

#define SLOTBUS_STATUS_SENTENCES(ENTRY)                                                            \
  ENTRY(kStatusTextNotPlain, "the file is UTF-16; save it as plain text (ASCII or UTF-8)")         \
  ENTRY(kStatusTextTooLong, "the file is longer than 1 MiB, which no rack needs")                  \
  ENTRY(kStatusLineTooLong, "the line is longer than 2000 bytes")                                  \
  ENTRY(kStatusBadCharacter, "the line holds a character that is not printable ASCII")             \
  ENTRY(kStatusMissingField, "a field is missing (slot | instance | hardware ids | description)")  \
  ENTRY(kStatusExtraField, "there are more than four fields")                                      \
  ENTRY(kStatusSlotNotANumber, "the slot is not a number")                                         \
  ENTRY(kStatusSlotOutOfRange, "the slot is not in the range 1 to 99")                             \
  ENTRY(kStatusInstanceNotANumber,                                                                 \
        "the instance is not a number (decimal, or 0x and hexadecimal)")                           \
  ENTRY(kStatusInstanceTooLarge, "the instance does not fit into 64 bits")                         \
  ENTRY(kStatusNoHardwareId, "a hardware id is missing")                                           \
  ENTRY(kStatusBlankInHardwareId, "a hardware id has a blank in it (ids are separated by commas)") \
  ENTRY(kStatusHardwareIdTooLong, "a hardware id is longer than 201 characters")                   \
  ENTRY(kStatusHardwareIdsTooLong, "the hardware ids together are longer than 1024 characters")    \
  ENTRY(kStatusNoDescription, "the description is missing")                                        \
  ENTRY(kStatusDescriptionTooLong, "the description is longer than 120 characters")                \
  ENTRY(kStatusSlotTaken, "the slot is taken by an earlier line")                                  \
  ENTRY(kStatusInstanceTaken, "the instance number is used by an earlier line")                    \
  ENTRY(kWarningEmptyRack, "the rack is empty")
