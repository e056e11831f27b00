#include "recording/TrcFixedSection.h"

#include <ctime>

#include "nvdl/Date.h"

namespace nvdl::trc {

double currentDate() {
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    if (!localtime_r(&now, &local)) return 0.0;
    return dateFromParts(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min,
                         local.tm_sec);
}

}  // namespace nvdl::trc
