// nvdl import and nvdl export through the built program: a universal file into a new and into an
// existing workspace or project, out again as a universal file and as CSV, and damaged input or a
// wrong choice giving one line on standard error, a failure status and an untouched target.
#include <gtest/gtest.h>

#include <filesystem>

#include "../platform/RunTool.h"
#include "UffTestSupport.h"
#include "platform/TempDir.h"

namespace nvdl::test {
namespace {

struct ToolResult {
    int status;
    std::string out, err;
};

ToolResult nvdl(const std::string& arguments, const TempDir& dir) {
    ToolResult r;
    const auto err = dir.file("stderr.txt");
    r.out = runTool(arguments + " 2>" + err.string() + " #", r.status);
    r.err = readWhole(err);
    return r;
}

const char* const kSmallFile =
    "    -1\n    15\n         1         0         0         1  0.00000E+00  0.00000E+00  0.00000E+00\n"
    "         2         0         0         1  1.00000E+00  0.00000E+00  0.00000E+00\n    -1\n"
    "    -1\n    82\n         1         2         1\nNONE\n         1         2\n    -1\n"
    "    -1\n    55\nMode 1\nNONE\nNONE\nNONE\nNONE\n         1         2         2         8         2         3\n"
    "         2         4         1         1\n  2.00000E+01  0.00000E+00  1.00000E-02  0.00000E+00\n"
    "         2\n  0.00000E+00  0.00000E+00  1.00000E+00\n    -1\n"
    "    -1\n    58\nacc\nNONE\nNONE\nNONE\nNONE\n    1         1    1         0 ACC              2   3 NONE             0   0\n"
    "         2         3         1  0.00000E+00  5.00000E-01  0.00000E+00\n"
    "        17    0    0    0 Time                 s\n        12    1    0    0 Acceleration         m/s^2\n"
    "         0    0    0    0\n         0    0    0    0\n  1.00000E+00  2.00000E+00  3.00000E+00\n    -1\n";

TEST(UffCommands, ImportMakesOrExtendsTheTargetAndExportWritesItOut) {
    TempDir dir;
    const std::string uff = dir.file("small.uff").string(), wkd = dir.file("w.wkd").string(), vpj = dir.file("p.vpj").string();
    writeWhole(uff, kSmallFile);
    for (const std::string& target : {wkd, vpj}) {
        SCOPED_TRACE(target);
        ASSERT_EQ(nvdl("import " + uff + " " + target, dir).status, 0);
        ASSERT_EQ(nvdl("import " + uff + " " + target + " --workspace 0", dir).status, 0);
        const std::string listing = nvdl("ls " + target, dir).out;
        EXPECT_EQ(std::count(listing.begin(), listing.end(), '\n'), target == vpj ? 8 : 7) << listing;
        EXPECT_NE(listing.find("measurement\t1\tacc\tTime record\t3"), std::string::npos) << listing;
        EXPECT_NE(listing.find("geometry\t1\tsmall"), std::string::npos) << listing;
        EXPECT_NE(listing.find("mode\t1\tMode 1"), std::string::npos) << listing;

        const std::string unv = dir.file("out.unv").string(), csv = dir.file("out.csv").string();
        ASSERT_EQ(nvdl("export " + target + " " + unv + " --measurement 1 --nodes 15", dir).status, 0);
        const std::string written = readWhole(unv);
        EXPECT_EQ(written.substr(0, 18), "    -1\n   164\n    ");
        EXPECT_NE(written.find("    -1\n    15\n"), std::string::npos);
        EXPECT_EQ(std::count(written.begin(), written.end(), '\n') > 40, true);
        ASSERT_EQ(nvdl("export " + target + " " + csv + " --measurement=0,acc", dir).status, 0);
        EXPECT_EQ(readWhole(csv), "x [s],acc [m/s^2],acc [m/s^2]\n0,1,1\n0.5,2,2\n1,3,3\n");
    }
}

TEST(UffCommands, DamagedInputOrAWrongChoiceFailsWithOneLine) {
    TempDir dir;
    const std::string good = dir.file("good.uff").string(), bad = dir.file("bad.uff").string(), wkd = dir.file("w.wkd").string();
    writeWhole(good, kSmallFile);
    const std::string text = kSmallFile;
    writeWhole(bad, text.substr(0, text.size() - 20));
    ASSERT_EQ(nvdl("import " + good + " " + wkd, dir).status, 0);
    const std::string before = readWhole(wkd);
    const struct {
        std::string arguments, start;
    } cases[] = {
        {"import " + bad + " " + wkd, "nvdl import: " + bad + ": line 25: dataset 58 is not closed"},
        {"import " + dir.file("missing.uff").string() + " " + wkd, "nvdl import: " + dir.file("missing.uff").string() + ": "},
        {"export " + wkd + " " + dir.file("o.uff").string() + " --measurement 5", "nvdl export: " + wkd + ": no measurement \"5\""},
        {"export " + wkd + " " + dir.file("o.uff").string() + " --workspace 2", "nvdl export: " + wkd + ": no workspace \"2\""},
        {"export " + bad + " " + dir.file("o.csv").string(), "nvdl export: " + bad + ": "},
    };
    for (const auto& c : cases) {
        const ToolResult r = nvdl(c.arguments, dir);
        EXPECT_EQ(r.status >> 8, 1) << c.arguments;
        EXPECT_EQ(r.err.rfind(c.start, 0), 0u) << r.err;
        EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
    }
    EXPECT_EQ(readWhole(wkd), before);
    EXPECT_FALSE(std::filesystem::exists(dir.file("o.uff")));
    EXPECT_EQ(nvdl("export " + wkd + " out.txt", dir).status >> 8, 2);
}

}  // namespace
}  // namespace nvdl::test
