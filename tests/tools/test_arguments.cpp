#include <gtest/gtest.h>

#include "cli/Arguments.h"

namespace nvdl::tool {
namespace {

bool parse(std::vector<std::string> words, Arguments& args, std::string& error) {
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(w.data());
    return args.parse(static_cast<int>(argv.size()), argv.data(), {"block", "overlap"}, {"quiet"}, error);
}

TEST(Arguments, SeparatesPositionalWordsValuesAndFlags) {
    Arguments args;
    std::string error;
    ASSERT_TRUE(parse({"in.wkd", "--block", "4096", "--quiet", "--overlap=50", "out.csv"}, args, error)) << error;
    EXPECT_EQ(args.positional(), (std::vector<std::string>{"in.wkd", "out.csv"}));
    EXPECT_TRUE(args.has("quiet"));
    long block = 0;
    double overlap = 0;
    EXPECT_TRUE(args.integer("block", 1024, block, error));
    EXPECT_TRUE(args.number("overlap", 0, overlap, error));
    EXPECT_EQ(block, 4096);
    EXPECT_EQ(overlap, 50.0);
}

TEST(Arguments, RefusesWhatTheCommandDoesNotKnow) {
    std::string error;
    Arguments a, b, c;
    EXPECT_FALSE(parse({"--window", "hanning"}, a, error));
    EXPECT_EQ(error, "unknown option --window");
    EXPECT_FALSE(parse({"--block"}, b, error));
    EXPECT_EQ(error, "--block needs a value");
    EXPECT_FALSE(parse({"--quiet=yes"}, c, error));
    Arguments d;
    ASSERT_TRUE(parse({"--block", "4k"}, d, error));
    long block = 0;
    EXPECT_FALSE(d.integer("block", 0, block, error));
    EXPECT_EQ(error, "--block wants a whole number, not \"4k\"");
    EXPECT_TRUE(d.integer("overlap", 7, block, error));
    EXPECT_EQ(block, 7);
}

}  // namespace
}  // namespace nvdl::tool
