#pragma once

// What the component's numbers are called ("slotbus/component/reportNumbers.h"), for a translator.
// Not part of the driver: words are needed where reports are made.

#include "translators/common/tVocabulary.h"

namespace nSLOTBUS100 {

extern nTRANSLATORS100::tVocabulary const kEnglishWords;
extern nTRANSLATORS100::tVocabulary const kGermanWords;

}  // namespace nSLOTBUS100
