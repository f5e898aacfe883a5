#include "session/workspace.h"

#include <algorithm>

#include "fileio/formats.h"

namespace molvera {

WindowPlaces SideBySide(const ScreenRect& available, const ScreenRect& mainSize,
                        const ScreenRect& regionSize, int gap) {
    WindowPlaces places;
    const int height = available.height;
    places.main = {available.x, available.y, std::min(mainSize.width, available.width),
                   std::min(mainSize.height, height)};
    const int left = places.main.Right() + gap;
    const int room = std::max(0, available.Right() - left);
    places.region = {std::min(left, available.Right()), available.y,
                     std::min(regionSize.width, room), std::min(regionSize.height, height)};
    // When both fit with room to spare, the pair is centred across the screen.
    const int spare = room - places.region.width;
    places.main.x += spare / 2;
    places.region.x += spare / 2;
    return places;
}

bool FitsOnAScreen(const ScreenRect& window, const std::vector<ScreenRect>& screens) {
    return window.width > 0 && window.height > 0 &&
           std::any_of(screens.begin(), screens.end(), [&](const ScreenRect& s) {
               return window.x >= s.x && window.y >= s.y && window.Right() <= s.Right() &&
                      window.Bottom() <= s.Bottom();
           });
}

RecentFiles::RecentFiles(std::vector<std::string> paths) {
    for (auto it = paths.rbegin(); it != paths.rend(); ++it)
        if (!it->empty()) Add(*it);
}

void RecentFiles::Add(const std::string& path) {
    Remove(path);
    paths_.insert(paths_.begin(), path);
    if (paths_.size() > kRecentFiles) paths_.resize(kRecentFiles);
}

void RecentFiles::Remove(const std::string& path) { std::erase(paths_, path); }

std::string AnyFileFilter() {
    std::string patterns = "*.xps";
    for (const ImportFormat& format : ImportFormats()) {
        std::string_view rest = format.extensions;
        while (!rest.empty()) {
            const std::size_t end = std::min(rest.find(' '), rest.size());
            if (end > 0) patterns += " *." + std::string(rest.substr(0, end));
            rest.remove_prefix(std::min(end + 1, rest.size()));
        }
    }
    return "Projects and instrument files |" + patterns + "|All files |*|";
}

std::string MissingRecentFileText(const std::string& path) {
    const std::size_t slash = path.find_last_of("/\\");
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    return name + " no longer exists (" + path + "); it is removed from the recent files.";
}

}  // namespace molvera
