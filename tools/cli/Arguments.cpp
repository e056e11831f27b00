#include "cli/Arguments.h"

#include <cerrno>
#include <cstdlib>

namespace nvdl::tool {

bool Arguments::parse(int argc, char** argv, const std::set<std::string>& valueOptions,
                      const std::set<std::string>& flags, std::string& error) {
    for (int i = 0; i < argc; ++i) {
        const std::string word = argv[i];
        if (word.size() < 3 || word.compare(0, 2, "--") != 0) {
            positional_.push_back(word);
            continue;
        }
        const std::size_t equals = word.find('=');
        const std::string name = word.substr(2, equals == std::string::npos ? std::string::npos : equals - 2);
        if (flags.count(name)) {
            if (equals != std::string::npos) {
                error = "--" + name + " takes no value";
                return false;
            }
            flags_.insert(name);
        } else if (valueOptions.count(name)) {
            if (equals != std::string::npos) {
                values_[name] = word.substr(equals + 1);
            } else if (i + 1 < argc) {
                values_[name] = argv[++i];
            } else {
                error = "--" + name + " needs a value";
                return false;
            }
            repeated_[name].push_back(values_[name]);
        } else {
            error = "unknown option --" + name;
            return false;
        }
    }
    return true;
}

std::optional<std::string> Arguments::value(const std::string& option) const {
    auto it = values_.find(option);
    if (it == values_.end()) return std::nullopt;
    return it->second;
}

std::vector<std::string> Arguments::values(const std::string& option) const {
    auto it = repeated_.find(option);
    return it == repeated_.end() ? std::vector<std::string>{} : it->second;
}

namespace {

// Reads the whole text with `convert` (strtod or strtol); false when text is left over or the
// value is out of range.
template <typename T, typename Convert>
bool readWhole(const std::string& text, Convert convert, T& out) {
    char* end = nullptr;
    errno = 0;
    out = convert(text.c_str(), &end);
    return !text.empty() && *end == '\0' && errno != ERANGE;
}

}  // namespace

bool Arguments::number(const std::string& option, double fallback, double& out, std::string& error) const {
    auto text = value(option);
    out = fallback;
    if (!text || readWhole(*text, [](const char* s, char** e) { return std::strtod(s, e); }, out)) return true;
    error = "--" + option + " wants a number, not \"" + *text + "\"";
    return false;
}

bool Arguments::integer(const std::string& option, long fallback, long& out, std::string& error) const {
    auto text = value(option);
    out = fallback;
    if (!text || readWhole(*text, [](const char* s, char** e) { return std::strtol(s, e, 10); }, out)) return true;
    error = "--" + option + " wants a whole number, not \"" + *text + "\"";
    return false;
}

}  // namespace nvdl::tool
