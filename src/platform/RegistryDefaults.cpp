#include "platform/RegistryDefaults.h"

#include "project/units/ShippedUnitsFile.h"

namespace nvdl::registry {

namespace {

constexpr const char* kInternationalKey = "Control Panel\\International";

// One row per value; add rows here as the system reads more of its own keys.
constexpr RegistryDefault kDefaults[] = {
    {Hive::CurrentUser, kSettingsKey, "MaxBlockSize", "32768"},
    {Hive::CurrentUser, kSettingsKey, "LongFileFeature", "0"},
    {Hive::CurrentUser, kSettingsKey, "ComputationBlocksizeDivider", "1"},
    {Hive::CurrentUser, kSettingsKey, "UnitsFile", units::kShippedUnitsFile},
    // Regional date and time text of the user, for a machine whose settings file does not set it.
    {Hive::CurrentUser, kInternationalKey, "sShortDate", "M/d/yyyy"},
    {Hive::CurrentUser, kInternationalKey, "sDate", "/"},
    {Hive::CurrentUser, kInternationalKey, "sTimeFormat", "h:mm:ss tt"},
    {Hive::CurrentUser, kInternationalKey, "sTime", ":"},
    {Hive::CurrentUser, kInternationalKey, "s1159", "AM"},
    {Hive::CurrentUser, kInternationalKey, "s2359", "PM"},
};

}  // namespace

std::span<const RegistryDefault> registryDefaults() { return kDefaults; }

}  // namespace nvdl::registry
