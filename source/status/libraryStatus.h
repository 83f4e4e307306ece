#pragma once

// How the library's own sources set a status: with the macros of its clients, under the component
// name "oxdiagk" and a source tag instead of a file name. A source begins with
//
//     #define OXDIAG_STATUS_FILE "source/status/tGUIDReportable"
//     #include "status/libraryStatus.h"

#ifndef OXDIAG_STATUS_FILE
#error "define OXDIAG_STATUS_FILE, the tag of the source, first"
#endif

#define OXDIAG_COMPONENT "oxdiagk"

#include "oxdiagk/statusMacros.h"
