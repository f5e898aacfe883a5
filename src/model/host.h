#pragma once
// Where the core reaches the user: message boxes, the beep, the main window's
// boxes and buttons, redraws and yielding during long computations. The GUI,
// the CLI and the tests each implement it; every method has a quiet default.

#include <string>

namespace molvera {

class Host {
public:
    virtual ~Host() = default;

    /// A modal message box with one fixed text and an OK button.
    virtual void Message(const std::string& text) { (void)text; }
    /// A Yes/No question; true for Yes.
    virtual bool AskYesNo(const std::string& title, const std::string& text) {
        (void)title;
        (void)text;
        return false;
    }
    /// The system beep.
    virtual void Beep() {}

    /// Text of the chi-square box `chi`(region) of the main window.
    virtual void SetRegionChiText(int region, const std::string& text) {
        (void)region;
        (void)text;
    }
    /// Text of the total chi-square label `SumCS`.
    virtual void SetTotalChiText(const std::string& text) { (void)text; }
    /// Caption and enabled state of main-window peak button `pp`(index), index 0..99.
    virtual void SetPeakButton(int index, const std::string& caption, bool enabled) {
        (void)index;
        (void)caption;
        (void)enabled;
    }
    /// The main window's description box.
    virtual void SetDescriptionText(const std::string& text) { (void)text; }

    /// Redraw the current region: data, and its fit when it has a background.
    virtual void RedrawRegion() {}
    /// Show the region window on the current region (title, data, fit), then yield.
    virtual void ShowRegionWindow() {}
    /// Recolour the region buttons of the main window.
    virtual void RecolourRegionButtons() {}
    /// Hide the peak editor.
    virtual void HidePeakEditor() {}
    /// Hide the peak editor, the background dialog and the constraint dialog.
    virtual void HideRegionDialogs() {}

    /// Let pending interface events run (repaint, the Stop button).
    virtual void Yield() {}

    /// A fit starts: show the fitting window, disable the other windows.
    virtual void BeginFit() {}
    /// A fit has ended: hide the fitting window, enable the other windows.
    virtual void EndFit() {}

    /// Busy state: hourglass pointer, every window of the program disabled.
    virtual void BeginBusy() {}
    /// Busy state over: arrow pointer, the windows enabled again.
    virtual void EndBusy() {}
};

/// A host that does nothing: for computations nobody watches.
Host& QuietHost();

}  // namespace molvera
