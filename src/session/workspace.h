#pragma once
// Where the two windows go on the screen, and the list of recently used files.

#include <string>
#include <vector>

namespace molvera {

/// A rectangle in screen pixels.
struct ScreenRect {
    int x = 0, y = 0, width = 0, height = 0;
    int Right() const { return x + width; }
    int Bottom() const { return y + height; }
    bool operator==(const ScreenRect&) const = default;
};

/// The main window at the left of `available`, the region window to its right, both at
/// the top, `gap` pixels apart, never overlapping and never beyond `available`. Sizes are
/// the wanted outer sizes; when the screen is too small the region window gets the width
/// and height left (and the main window is cut only when even it does not fit).
struct WindowPlaces {
    ScreenRect main, region;
};
WindowPlaces SideBySide(const ScreenRect& available, const ScreenRect& mainSize,
                        const ScreenRect& regionSize, int gap = 8);

/// Whether `window` lies wholly on one of the `screens`.
bool FitsOnAScreen(const ScreenRect& window, const std::vector<ScreenRect>& screens);

/// The projects and instrument files used last, the latest first, each once, at most
/// kRecentFiles of them.
class RecentFiles {
public:
    static constexpr std::size_t kRecentFiles = 8;
    explicit RecentFiles(std::vector<std::string> paths = {});
    /// `path` was opened, saved or imported: it goes first.
    void Add(const std::string& path);
    void Remove(const std::string& path);
    const std::vector<std::string>& Paths() const { return paths_; }

private:
    std::vector<std::string> paths_;
};

/// The filter of File > Import...: projects and every instrument format's extensions, then
/// all files ("Projects and instrument files |*.xps *.vms ...|All files |*|").
std::string AnyFileFilter();

/// "c1s.xps no longer exists (/data/c1s.xps); it is removed from the recent files."
std::string MissingRecentFileText(const std::string& path);

}  // namespace molvera
