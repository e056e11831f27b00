// A new measurement takes its block size and paging switch from the settings as they are when it is made.
#include <gtest/gtest.h>

#include "PagingFixture.h"

namespace nvdl::test {
namespace {

class MeasurementSettings : public PagingSettings {};

TEST_F(MeasurementSettings, BlockSizeAndPagingComeFromTheSettingsAndAnUnusableSizeGivesTheDefault) {
    struct Row {
        long setting;
        bool longFileFeature;
        LONG size;
    };
    for (Row row : {Row{1000, true, 1000}, Row{77, false, 77}, Row{0, false, 32768}, Row{-5, false, 32768},
                    Row{99999999999L, true, 32768}}) {
        SCOPED_TRACE(row.setting);
        useSettings(row.setting, row.longFileFeature);
        CMeasurement* m = CMeasurement::createMeasurement();
        LONG size = -1, fileSamples = -1;
        m->get_Size(&size);
        m->get_FileSamples(&fileSamples);
        EXPECT_EQ(size, row.size);
        EXPECT_EQ(fileSamples, row.size);
        EXPECT_EQ(m->yReal().size(), static_cast<std::size_t>(row.size));
        // Optimize works as for long records (and fails on a new measurement, which has no copies to
        // build from) or does nothing.
        EXPECT_EQ(m->Optimize() == S_OK, !row.longFileFeature);
        m->Release();
    }
}

}  // namespace
}  // namespace nvdl::test
