// Built-in values of the system's own keys; the settings file overrides each of them.
#pragma once

#include <span>

#include "platform/Registry.h"

namespace nvdl::registry {

struct RegistryDefault {
    Hive hive;
    const char* key;
    const char* valueName;
    const char* value;
};

std::span<const RegistryDefault> registryDefaults();

}  // namespace nvdl::registry
