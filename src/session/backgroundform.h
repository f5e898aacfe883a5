#pragma once
// The background dialog as data: its boxes, filling from the region, and Accept.

#include <optional>
#include <string>

#include "base/status.h"
#include "model/host.h"
#include "model/records.h"

namespace molvera {

/// Texts of the background dialog's controls.
struct BackgroundForm {
    std::string lowBEText;                ///< "Low BE"
    std::string highBEText;               ///< "High BE"
    std::string averagePoints;            ///< "None", "3", "5", "7", "9"
    std::string backgroundType;           ///< "Shirley", "Linear", "Tougaard"
    std::string shirleySlopeText;         ///< slope of the Shirley+linear background
    std::string tougaardB1Text = "3000";  ///< Tougaard B1
    std::string areaText = "-----";       ///< "Area (I*eV)" after an Accept
    std::string caption;
    std::string invalidBox;  ///< field of the box last refused as no number; "" when none
    bool visible = false;
};

/// The region window's Background command: fills the form from the current region
/// (when it has data), the Area box with its background's net area ("-----" without a
/// background), and shows it.
void ShowBackgroundDialog(const Project& project, BackgroundForm& form);

/// The boundaries and averaging read from the boxes by the first checks of Accept.
struct BackgroundBoxes {
    float low = 0;
    float high = 0;
    Int16 averagePoints = 1;
};

/// Accept's checks of the two boundaries and the averaging, in order; a refusal
/// corrects the box, beeps and gives nothing. Nothing is stored.
std::optional<BackgroundBoxes> CheckBackgroundBoxes(const Region& region, Host& host,
                                                    BackgroundForm& form);

/// Ok when the boxes that Accept reads hold numbers (Low BE, High BE, and the slope or
/// B1 box of the chosen type unless it is empty); otherwise the refusal naming the
/// first that does not, with its field in form.invalidBox.
Status CheckBackgroundNumbers(BackgroundForm& form);

/// The Accept button: refuses a box that holds no number with a message naming it, then
/// checks the boxes in order (such a refusal corrects a box and beeps; its Status has no
/// message); a refusal stores nothing. Otherwise stores the settings and recomputes the
/// region keeping peak areas.
Status AcceptBackground(Project& project, Host& host, BackgroundForm& form);

/// The Close button: hides the dialog; nothing is stored.
void CloseBackgroundDialog(BackgroundForm& form);

/// Number of range points that RecomputeRegion gives the current data for the two
/// boundary energies; 0 when the data's first and last energies are equal.
int RangePointCount(const Region& region, float lowBE, float highBE);

}  // namespace molvera
