#pragma once
// Command-line arguments: positional words and --name [value] options, in any order.

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace molvera::cli {

class Args {
public:
    /// Parses argv[first..]; `flags` are the options that take no value.
    Args(int argc, char** argv, int first, const std::set<std::string>& flags);

    const std::vector<std::string>& Positional() const { return positional_; }
    bool Has(const std::string& name) const;
    std::optional<std::string> Value(const std::string& name) const;
    /// Every value given for an option that may repeat.
    std::vector<std::string> Values(const std::string& name) const;
    /// Options that were given but are not in `known` (for error messages).
    std::vector<std::string> Unknown(const std::set<std::string>& known) const;
    /// An option that needs a value but had none, or "".
    const std::string& MissingValue() const { return missingValue_; }

private:
    std::vector<std::string> positional_;
    std::multimap<std::string, std::string> options_;
    std::string missingValue_;
};

}  // namespace molvera::cli
