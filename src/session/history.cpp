#include "session/history.h"

#include <functional>
#include <sstream>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "fileio/projectfile.h"
#include "fileio/records_io.h"
#include "model/project.h"
#include "spectral/regionedit.h"

namespace molvera {
namespace {

std::uint64_t Hash(const std::string& bytes) { return std::hash<std::string_view>{}(bytes); }

template <typename Record>
std::uint64_t KeyOf(const Record& record, void (*write)(BinaryWriter&, const Record&)) {
    std::ostringstream out;
    BinaryWriter writer(out);
    write(writer, record);
    return Hash(out.str());
}

std::size_t ArrayBytes(const SingleArray& a) { return a.capacity() * sizeof(float); }

std::size_t MemoryOf(const Region& r) {
    std::size_t bytes = sizeof(Region);
    for (const SingleArray* a :
         {&r.BindingEnergy, &r.RawIntensity, &r.RangeBE, &r.RangeIntensity, &r.BackgroundWork,
          &r.BackgroundCurve, &r.PeakSumCurve, &r.Residual})
        bytes += ArrayBytes(*a);
    return bytes;
}

std::size_t MemoryOf(const Peak& p) { return sizeof(Peak) + ArrayBytes(p.Curve); }

std::size_t MemoryOf(const Project& p) { return sizeof(Project) + p.Description.capacity(); }

// The regions and peak slots of a project, moved out while its rest is hashed or copied.
struct Parts {
    std::array<Region, kRegionCount> regions;
    std::array<Peak, kPeakSlots> peaks, saved;
    Peak edit;
    std::string description;
    Int16 region = 0, peak = 0;

    explicit Parts(Project& p)
        : regions(std::exchange(p.Regions, {})),
          peaks(std::exchange(p.Peaks, {})),
          saved(std::exchange(p.SavedPeaks, {})),
          edit(std::exchange(p.EditPeak, {})),
          description(std::exchange(p.Description, {})),
          region(std::exchange(p.CurrentRegion, Int16{0})),
          peak(std::exchange(p.CurrentPeak, Int16{0})) {}
    void PutBack(Project& p) {
        p.Regions = std::move(regions);
        p.Peaks = std::move(peaks);
        p.SavedPeaks = std::move(saved);
        p.EditPeak = std::move(edit);
        p.Description = std::move(description);
        p.CurrentRegion = region;
        p.CurrentPeak = peak;
    }
};

// The part of `last` when its key is `key`, else a copy of `now`.
template <typename Record>
std::shared_ptr<const Record> Share(const std::shared_ptr<const Record>* last,
                                    std::uint64_t lastKey, std::uint64_t key, const Record& now) {
    if (last && *last && lastKey == key) return *last;
    return std::make_shared<const Record>(now);
}

}  // namespace

UndoHistory::UndoHistory(std::size_t maxSteps, std::size_t maxBytes)
    : maxSteps_(maxSteps), maxBytes_(maxBytes) {}

UndoHistory::State UndoHistory::Snapshot(Project& project, const State* last) const {
    State s;
    for (int r = 0; r < kRegionCount; ++r)
        s.regionKeys[r] = KeyOf<Region>(project.Regions[r], WriteRegion);
    for (int q = 0; q < kPeakSlots; ++q) {
        s.peakKeys[q] = KeyOf<Peak>(project.Peaks[q], WritePeak);
        s.savedKeys[q] = KeyOf<Peak>(project.SavedPeaks[q], WritePeak);
    }
    Parts parts(project);
    // The file skips the constraints of empty slots: they are added to the rest's bytes.
    std::ostringstream constraints;
    BinaryWriter writer(constraints);
    for (const PeakConstraint& c : project.Constraints) WritePeakConstraint(writer, c);
    s.restKey = Hash(ProjectFileBytes(project) + constraints.str());
    if (!last || s.restKey != last->restKey) {
        s.rest = std::make_shared<const Project>(project);
    } else {
        s.rest = last->rest;
    }
    parts.PutBack(project);
    for (int r = 0; r < kRegionCount; ++r)
        s.regions[r] = Share(last ? &last->regions[r] : nullptr, last ? last->regionKeys[r] : 0,
                             s.regionKeys[r], project.Regions[r]);
    for (int q = 0; q < kPeakSlots; ++q) {
        s.peaks[q] = Share(last ? &last->peaks[q] : nullptr, last ? last->peakKeys[q] : 0,
                           s.peakKeys[q], project.Peaks[q]);
        s.savedPeaks[q] =
            Share(last ? &last->savedPeaks[q] : nullptr, last ? last->savedKeys[q] : 0,
                  s.savedKeys[q], project.SavedPeaks[q]);
    }
    s.description = project.Description;
    s.currentRegion = project.CurrentRegion;
    s.currentPeak = project.CurrentPeak;
    s.editPeak = project.EditPeak;
    return s;
}

void UndoHistory::Reset(Project& project) {
    states_.clear();
    states_.push_back(Snapshot(project, nullptr));
    current_ = 0;
    lastWasRecord_ = false;
}

bool UndoHistory::Record(Project& project) {
    if (states_.empty()) {
        Reset(project);
        return false;
    }
    State& last = states_[current_];
    State now = Snapshot(project, &last);
    const bool sameWork = now.rest == last.rest && now.regions == last.regions &&
                          now.peaks == last.peaks && now.savedPeaks == last.savedPeaks;
    if (sameWork && now.description == last.description) {
        // Only the view moved: undoing to this state shows what the user saw last.
        now.typing = last.typing;
        last = std::move(now);
        return false;
    }
    states_.resize(current_ + 1);  // what could have been redone goes
    now.typing = sameWork;
    if (now.typing && last.typing && lastWasRecord_) {
        last = std::move(now);
        return false;
    }
    states_.push_back(std::move(now));
    current_ = states_.size() - 1;
    lastWasRecord_ = true;
    Trim();
    return true;
}

std::size_t UndoHistory::Bytes() const {
    std::unordered_set<const void*> seen;
    std::size_t bytes = 0;
    const auto count = [&](const auto& part) {
        if (part && seen.insert(part.get()).second) bytes += MemoryOf(*part);
    };
    for (const State& s : states_) {
        count(s.rest);
        for (const auto& r : s.regions) count(r);
        for (const auto& p : s.peaks) count(p);
        for (const auto& p : s.savedPeaks) count(p);
        bytes += sizeof(State) + ArrayBytes(s.editPeak.Curve) + s.description.capacity();
    }
    return bytes;
}

void UndoHistory::Trim() {
    while (states_.size() > 2 && (states_.size() - 1 > maxSteps_ || Bytes() > maxBytes_)) {
        states_.pop_front();
        --current_;
    }
}

void UndoHistory::Restore(const State& state, Project& project, SessionHost& host) const {
    host.HidePeakEditor();
    host.HideRegionDialogs();
    // Options and the file name belong to the session, not to a step of the work.
    const FitOptions options = project.Options;
    std::string fileName = project.FileName;
    const Flag idle = project.Idle;
    ClearProject(project, host);
    project = *state.rest;
    for (int r = 0; r < kRegionCount; ++r) project.Regions[r] = *state.regions[r];
    for (int q = 0; q < kPeakSlots; ++q) {
        project.Peaks[q] = *state.peaks[q];
        project.SavedPeaks[q] = *state.savedPeaks[q];
    }
    project.Description = state.description;
    project.CurrentRegion = state.currentRegion;
    project.CurrentPeak = state.currentPeak;
    project.EditPeak = state.editPeak;
    project.Options = options;
    project.FileName = std::move(fileName);
    project.Idle = idle;
    project.StopRequested = false;
    host.DescriptionChanged(project.Description);
    RefreshMainWindow(project, host);
    host.TotalChiSquareChanged(project.TotalChiSquare);
    host.RegionInView();
}

bool UndoHistory::Undo(Project& project, SessionHost& host) {
    Record(project);  // a change not yet recorded becomes a step of its own
    if (!CanUndo()) return false;
    --current_;
    Restore(states_[current_], project, host);
    lastWasRecord_ = false;
    return true;
}

bool UndoHistory::Redo(Project& project, SessionHost& host) {
    if (!CanRedo()) return false;
    ++current_;
    Restore(states_[current_], project, host);
    lastWasRecord_ = false;
    return true;
}

}  // namespace molvera
