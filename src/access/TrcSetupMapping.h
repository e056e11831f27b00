// Carrying a setup between the setup objects and the setup section of a recording. Field by field,
// with enumeration codes unchanged: the file stores the setup objects' own codes.
#pragma once

#include "recording/TrcSetupSection.h"
#include "setup/Setup.h"

namespace nvdl::access {

// Fills the file's setup section from the setup: its own fields, the channel lists (each made
// afresh), the single sections, the saving section's two function lists and the parameters. The
// processing's average number fixes the room of the recording. The creator is left as it is: it is
// the recording's, set apart. Returns 0 at the first part that cannot be carried.
int applySetup(CSetup& from, trc::CTrcSetupSection& to);

// Fills the setup from the file's setup section, the mirror of applySetup; the setup's collections
// are emptied first. The creator of the recording is taken too.
int buildSetup(trc::CTrcSetupSection& from, CSetup& to);

}  // namespace nvdl::access
