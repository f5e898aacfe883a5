#pragma once
// A host for tests: records every message, beep and window update, and answers
// Yes/No questions from a script.

#include <deque>
#include <map>
#include <string>
#include <vector>

#include "model/host.h"

namespace molvera::test {

struct PeakButton {
    std::string caption;
    bool enabled = false;
};

class RecordingHost : public Host {
public:
    std::vector<std::string> messages;
    int beeps = 0;
    std::deque<bool> answers;  ///< answers to AskYesNo, in order; No when empty
    std::map<int, std::string> chiTexts;
    std::string totalChiText;
    std::map<int, PeakButton> peakButtons;
    std::string description;
    int redraws = 0;
    int regionWindowShows = 0;
    int yields = 0;

    void Message(const std::string& text) override { messages.push_back(text); }
    bool AskYesNo(const std::string&, const std::string&) override {
        if (answers.empty()) return false;
        bool a = answers.front();
        answers.pop_front();
        return a;
    }
    void Beep() override { ++beeps; }
    void SetRegionChiText(int region, const std::string& text) override { chiTexts[region] = text; }
    void SetTotalChiText(const std::string& text) override { totalChiText = text; }
    void SetPeakButton(int index, const std::string& caption, bool enabled) override {
        peakButtons[index] = {caption, enabled};
    }
    void SetDescriptionText(const std::string& text) override { description = text; }
    void RedrawRegion() override { ++redraws; }
    void ShowRegionWindow() override { ++regionWindowShows; }
    void Yield() override { ++yields; }
};

}  // namespace molvera::test
