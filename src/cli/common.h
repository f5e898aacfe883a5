#pragma once
// What every molvera-cli command shares: the host, loading and saving, argument checks.

#include <atomic>
#include <optional>
#include <set>
#include <string>

#include "base/status.h"
#include "cli/args.h"
#include "model/records.h"
#include "session/sessionhost.h"

namespace molvera::cli {

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

/// The refusal (printed, and its exit code) of an option that is given something other
/// than a number; nothing when it holds one or is not given. CheckArgs checks the options
/// that take numbers in every command.
std::optional<int> NotANumberOption(const Args& args, const std::string& name);

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

/// Checks the options given against the known ones and the positional count; prints
/// the problem and the usage and returns false when they do not fit.
bool CheckArgs(const Args& args, const std::set<std::string>& known, std::size_t positional,
               const char* usage);

constexpr int kExitRefused = 1;
constexpr int kExitUsage = 2;

}  // namespace molvera::cli
