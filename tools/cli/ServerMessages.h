// The messages that the server would show a user in a box while a command runs. A command has no
// window: while a ServerMessages lives, each message is kept (the last one is the reason a failed
// operation gives) and answered as a user who accepts would answer it (OK, or Yes).
#pragma once

#include <string>

namespace nvdl::tool {

class ServerMessages {
public:
    ServerMessages();
    ~ServerMessages();
    ServerMessages(const ServerMessages&) = delete;
    ServerMessages& operator=(const ServerMessages&) = delete;

    // The last message, in UTF-8; empty when there was none.
    const std::string& last() const { return last_; }

private:
    std::string last_;
};

}  // namespace nvdl::tool
