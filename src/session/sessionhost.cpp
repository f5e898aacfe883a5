#include "session/sessionhost.h"

#include "base/numtext.h"

namespace molvera {

std::string WarningLine(const std::vector<std::string>& warnings) {
    std::string line;
    for (const std::string& w : warnings) line += (line.empty() ? "Warning: " : "; ") + w;
    return line;
}

void SessionHost::ChiSquareChanged(int region, float value) {
    if (region < 0 || region >= kRegionCount) return;
    texts_.chiSquare[region] = FormatGeneral(value);
    ChiSquareTextChanged(region);
}

void SessionHost::TotalChiSquareChanged(float value) {
    texts_.totalChiSquare = FormatGeneral(value);
    ChiSquareTextChanged(kTotalBox);
}

void SessionHost::PeakListChanged(int region, std::span<const std::int16_t> peaks, bool editable) {
    if (region < 0 || region >= kRegionCount) return;
    for (int k = 0; k < kMaxPeaksPerRegion; ++k) {
        PeakButtonText& button = texts_.peakButtons[kMaxPeaksPerRegion * region + k];
        const bool listed = static_cast<std::size_t>(k) < peaks.size();
        button.caption = listed ? std::to_string(peaks[k]) : "";
        button.enabled = listed && editable;
    }
    PeakButtonsChanged(region);
}

void SessionHost::ProjectCleared() {
    for (int r = 0; r < kRegionCount; ++r) {
        texts_.chiSquare[r].clear();
        ChiSquareTextChanged(r);
        PeakListChanged(r, {}, false);
    }
}

}  // namespace molvera
