#pragma once
// What every molvera-cli command shares: the host, loading and saving, argument checks.

#include <atomic>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "base/status.h"
#include "model/records.h"
#include "session/sessionhost.h"

namespace molvera::cli {

/// A command line as the parser sorted it: the file arguments in order, and every value
/// given to each option, by its name without the dashes ("region", "o"); a flag holds a
/// value for each time it is given.
struct Args {
    std::vector<std::string> files;
    std::map<std::string, std::vector<std::string>> options;

    const std::vector<std::string>& Positional() const { return files; }
    bool Has(const std::string& name) const { return options.count(name) > 0; }
    /// The last value given.
    std::optional<std::string> Value(const std::string& name) const;
    /// Every value given for an option that may repeat.
    std::vector<std::string> Values(const std::string& name) const;
};

/// The host of a command: nothing to show; Ctrl-C asks a running fit to stop.
class CliHost : public SessionHost {
public:
    explicit CliHost(Project& project) : project_(project) {}
    void Beep() override { ++beeps; }
    void Yield() override;
    int beeps = 0;

private:
    Project& project_;
};

/// Set by the Ctrl-C handler while a command runs.
extern std::atomic<bool> gInterrupted;
/// Installs the Ctrl-C handler (a second Ctrl-C ends the program at once).
void InstallInterruptHandler();

/// A project with its host, prepared as the program prepares itself at start-up.
struct Session {
    Project project;
    CliHost host{project};
};

/// Reads --options FILE (default: FindDefaultOptions(), the working directory's
/// default.opa, the user's or the installed one; none gives no message) into the
/// session's fitting options.
Status LoadOptions(const Args& args, Session& s);

/// Loads a project file into the session.
Status LoadInput(Session& s, const std::string& path);

/// Prints "warning: text" to stderr.
void Warn(const std::string& text);

/// Writes the project to the path of -o, after the warnings of every region
/// ("warning: region 2: peak 3 at 512.0 eV lies outside the data (275.0 .. 292.0 eV)").
Status SaveOutput(Session& s, const Args& args);

/// The region of --region N (1..10) as a slot 0..9.
std::optional<int> RegionArg(const Args& args, const std::string& name = "region");

/// "position", "area", "fwhm" or "gl" as the parameter it names.
std::optional<PeakParameter> ParameterArg(const std::string& text);

/// A whole number option in [lo, hi].
std::optional<int> IntArg(const Args& args, const std::string& name, int lo, int hi);

/// The extension of a path's file name in lower case ("png"), or "" when it has none.
std::string LowerExtension(const std::string& path);

/// Prints "molvera-cli: text" to stderr and returns the exit code for a refusal.
int Fail(const std::string& text);

/// Prints a message to stderr as the program shows it: the fixed text, and the detail on
/// the next line when there is one.
void Print(const Status& status);
void Print(const std::string& text);

/// A refusal: printed, and the exit code for a refusal.
int Refused(const Status& status);

constexpr int kExitRefused = 1;
constexpr int kExitUsage = 2;

}  // namespace molvera::cli
