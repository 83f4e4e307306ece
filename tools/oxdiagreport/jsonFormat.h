#pragma once

#include <string>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/tLanguage.h"

// One status as a JSON object:
//
//     code         number
//     kind         "success", "warning" or "error", in any language
//     origin       null without detail; otherwise component, file, line, and stackTrace, an array
//     of
//                  hexadecimal texts without the unused places at the end
//     description  array of the items: usageType, class, and text in the language
std::string jsonOf(nOXDIAG100::tStatus2 const& status, tLanguage const& language);
