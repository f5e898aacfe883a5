#pragma once
// A host for tests: keeps the main window's texts as the session host does, counts beeps,
// redraws and yields, and answers Yes/No questions from a script.

#include <deque>
#include <string>
#include <vector>

#include "base/status.h"
#include "session/sessionhost.h"

namespace molvera::test {

class RecordingHost : public SessionHost {
public:
    int beeps = 0;
    std::deque<bool> answers;   ///< answers to AskYesNo, in order; No when empty
    std::string description;    ///< the last description reported
    int redraws = 0;            ///< CurvesChanged
    int regionWindowShows = 0;  ///< RegionInView
    int yields = 0;
    std::vector<std::string> saveQuestions;  ///< AskSaveChanges, in order
    SaveChangesAnswer saveAnswer = SaveChangesAnswer::Cancel;

    bool AskYesNo(const std::string&, const std::string&) override {
        if (answers.empty()) return false;
        bool a = answers.front();
        answers.pop_front();
        return a;
    }
    SaveChangesAnswer AskSaveChanges(const std::string& text) override {
        saveQuestions.push_back(text);
        return saveAnswer;
    }
    void Beep() override { ++beeps; }
    void DescriptionChanged(const std::string& text) override { description = text; }
    void CurvesChanged() override { ++redraws; }
    void RegionInView() override { ++regionWindowShows; }
    void Yield() override { ++yields; }

    const std::string& ChiText(int region) const { return MainTexts().chiSquare[region]; }
    const PeakButtonText& PeakButton(int index) const { return MainTexts().peakButtons[index]; }
};

/// The fixed texts of messages, in order (their details left out).
inline std::vector<std::string> MessageTexts(const std::vector<Status>& messages) {
    std::vector<std::string> texts;
    for (const Status& m : messages) texts.push_back(m.message());
    return texts;
}

}  // namespace molvera::test
