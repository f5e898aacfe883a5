#pragma once
// The host as the session layer sees it: the texts of the main window, kept from what the
// core reports, and what the session's own logic asks of the windows. The desktop
// program, the CLI and the tests derive from it.

#include <array>
#include <string>
#include <vector>

#include "base/limits.h"
#include "model/host.h"

namespace molvera {

/// Caption and state of a main-window peak button.
struct PeakButtonText {
    std::string caption;
    bool enabled = false;
    bool operator==(const PeakButtonText&) const = default;
};

/// The answer to "Save changes to c1s.xps?".
enum class SaveChangesAnswer { Save, Discard, Cancel };

/// The texts of the main window's table.
struct MainWindowTexts {
    /// Chi-square box of each region; empty until a chi-square is known.
    std::array<std::string, kRegionCount> chiSquare{};
    /// The total chi-square.
    std::string totalChiSquare = "0";
    /// Peak button 10 x region + k: the slot of the region's k-th peak.
    std::array<PeakButtonText, kPeakButtonCount> peakButtons{};
};

/// The status line of a command's warnings: "Warning: first; second", "" for none.
std::string WarningLine(const std::vector<std::string>& warnings);

class SessionHost : public Host {
public:
    void ChiSquareChanged(int region, float value) override;
    void TotalChiSquareChanged(float value) override;
    void PeakListChanged(int region, std::span<const std::int16_t> peaks, bool editable) override;
    void ProjectCleared() override;

    // What the session's logic asks of the windows.

    /// Busy state (the Tougaard B1 search): hourglass pointer, every window disabled.
    virtual void BeginBusy() {}
    /// Busy state over: arrow pointer, the windows enabled again.
    virtual void EndBusy() {}
    /// Hides the peak editor (a fit of whole regions starts).
    virtual void HidePeakEditor() {}
    /// Hides the peak editor, the background dialog and the constraint dialog (another
    /// region was chosen).
    virtual void HideRegionDialogs() {}
    /// A Save / Discard / Cancel question before unsaved changes would be dropped.
    virtual SaveChangesAnswer AskSaveChanges(const std::string& text) {
        (void)text;
        return SaveChangesAnswer::Cancel;
    }

    const MainWindowTexts& MainTexts() const { return texts_; }

protected:
    /// The chi-square box of `region` (kTotalBox: the total) has a new text.
    virtual void ChiSquareTextChanged(int region) { (void)region; }
    /// The peak buttons of `region` have new captions or states.
    virtual void PeakButtonsChanged(int region) { (void)region; }
    static constexpr int kTotalBox = -1;

private:
    MainWindowTexts texts_;
};

}  // namespace molvera
