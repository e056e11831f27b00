// Recordings loaded into a workspace through the loader registry: the stored measurements when all
// sections are imported, and files that cannot be loaded. (The channels' values, addresses and
// reduced pictures are checked from Python, in test_recording_access.py.)
#include <gtest/gtest.h>

#include "../frame/TestHelpers.h"
#include "../project/WorkspaceTestSupport.h"
#include "LoaderTest.h"
#include "RecordingBuilder.h"
#include "nvdl/SafeArray.h"

using namespace nvdl;
using namespace nvdl::testing;
using nvdl::test::collectionNamed;
using nvdl::test::countOf;

namespace {

class TrcWorkspaceLoad : public LoaderTest {};

// One input beside two stored measurements, the second complex with an X table.
RecordingPlan storedPlan() {
    RecordingPlan plan;
    plan.inputs = {{"Force"}};
    plan.stored = {{"Autopower Force", 20}, {"FRF Accel", 12, true, 1102}};
    return plan;
}

TEST_F(TrcWorkspaceLoad, ImportOfAllSectionsBringsStoredMeasurements) {
    settings({{"ImportAllTRCFlag", "1"}});
    ASSERT_TRUE(writeRecording(path("run.trc"), storedPlan()));
    ComPtr<IWorkspace> ws = nvdl::test::newWorkspace();
    Variant loader;
    ASSERT_EQ(ws->Load(Bstr(std::string_view{path("run.trc")}).get(), loader), S_OK);
    ComPtr<ICollection> ms = collectionNamed(ws.get(), u"Measurements");
    ASSERT_EQ(countOf(ms.get()), 3);
    ComPtr<IMeasurement> frf = ComPtr<IMeasurement>::query(nvdl::test::itemAt(ms.get(), 2).get());
    EXPECT_EQ(nvdl::test::getText(frf.get(), u"Name"), "FRF Accel");
    EXPECT_EQ(nvdl::test::getText(frf.get(), u"ChannelFileID"), "nv_bench.io_newtrc:Measurements:1");
    Variant re, im, x;
    ASSERT_TRUE(frf->get_YRealArray(&re) == S_OK && frf->get_YImagArray(&im) == S_OK && frf->get_XArray(&x) == S_OK);
    ASSERT_EQ(floatArrayData(re.parray).size(), 12u);
    for (long i = 0; i < 12; ++i) {
        const auto k = static_cast<std::size_t>(i);
        EXPECT_EQ(std::tuple(floatArrayData(re.parray)[k], floatArrayData(im.parray)[k], floatArrayData(x.parray)[k]),
                  std::tuple(storedValue(2, i), storedImag(2, i), storedX(2, i)))
            << i;
    }
}

TEST_F(TrcWorkspaceLoad, FilesThatCannotBeLoaded) {
    settings({});
    ASSERT_TRUE(writeRecording(path("run.trc"), storedPlan()));
    std::filesystem::resize_file(path("run.trc"), 200);  // the recorder's section is gone
    ComPtr<IWorkspace> ws = nvdl::test::newWorkspace();
    Variant loader = Variant::fromAnsi("nv_bench.io_newtrc");
    for (const std::string& file : {path("run.trc"), path("missing.trc")}) {
        const Bstr name(std::string_view{file});
        EXPECT_TRUE(FAILED(ws->Load(name.get(), loader))) << file;
        EXPECT_EQ(countOf(collectionNamed(ws.get(), u"Measurements").get()), 0);
    }
}

}  // namespace
