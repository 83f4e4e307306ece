#pragma once

#include <string>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/tCallStackReader.h"
#include "oxdiagreport/tLanguage.h"

// One status as a paragraph for people; `number` counts the statuses of the file from 1.
//
//     Status 1: error -61007, slotbus, examples/slotbus/component/tRackLine.cpp:71
//       The slot is not a number
//       Line: 29
//       Call stack:
//         slotbus+0x59D3 tRackLine::readSlot(...) (tRackLine.cpp:71)
//
// A call stack is shown when there are frames. A line is one function; several lines with the same
// place are functions that the compiler put into one another, innermost first.
std::string textOf(nOXDIAG100::tStatus2 const& status, size_t number, tLanguage const& language,
                   std::vector<tFrame> const& frames);
