#pragma once
// The constraint dialog as plain data: opening it on one parameter of CurrentPeak,
// and its OK (validation and storing).

#include <string>

#include "base/status.h"
#include "model/records.h"

namespace molvera {

/// Texts and check states of the dialog's controls.
struct ConstraintForm {
    PeakParameter kind = PeakParameter::Position;  ///< the parameter being edited
    std::string caption;
    std::string peakLabel;     ///< slot number of the peak being edited
    bool useRelation = false;  ///< "Relation with another peak"
    std::string referencePeakText;
    std::string operation = "+";  ///< "+", "-", "*" or "/"
    std::string argumentText;
    bool useLimits = false;  ///< "Limits of Search Range"
    std::string lowLimitText;
    std::string highLimitText;
    std::string invalidBox;  ///< field of the box last refused as no number; "" when none
    bool visible = false;
};

/// Open the dialog for a parameter of CurrentPeak: limits brought into their domain
/// (and stored), the form filled from the record and shown.
void OpenPositionConstraint(Project& project, ConstraintForm& form);
void OpenAreaConstraint(Project& project, ConstraintForm& form);
void OpenFWHMConstraint(Project& project, ConstraintForm& form);
void OpenGLConstraint(Project& project, ConstraintForm& form);
/// The one of the four above for `kind`.
void OpenConstraint(Project& project, ConstraintForm& form, PeakParameter kind);

/// OK: validates the form for CurrentPeak and stores the relation and the limits; a
/// refusal returns its message and leaves the dialog open; success hides it.
Status AcceptConstraint(Project& project, ConstraintForm& form);

/// True when following the references from r in group `g` comes back to p; a chain
/// that loops elsewhere or leaves 0..50 ends after at most 51 steps with false.
bool IsCircular(const Project& project, PeakParameter g, int p, int r);
bool IsCircularPosition(const Project& project, int p, int r);
bool IsCircularArea(const Project& project, int p, int r);
bool IsCircularFWHM(const Project& project, int p, int r);
bool IsCircularGL(const Project& project, int p, int r);

}  // namespace molvera
