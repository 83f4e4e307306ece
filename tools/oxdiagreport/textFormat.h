#pragma once

#include <string>

#include "oxdiagk/tStatus2.h"
#include "oxdiagreport/tLanguage.h"

// One status as a paragraph for people; `number` counts the statuses of the file from 1.
//
//     Status 1: error -61007, slotbus, examples/slotbus/component/tRackLine.cpp:71
//       The slot is not a number
//       Line: 29
std::string textOf(nOXDIAG100::tStatus2 const& status, size_t number, tLanguage const& language);
