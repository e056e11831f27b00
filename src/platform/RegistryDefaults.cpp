#include "platform/RegistryDefaults.h"

#include "project/units/ShippedUnitsFile.h"

namespace nvdl::registry {

namespace {

// One row per value; add rows here as the system reads more of its own keys.
constexpr RegistryDefault kDefaults[] = {
    {Hive::CurrentUser, kSettingsKey, "MaxBlockSize", "32768"},
    {Hive::CurrentUser, kSettingsKey, "LongFileFeature", "0"},
    {Hive::CurrentUser, kSettingsKey, "ComputationBlocksizeDivider", "1"},
    {Hive::CurrentUser, kSettingsKey, "UnitsFile", units::kShippedUnitsFile},
};

}  // namespace

std::span<const RegistryDefault> registryDefaults() { return kDefaults; }

}  // namespace nvdl::registry
