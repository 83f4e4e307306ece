#pragma once

#include "io/deviceSecurity.h"
#include "ntos/security.h"

namespace ntoshost {

// Reads the list of those who may from a self-relative descriptor that has one. Entries allow
// rights to identifiers; one of somebody who cannot be a caller here counts for nothing. False when
// an entry is of another kind, or does not lie within the list.
bool readAccessList(SECURITY_DESCRIPTOR_RELATIVE const& descriptor, DeviceSecurity& security);

}  // namespace ntoshost
