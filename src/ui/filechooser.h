#pragma once
// The program's one file dialog, shared by every file command: the chooser that asks
// the user (replaceable in tests) and the file name it remembers between commands.

#include <string>
#include <string_view>

#include <QString>

namespace molvera::ui {

/// Asks for a path; an empty result means the user cancelled.
class FileChooser {
public:
    virtual ~FileChooser() = default;
    /// An open dialog with a title, a Qt filter and a starting name.
    virtual QString OpenFile(const QString& title, const QString& filter, const QString& name) = 0;
    /// A save dialog that asks before overwriting an existing file.
    virtual QString SaveFile(const QString& title, const QString& filter, const QString& name) = 0;
};

/// QFileDialog.
class QtFileChooser : public FileChooser {
public:
    QString OpenFile(const QString& title, const QString& filter, const QString& name) override;
    QString SaveFile(const QString& title, const QString& filter, const QString& name) override;
};

/// A filter text of the form "Desc (*.x) |*.x|" as a Qt filter ("Desc (*.x)"); several
/// description/pattern pairs become several Qt filters.
QString QtFilter(std::string_view filterText);

/// The shared dialog: remembers the last chosen path and proposes save names from it.
class FileDialog {
public:
    explicit FileDialog(FileChooser& chooser) : chooser_(chooser) {}
    /// An open dialog; "" when cancelled. The chosen path is remembered.
    std::string Open(std::string_view title, std::string_view filterText);
    /// A save dialog proposing the last name with `extension` after its first "."
    /// (or unchanged, or nothing when `extension` is empty); "" when cancelled.
    std::string Save(std::string_view title, std::string_view filterText,
                     const std::string& extension);
    /// The last chosen path.
    const std::string& LastFileName() const { return last_; }
    void SetLastFileName(std::string name) { last_ = std::move(name); }

private:
    FileChooser& chooser_;
    std::string last_;
};

}  // namespace molvera::ui
