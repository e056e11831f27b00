// The families of the setup mapping, each carrying its part of a setup between the setup objects
// and a recording's setup section: the single sections, the channel lists, and the name and value
// lists (parameters and saved functions). Each returns 0 when an object it needs is missing.
#pragma once

#include "recording/TrcSetupSection.h"
#include "setup/Setup.h"

namespace nvdl::access {

int applySections(CSetup& from, trc::CTrcSetupSection& to);
int buildSections(trc::CTrcSetupSection& from, CSetup& to);

int applyChannels(CSetup& from, trc::CTrcSetupSection& to);
int buildChannels(trc::CTrcSetupSection& from, CSetup& to);

int applyLists(CSetup& from, trc::CTrcSetupSection& to);
int buildLists(trc::CTrcSetupSection& from, CSetup& to);

}  // namespace nvdl::access
