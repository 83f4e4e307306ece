#include "slotbus/component/reportNumbers.h"
#include "slotbus/component/statusCodes.h"
#include "slotbus/component/statusSentences.h"
#include "slotbus/words/words.h"

using nTRANSLATORS100::tEnumWord;
using nTRANSLATORS100::tVocabulary;
using nTRANSLATORS100::tWord;

namespace nSLOTBUS100 {
namespace {

#define SLOTBUS_WORD(code, text) {code, L"" text},

constexpr tWord kUsageTypes[] = {{kUsageLine, L"line"},
                                 {kUsageField, L"field"},
                                 {kUsageFound, L"found"},
                                 {kUsageAllowed, L"allowed"},
                                 {kUsageLength, L"allowed length"},
                                 {kUsageForms, L"forms"},
                                 {kUsageEarlierLine, L"earlier line"},
                                 {kUsageBus, L"bus"},
                                 {kUsageTime, L"time"},
                                 SLOTBUS_STATUS_SENTENCES(SLOTBUS_WORD)};

constexpr tWord kProperties[] = {
    {kPropertySlot, L"slot"},
    {kPropertyInstance, L"instance"},
    {kPropertyHardwareIds, L"hardware ids"},
    {kPropertyDescription, L"description"},
    {kPropertyNumberForm, L"form of a number"},
};

constexpr tEnumWord kEnumValues[] = {
    {kPropertyNumberForm, kNumberFormDecimal, L"decimal digits"},
    {kPropertyNumberForm, kNumberFormHexadecimal, L"0x and hexadecimal digits"},
};

}  // namespace

constinit tVocabulary const kEnglishWords(kUsageTypes, kProperties, kEnumValues);

}  // namespace nSLOTBUS100
