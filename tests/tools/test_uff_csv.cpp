// The CSV writer: header with units, real and complex columns, values that read back exactly, and
// the rows of the first measurement's abscissa.
#include <cstdlib>

#include "UffTestSupport.h"
#include "exchange/Csv.h"
#include "platform/TempDir.h"

namespace nvdl::test {
namespace {

std::vector<std::string> lines(const std::string& text) {
    std::vector<std::string> out;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) out.push_back(line);
    return out;
}

TEST(UffCsv, WritesHeaderAndRowsThatReadBackExactly) {
    TempDir dir;
    const float awkward = 0.1f + 1e-8f;
    auto time = buildMeasurement({"Force", "Time record", "Time", "Force", 0.5f, 0.25f, {awkward, -2.0f, 3.5e-7f}});
    auto frf = buildMeasurement({"H1, \"acc\"", "FRF", "Frequency", "", 0.0f, 2.0f, {1.0f, 2.0f}, {-1.0f, 0.125f}});
    const auto path = dir.file("out.csv");
    std::string error;
    ASSERT_TRUE(exchange::writeMeasurementsCsv({static_cast<IMeasurement*>(time.get()),
                                                static_cast<IMeasurement*>(frf.get())},
                                               path.string(), error))
        << error;
    const auto rows = lines(readWhole(path));
    ASSERT_EQ(rows.size(), 4u);
    EXPECT_EQ(rows[0], "x [s],Force [N],\"H1, \"\"acc\"\" re\",\"H1, \"\"acc\"\" im\"");
    EXPECT_EQ(rows[1].substr(0, 4), "0.5,");
    // Nine digits give back the very float that was written.
    EXPECT_EQ(std::strtof(rows[1].substr(4).c_str(), nullptr), awkward);
    EXPECT_EQ(rows[1].substr(rows[1].find(",1,")), ",1,-1");
    EXPECT_EQ(rows[2], "0.75,-2,2,0.125");
    // The second measurement is shorter than the first: its cells stay empty.
    EXPECT_EQ(rows[3], "1,3.49999993e-07,,");
}

TEST(UffCsv, RefusesWhatCannotBeWrittenAndLeavesNoFile) {
    TempDir dir;
    auto empty = buildMeasurement({"Empty", "Time record", "Time", "Force", 0.0f, 1.0f, {}});
    auto good = buildMeasurement({"Good", "Time record", "Time", "Force", 0.0f, 1.0f, {1.0f}});
    std::string error;
    EXPECT_FALSE(exchange::writeMeasurementsCsv({static_cast<IMeasurement*>(empty.get())}, dir.file("a.csv").string(), error));
    EXPECT_NE(error.find("no values"), std::string::npos) << error;
    EXPECT_FALSE(exchange::writeMeasurementsCsv({}, dir.file("b.csv").string(), error));
    EXPECT_FALSE(exchange::writeMeasurementsCsv({static_cast<IMeasurement*>(good.get())},
                                                (dir.path() / "missing" / "c.csv").string(), error));
    EXPECT_TRUE(std::filesystem::is_empty(dir.path()));
}

}  // namespace
}  // namespace nvdl::test
