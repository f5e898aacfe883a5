#include "cli/args.h"

namespace molvera::cli {

Args::Args(int argc, char** argv, int first, const std::set<std::string>& flags) {
    for (int i = first; i < argc; ++i) {
        std::string a = argv[i];
        if (a.size() > 2 && a.rfind("--", 0) == 0) {
            std::string name = a.substr(2);
            auto eq = name.find('=');
            if (eq != std::string::npos) {
                options_.emplace(name.substr(0, eq), name.substr(eq + 1));
            } else if (flags.count(name)) {
                options_.emplace(name, "");
            } else if (i + 1 < argc) {
                options_.emplace(name, argv[++i]);
            } else {
                missingValue_ = name;
            }
        } else if (a == "-o") {
            if (i + 1 < argc) {
                options_.emplace("o", argv[++i]);
            } else {
                missingValue_ = "o";
            }
        } else {
            positional_.push_back(a);
        }
    }
}

bool Args::Has(const std::string& name) const { return options_.count(name) > 0; }

std::optional<std::string> Args::Value(const std::string& name) const {
    auto range = options_.equal_range(name);
    if (range.first == range.second) return std::nullopt;
    auto last = range.second;
    --last;
    return last->second;
}

std::vector<std::string> Args::Values(const std::string& name) const {
    std::vector<std::string> out;
    auto range = options_.equal_range(name);
    for (auto it = range.first; it != range.second; ++it) out.push_back(it->second);
    return out;
}

std::vector<std::string> Args::Unknown(const std::set<std::string>& known) const {
    std::vector<std::string> out;
    for (const auto& [name, value] : options_)
        if (!known.count(name)) {
            std::string shown = name == "o" ? "-" : "--";
            shown += name;
            out.push_back(shown);
        }
    return out;
}

}  // namespace molvera::cli
