#pragma once
// Undo and redo: a bounded history of whole-project snapshots. The project is plain data,
// so a step is simply the project as it was before a command changed it.

#include <array>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>

#include "model/records.h"
#include "session/sessionhost.h"

namespace molvera {

class UndoHistory {
public:
    /// At most `maxSteps` undo steps, and fewer when the snapshots would hold more than
    /// `maxBytes` (the oldest go first; one step is always kept).
    explicit UndoHistory(std::size_t maxSteps = 100, std::size_t maxBytes = std::size_t{256} << 20);

    /// The project as it is now is where the history starts (new project, Open XPS).
    void Reset(Project& project);

    /// After a command: when the project differs from the last state kept, the last state
    /// becomes an undo step and the redo steps go. What only shows the project (the current
    /// region, the peak in the editor) is no change. Typing in the description makes one
    /// step however many keys it takes. True when a step was added.
    bool Record(Project& project);

    bool CanUndo() const { return current_ > 0; }
    bool CanRedo() const { return current_ + 1 < states_.size(); }

    /// Puts back the state before the last step (after it, for Redo) and reports the whole
    /// project to `host`; false, and nothing changes, when there is no such step.
    bool Undo(Project& project, SessionHost& host);
    bool Redo(Project& project, SessionHost& host);

    /// Undo steps kept, and the memory their snapshots hold.
    std::size_t Steps() const { return states_.empty() ? 0 : states_.size() - 1; }
    std::size_t Bytes() const;

private:
    /// A project kept in parts: a region or peak slot that a command left alone is shared
    /// with the state before, so a step costs about what it changed.
    struct State {
        std::shared_ptr<const Project> rest;  ///< without regions, peak slots and view
        std::array<std::shared_ptr<const Region>, kRegionCount> regions;
        std::array<std::shared_ptr<const Peak>, kPeakSlots> peaks, savedPeaks;
        std::array<std::uint64_t, kRegionCount> regionKeys{};  ///< hashes of the parts' bytes
        std::array<std::uint64_t, kPeakSlots> peakKeys{}, savedKeys{};
        std::uint64_t restKey = 0;
        std::string description;
        // What the user looked at when the state was last seen.
        Int16 currentRegion = 0, currentPeak = 0;
        Peak editPeak;
        bool typing = false;  ///< reached by typing in the description
    };
    State Snapshot(Project& project, const State* last) const;
    void Restore(const State& state, Project& project, SessionHost& host) const;
    void Trim();

    std::size_t maxSteps_;
    std::size_t maxBytes_;
    std::deque<State> states_;
    std::size_t current_ = 0;
    bool lastWasRecord_ = false;
};

}  // namespace molvera
