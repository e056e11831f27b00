// Placeholder until the channel measurements land on this branch: none is made.
#include "access/TrcLoader.h"

namespace nvdl::access {

IMeasurement* CTrcLoader::ReadChannelMeasurement(IMeasurement*, long) { return nullptr; }

}  // namespace nvdl::access
