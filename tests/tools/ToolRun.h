// Runs the built command-line tool (beside the test program) with the given arguments and gives back
// what it wrote on standard output and standard error, separately, and its exit status. The
// arguments go to the program as they are (no shell between), so paths with spaces need no quoting.
// Standard input is empty and the outputs are files, so the tool never sees a terminal.
#pragma once

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

extern char** environ;

namespace nvdl::test {

struct ToolResult {
    int status = -1;      // the exit status; -1 when the tool could not be started or did not exit
    std::string out;      // standard output
    std::string err;      // standard error

    // Standard output or error split at its line ends (the last line without its newline too).
    std::vector<std::string> outLines() const { return linesOf(out); }
    std::vector<std::string> errLines() const { return linesOf(err); }

    static std::vector<std::string> linesOf(const std::string& text) {
        std::vector<std::string> lines;
        std::istringstream in(text);
        for (std::string line; std::getline(in, line);) lines.push_back(line);
        return lines;
    }
};

inline std::filesystem::path toolPath() {
    return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "nvdl";
}

inline ToolResult runToolCapture(const std::vector<std::string>& arguments) {
    ToolResult result;
    const std::filesystem::path dir = std::filesystem::temp_directory_path();
    std::string outName = (dir / "nvdl-tool-out-XXXXXX").string();
    std::string errName = (dir / "nvdl-tool-err-XXXXXX").string();
    const int outFd = ::mkstemp(outName.data());
    const int errFd = ::mkstemp(errName.data());

    const std::string program = toolPath().string();
    std::vector<std::string> words{program};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (std::string& w : words) argv.push_back(w.data());
    argv.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    ::posix_spawn_file_actions_adddup2(&actions, outFd, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, errFd, STDERR_FILENO);
    pid_t pid = 0;
    if (outFd >= 0 && errFd >= 0 &&
        ::posix_spawn(&pid, program.c_str(), &actions, nullptr, argv.data(), environ) == 0) {
        int wstatus = 0;
        if (::waitpid(pid, &wstatus, 0) == pid && WIFEXITED(wstatus)) result.status = WEXITSTATUS(wstatus);
    }
    ::posix_spawn_file_actions_destroy(&actions);

    auto slurp = [](const std::string& name) {
        std::ifstream in(name, std::ios::binary);
        std::ostringstream text;
        text << in.rdbuf();
        return text.str();
    };
    result.out = slurp(outName);
    result.err = slurp(errName);
    if (outFd >= 0) ::close(outFd);
    if (errFd >= 0) ::close(errFd);
    std::remove(outName.c_str());
    std::remove(errName.c_str());
    return result;
}

}  // namespace nvdl::test
