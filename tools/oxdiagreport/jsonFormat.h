#pragma once

#include <string>
#include <vector>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/savedModules.h"
#include "oxdiagreport/tCallStackReader.h"
#include "oxdiagreport/tLanguage.h"

// One status as a JSON object. Numbers are numbers, and all of their digits are there; beside an
// address is its hexadecimal text.
//
//     code         the code
//     kind         "success", "warning" or "error", in any language
//     origin       null without detail; otherwise
//       component, file, line
//       stackTrace   array of hexadecimal texts, without the unused places at the end
//       frames       array, one for each of these: address, module (null when it is not known),
//                    offset from the module's base, places (array of function, file, line;
//                    innermost first) and problem (why there are no symbols, or null)
//       modules      array of those that were saved: name, base, size, identityKind ("none",
//                    "build id", "pdb") and identity (hexadecimal digits)
//     description  array of the items: usageType, class, text in the language, and values, an array
//                  as tRawValues says
std::string jsonOf(nOXDIAG100::tStatus2 const& status, tLanguage const& language,
                   std::vector<tFrame> const& frames, std::vector<tSavedModule> const& modules);
