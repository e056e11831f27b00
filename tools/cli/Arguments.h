// The arguments of one command: positional words, options that take a value ("--block 4096" or
// "--block=4096") and flags ("--quiet"). Each command names the options it knows; anything else
// starting with "--" is an error that the command reports as its usage line.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nvdl::tool {

class Arguments {
public:
    // False with `error` set for an unknown option, a value option without its value, or a flag
    // given a value.
    bool parse(int argc, char** argv, const std::set<std::string>& valueOptions,
               const std::set<std::string>& flags, std::string& error);

    const std::vector<std::string>& positional() const { return positional_; }
    bool has(const std::string& flag) const { return flags_.count(flag) != 0; }
    std::optional<std::string> value(const std::string& option) const;
    // Every value of an option that may be given more than once, in the order given.
    std::vector<std::string> values(const std::string& option) const;
    // The option's value read as a number; `fallback` when the option is absent. False with
    // `error` set when the value is not a number.
    bool number(const std::string& option, double fallback, double& out, std::string& error) const;
    bool integer(const std::string& option, long fallback, long& out, std::string& error) const;

private:
    std::vector<std::string> positional_;
    std::map<std::string, std::string> values_;
    std::map<std::string, std::vector<std::string>> repeated_;
    std::set<std::string> flags_;
};

}  // namespace nvdl::tool
