#include "fileio/itemreader.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "fileio/numtext.h"
#include "model/messages.h"
#include "model/project.h"
#include "model/regionops.h"
#include "spectral/background.h"

namespace molvera {

bool ItemReader::AtEnd() const {
    for (std::size_t i = pos_; i < text_.size(); ++i) {
        const char c = text_[i];
        if (c != ' ' && c != '\t' && !IsLineEnd(c)) return false;
    }
    return true;
}

void ItemReader::SkipBlanks() {
    while (pos_ < text_.size() && IsBlank(text_[pos_])) ++pos_;
}

void ItemReader::ConsumeLineEnd() {
    if (pos_ < text_.size() && text_[pos_] == '\r') ++pos_;
    if (pos_ < text_.size() && text_[pos_] == '\n') ++pos_;
}

void ItemReader::FinishItem() {
    SkipBlanks();
    if (pos_ >= text_.size()) return;
    if (IsSeparator(text_[pos_]))
        ++pos_;
    else if (IsLineEnd(text_[pos_]))
        ConsumeLineEnd();
}

void ItemReader::SkipEmptyLines() {
    while (pos_ < text_.size() && (text_[pos_] == ' ' || text_[pos_] == '\t' || IsLineEnd(text_[pos_])))
        ++pos_;
}

std::string ItemReader::Quoted() {
    ++pos_;  // opening quote
    const std::size_t start = pos_;
    while (pos_ < text_.size() && text_[pos_] != '"' && !IsLineEnd(text_[pos_])) ++pos_;
    std::string item(text_.substr(start, pos_ - start));
    if (pos_ < text_.size() && text_[pos_] == '"') ++pos_;
    return item;
}

std::optional<std::string> ItemReader::Text() {
    SkipBlanks();
    if (pos_ >= text_.size()) return std::nullopt;
    std::string item;
    if (text_[pos_] == '"') {
        item = Quoted();
    } else {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && !IsSeparator(text_[pos_]) && !IsLineEnd(text_[pos_])) ++pos_;
        item = std::string(text_.substr(start, pos_ - start));
        while (!item.empty() && (item.back() == ' ' || item.back() == '\t')) item.pop_back();
    }
    FinishItem();
    return item;
}

std::optional<std::string> ItemReader::NumberItem() {
    SkipEmptyLines();
    if (pos_ >= text_.size()) return std::nullopt;
    std::string item;
    if (text_[pos_] == '"') {
        item = Quoted();
    } else {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && text_[pos_] != ' ' && text_[pos_] != '\t' &&
               !IsSeparator(text_[pos_]) && !IsLineEnd(text_[pos_]))
            ++pos_;
        item = std::string(text_.substr(start, pos_ - start));
    }
    FinishItem();
    return item;
}

std::optional<double> ItemReader::Number() {
    const std::optional<std::string> item = NumberItem();
    if (!item || LeadingNumberLength(*item) == 0) return std::nullopt;
    return LeadingNumber(*item);
}

std::optional<Int16> ValueAfterEquals(std::string_view text) {
    const std::size_t eq = text.find('=');
    if (eq != std::string_view::npos) text.remove_prefix(eq + 1);
    return ToInt16(LeadingNumber(text));
}

std::string TooManyPointsMessage() {
    return std::string(msg::kTooManyPointsPrefix) + std::to_string(kMaxPoints) +
           msg::kTooManyPointsSuffix;
}

void PrepareRegionForImport(Project& project, Host& host) {
    const Region& region = project.Current();
    if (IsSet(region.HasData))
        DeleteRegionData(project, host);
    else if (IsSet(region.HasBackground) || region.PeakCount != 0)
        ClearRegionParameters(project, host);
}

void StoreSpectrum(Project& project, const ImportedSpectrum& s, SortRule rule) {
    Region& region = project.Current();
    const int n = static_cast<int>(std::min<std::size_t>(s.energy.size(), kMaxPoints));
    ResizeRegionArrays(region, n);
    region.PointCount = static_cast<Int16>(n);
    bool reverse = false;
    if (n > 0) {
        const float first = s.energy[0];
        const float last = s.energy[static_cast<std::size_t>(n - 1)];
        reverse = rule == SortRule::ReverseUnlessFalling ? !(first > last) : first < last;
    }
    for (int i = 1; i <= n; ++i) {
        const std::size_t from = static_cast<std::size_t>(reverse ? n - i : i - 1);
        region.BindingEnergy[static_cast<std::size_t>(i)] = s.energy[from];
        region.RawIntensity[static_cast<std::size_t>(i)] = s.intensity[from];
    }
    region.Caption = Text20::From(s.caption);
    region.HasData = kTrue;
    region.HasBackground = kFalse;
    region.PeakCount = 0;
    UpdateDataExtents(region);
}

int StoreRegions(Project& project, Host& host, const std::vector<ImportedSpectrum>& spectra,
                 SortRule rule, bool checkAfterLast) {
    const Int16 start = project.CurrentRegion;
    int stored = 0;
    for (std::size_t k = 0; k < spectra.size(); ++k) {
        PrepareRegionForImport(project, host);
        if (spectra[k].overflow) host.Message(TooManyPointsMessage());
        StoreSpectrum(project, spectra[k], rule);
        ++stored;
        if (k + 1 == spectra.size() && !checkAfterLast) break;
        project.CurrentRegion = static_cast<Int16>((project.CurrentRegion + 1) % kRegionCount);
        if (project.CurrentRegion == start) {
            host.Message(msg::kTooManyRegions);
            break;
        }
    }
    project.CurrentRegion = start;
    return stored;
}

Status ImportFailure(Host& host, const char* message) {
    host.Message(message);
    return Status::Error(message);
}

}  // namespace molvera
