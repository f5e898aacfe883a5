#pragma once
// Help > About Molvera: the program's name, version and licence.

class QMenuBar;
class QWidget;

namespace molvera::ui {

/// The Help menu of `bar` (`helpMenu`) with About Molvera (`aboutAction`), which shows the
/// About box over `window`.
void AddHelpMenu(QMenuBar& bar, QWidget& window);

/// Shows the About box (`aboutDialog`, not modal) over `window` and returns it: name,
/// version, what the program does, the licence text and the Qt version.
QWidget* ShowAboutDialog(QWidget& window);

}  // namespace molvera::ui
