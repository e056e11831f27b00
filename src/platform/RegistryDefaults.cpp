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
    // What a zip bundle may unpack to: mebibytes of all entries together, and entries.
    {Hive::CurrentUser, kSettingsKey, "ZipExtractLimitMB", "4096"},
    {Hive::CurrentUser, kSettingsKey, "ZipMaxEntries", "10000"},
    // Regional date and time text of the user, for a machine whose settings file does not set it.
    {Hive::CurrentUser, kInternationalKey, "sShortDate", "M/d/yyyy"},
    {Hive::CurrentUser, kInternationalKey, "sDate", "/"},
    {Hive::CurrentUser, kInternationalKey, "sTimeFormat", "h:mm:ss tt"},
    {Hive::CurrentUser, kInternationalKey, "sTime", ":"},
    {Hive::CurrentUser, kInternationalKey, "s1159", "AM"},
    {Hive::CurrentUser, kInternationalKey, "s2359", "PM"},
    // The two loaders of the module: a workspace file (".wkd", class of nv_bench.workspace) is read
    // by nv_bench.io_wkd, a recording (".trc") by nv_bench.io_newtrc, whose class is also the class
    // of its files.
    {Hive::ClassesRoot, ".wkd", "", "nv_bench.workspace"},
    {Hive::ClassesRoot, "nv_bench.workspace\\CLSID", "", "{5B44CB71-F17B-4140-9D50-EC6F33B896B8}"},
    {Hive::ClassesRoot, "CLSID\\{5B44CB71-F17B-4140-9D50-EC6F33B896B8}\\CLSIDLoader", "", "{3AC06104-CC45-43EA-8D48-E08EE4C57CA5}"},
    {Hive::ClassesRoot, "nv_bench.io_wkd\\CLSID", "", "{3AC06104-CC45-43EA-8D48-E08EE4C57CA5}"},
    {Hive::ClassesRoot, ".trc", "", "nv_bench.io_newtrc"},
    {Hive::ClassesRoot, "nv_bench.io_newtrc\\CLSID", "", "{CEB4D23E-E3F8-42EC-A1C6-06271CEB78CE}"},
    {Hive::ClassesRoot, "CLSID\\{CEB4D23E-E3F8-42EC-A1C6-06271CEB78CE}\\CLSIDLoader", "", "{CEB4D23E-E3F8-42EC-A1C6-06271CEB78CE}"},
};

}  // namespace

std::span<const RegistryDefault> registryDefaults() { return kDefaults; }

}  // namespace nvdl::registry
