// The da signal kernel: plain functions on plain float vector records.
#pragma once

#include "nvdl/daTypes.h"
#include "nvdl/daArithmetic.h"
#include "nvdl/daSpectra.h"
#include "nvdl/daSignal.h"
