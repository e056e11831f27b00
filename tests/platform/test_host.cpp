// Host callbacks: defaults that never wait, and handlers that take over until cleared.
#include <gtest/gtest.h>

#include "platform/Host.h"

namespace nvdl::host {
namespace {

TEST(Host, HandlersTakeOverAndDefaultsAnswerTheFirstButtonAndGoOn) {
    std::string seen;
    setMessageBoxHandler([&](const std::string& text, const std::string&, unsigned) {
        seen = text;
        return IDNO;
    });
    int pumped = 0;
    setDoEventsHandler([&] { ++pumped; });
    setProgressHandler([](int percent, const std::string&) { return percent < 100; });
    EXPECT_EQ(messageBox("Save?", "Save", MB_YESNO), IDNO);
    EXPECT_EQ(seen, "Save?");
    DoEvents();
    EXPECT_EQ(pumped, 1);
    EXPECT_FALSE(reportProgress(100, "end"));
    setMessageBoxHandler({});
    setDoEventsHandler({});
    setProgressHandler({});
    EXPECT_EQ(messageBox("Overwrite?", "Save", MB_YESNO | MB_ICONQUESTION), IDYES);
    EXPECT_EQ(messageBox("Done", "Info", MB_OK), IDOK);
    EXPECT_TRUE(reportProgress(100, "end"));
    DoEvents();
    EXPECT_EQ(pumped, 1);
}

}  // namespace
}  // namespace nvdl::host
