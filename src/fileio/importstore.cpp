#include "fileio/importstore.h"

#include <algorithm>
#include <string>

#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/kratos.h"
#include "model/project.h"
#include "spectral/background.h"
#include "spectral/regionedit.h"

namespace molvera {

namespace {

// "Too many points.  Only 5000 points have been read." for the spectrum stored in `region`.
Status TooManyPoints(int region, const std::string& caption) {
    return Status::Error(std::string(msg::kTooManyPointsPrefix) + std::to_string(kMaxPoints) +
                             msg::kTooManyPointsSuffix,
                         "region " + std::to_string(region + 1) + " (\"" + caption +
                             "\"): the points after the first 5000 are left out");
}

// Spectra into consecutive slots from CurrentRegion, wrapping from 9 to 0, with their
// notices; CurrentRegion is restored.
void StoreRegions(Project& project, Host& host, const std::vector<ImportedSpectrum>& spectra,
                  const StorePolicy& policy, std::vector<Status>& notices) {
    const Int16 start = project.CurrentRegion;
    for (std::size_t k = 0; k < spectra.size(); ++k) {
        PrepareRegionForImport(project, host);
        if (spectra[k].overflow)
            notices.push_back(TooManyPoints(project.CurrentRegion, spectra[k].caption));
        StoreSpectrum(project, spectra[k], policy.sort);
        if (k + 1 == spectra.size() && !policy.checkAfterLast) break;
        project.CurrentRegion = static_cast<Int16>((project.CurrentRegion + 1) % kRegionCount);
        if (project.CurrentRegion == start) {
            notices.push_back(
                Status::Error(msg::kTooManyRegions,
                              "every region from region " + std::to_string(start + 1) +
                                  " on has been filled; the spectra after that are left out"));
            break;
        }
    }
    project.CurrentRegion = start;
}

void SetDescription(Project& project, Host& host, const std::string& description) {
    project.Description = description;
    host.DescriptionChanged(project.Description);
}

}  // namespace

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

namespace {

ImportResult StoreData(Project& project, Host& host, const ImportedData& data,
                       const StorePolicy& policy) {
    ImportResult result;
    // A file that could not be read to its end stores nothing: the open project stays as
    // it was. Every later refusal is decided before the project is touched.
    if (!data.status) {
        result.status = data.status;
        return result;
    }
    if (policy.store == StoreRule::FittedRegion) return StoreKratos(project, host, data);
    if (data.spectra.empty()) {
        result.status = Status::Error(msg::kErrorReadingFileImport);
        return result;
    }

    if (policy.store == StoreRule::CurrentRegion) {
        PrepareRegionForImport(project, host);
        if (data.spectra.front().overflow)
            result.notices.push_back(
                Status::Error(msg::kOnly5000Points, "the pairs after the 5000th are left out"));
        StoreSpectrum(project, data.spectra.front(), policy.sort);
        host.RegionInView();
        host.RegionListChanged();
    } else {
        // The file's description fills an empty description box; one already there stays.
        if (data.description && project.Description.empty())
            SetDescription(project, host, *data.description);
        StoreRegions(project, host, data.spectra, policy, result.notices);
        host.RegionInView();
        RefreshMainWindow(project, host);
    }
    result.status = data.status;
    return result;
}

}  // namespace

std::vector<std::string> ImportWarnings(const ImportedData& data) {
    std::vector<std::string> found;
    // A few points below 0 eV are a valence band crossing the Fermi level; mostly negative
    // energies are kinetic energies (an Auger spectrum) read as binding energies.
    for (std::size_t k = 0; k < data.spectra.size(); ++k) {
        const std::vector<float>& e = data.spectra[k].energy;
        const auto negative = std::count_if(e.begin(), e.end(), [](float v) { return v < 0; });
        if (2 * static_cast<std::size_t>(negative) <= e.size()) continue;
        const std::string which =
            data.spectra.size() > 1 ? "spectrum " + std::to_string(k + 1) : "the spectrum";
        found.push_back(which + ": " + std::to_string(negative) + " of " +
                        std::to_string(e.size()) + " energies are negative, down to " +
                        FormatFixed(*std::min_element(e.begin(), e.end()), 1) +
                        " eV (kinetic energies read as binding energies?)");
    }
    if (data.skippedLines > 0)
        found.push_back(std::to_string(data.skippedLines) +
                        (data.skippedLines == 1 ? " line" : " lines") +
                        " without a pair of numbers left out, the first is line " +
                        std::to_string(data.firstSkippedLine));
    if (!data.otherTechniques.empty()) {
        std::string names;
        for (const std::string& t : data.otherTechniques)
            if (names.find("'" + t + "'") == std::string::npos)
                names += (names.empty() ? "'" : ", '") + t + "'";
        const std::size_t n = data.otherTechniques.size();
        found.push_back(std::to_string(n) + (n == 1 ? " block" : " blocks") +
                        " not read: technique " + names + ", not XPS");
    }
    return found;
}

ImportResult StoreImport(Project& project, Host& host, const ImportedData& data,
                         const StorePolicy& policy) {
    ImportResult result = StoreData(project, host, data, policy);
    if (result.status) result.warnings = ImportWarnings(data);
    return result;
}

}  // namespace molvera
