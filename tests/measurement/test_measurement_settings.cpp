// A new measurement takes its block size and paging switch from the settings as they are when it is made.
#include <gtest/gtest.h>

#include "PagingFixture.h"

namespace nvdl::test {
namespace {

class MeasurementSettings : public PagingSettings {
protected:
    // Size of a new measurement, and whether its Optimize works as for long records (it fails on a
    // new measurement, which has no copies to build from) or does nothing.
    void expectNewMeasurement(LONG size, bool longFileFeature) {
        CMeasurement* m = CMeasurement::createMeasurement();
        LONG actualSize = -1, fileSamples = -1;
        m->get_Size(&actualSize);
        m->get_FileSamples(&fileSamples);
        EXPECT_EQ(actualSize, size);
        EXPECT_EQ(fileSamples, size);
        EXPECT_EQ(m->yReal().size(), static_cast<std::size_t>(size));
        EXPECT_EQ(m->Optimize() == S_OK, !longFileFeature);
        m->Release();
    }
};

TEST_F(MeasurementSettings, BlockSizeAndPagingComeFromTheSettings) {
    useSettings(1000, true);
    expectNewMeasurement(1000, true);
    useSettings(77, false);
    expectNewMeasurement(77, false);
}

TEST_F(MeasurementSettings, AnUnusableBlockSizeGivesTheDefault) {
    for (long setting : {0L, -5L, 99999999999L}) {
        SCOPED_TRACE(setting);
        useSettings(setting, false);
        expectNewMeasurement(32768, false);
    }
}

}  // namespace
}  // namespace nvdl::test
