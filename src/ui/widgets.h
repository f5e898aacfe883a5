#pragma once
// Small pieces the windows share: texts between the records' Latin-1 and Qt, named
// text boxes and buttons, and showing a window as its form says.
//
// Object names, by which the tests find windows and controls, are lowerCamelCase: a
// control that shows a field of a session form carries that field's name
// (positionText, positionBar, fixPosition); buttons end in "Button", menu items in
// "Action", menus in "Menu"; a row of like controls is numbered from 0 (regionButton3).

#include <string>

#include <QString>

class QLineEdit;
class QMenuBar;
class QPushButton;
class QWidget;

namespace molvera::ui {

/// `word` at the start of a lowerCamelCase name: "Position" -> "position", "FWHM" -> "fwhm".
QString LowerCamel(const QString& word);

/// Latin-1 bytes of the records as a QString.
QString FromLatin1(const std::string& latin1);
/// A QString as Latin-1 bytes (characters outside Latin-1 become '?').
std::string ToLatin1(const QString& text);

/// A text box of fixed width with the object name the tests find it by.
QLineEdit* NamedBox(QWidget* parent, const QString& name, int width);
/// Writes `text` into `box` when it differs, showing its leading characters.
void SetBoxText(QLineEdit* box, const std::string& text);
/// A button with an object name; Enter in a text box does not press it.
QPushButton* NamedButton(QWidget* parent, const QString& caption, const QString& name);
/// Marks the text box of `window` whose object name is `field` with a red frame (its
/// "invalid" property set) and unmarks the others; the mark goes when the box is edited.
void MarkInvalidBox(QWidget& window, const std::string& field);
/// Shows and raises `window`, or hides it.
void ShowOrHide(QWidget& window, bool visible);
/// The Edit menu of `bar`: Undo (Ctrl+Z, `undoAction`) and Redo (Ctrl+Shift+Z,
/// `redoAction`), both disabled until the undo history says otherwise.
void AddEditMenu(QMenuBar& bar);

}  // namespace molvera::ui
