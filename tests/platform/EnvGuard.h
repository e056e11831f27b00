// Sets or clears environment variables for one test and puts the old values back afterwards.
#pragma once

#include <cstdlib>
#include <optional>
#include <string>
#include <utility>
#include <vector>

class EnvGuard {
public:
    EnvGuard() = default;
    EnvGuard(const EnvGuard&) = delete;
    EnvGuard& operator=(const EnvGuard&) = delete;
    ~EnvGuard() { restore(); }

    // Sets `name` to `value`, or clears it when there is no value.
    void set(const std::string& name, std::optional<std::string> value) {
        const char* old = std::getenv(name.c_str());
        saved_.emplace_back(name, old ? std::optional<std::string>(old) : std::nullopt);
        apply(name, value);
    }

    // Puts back the values from before the first set.
    void restore() {
        for (auto it = saved_.rbegin(); it != saved_.rend(); ++it) apply(it->first, it->second);
        saved_.clear();
    }

private:
    static void apply(const std::string& name, const std::optional<std::string>& value) {
        value ? ::setenv(name.c_str(), value->c_str(), 1) : ::unsetenv(name.c_str());
    }

    std::vector<std::pair<std::string, std::optional<std::string>>> saved_;
};
