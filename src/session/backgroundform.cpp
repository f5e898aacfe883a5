#include "session/backgroundform.h"

#include <cmath>
#include <cstddef>
#include <optional>

#include "base/numtext.h"
#include "session/formnumber.h"
#include "spectral/background.h"

namespace molvera {

namespace {

// EndPointAverage for an averaging text, nothing for any other text.
std::optional<Int16> AveragePointsFromText(const std::string& text) {
    if (text == "None") return 1;
    if (text == "3") return 3;
    if (text == "5") return 5;
    if (text == "7") return 7;
    if (text == "9") return 9;
    return std::nullopt;
}

const char* AveragePointsText(Int16 count) {
    switch (count) {
        case 1:
            return "None";
        case 3:
            return "3";
        case 5:
            return "5";
        case 7:
            return "7";
        case 9:
            return "9";
        default:
            return nullptr;
    }
}

float DataEnergy(const Region& region, int i) {
    return i >= 0 && static_cast<std::size_t>(i) < region.BindingEnergy.size()
               ? region.BindingEnergy[static_cast<std::size_t>(i)]
               : 0.0f;
}

// A boundary beyond a data limit; values that the box shows as the limit itself count
// as the limit, so that the corrected box is accepted by the next Accept.
bool Beyond(float value, float limit, bool below) {
    const bool outside = below ? value < limit : value > limit;
    return outside && FormatGeneral(value) != FormatGeneral(limit);
}

bool IsBlankText(const std::string& text) {
    return text.find_first_not_of(" \t") == std::string::npos;
}

bool Refuse(Host& host) {
    host.Beep();
    return false;
}

}  // namespace

int RangePointCount(const Region& region, float lowBE, float highBE) {
    const int n = region.PointCount;
    if (n < 1) return 0;
    const double span = static_cast<double>(DataEnergy(region, 1)) - DataEnergy(region, n);
    if (span == 0) return 0;
    const double m =
        RoundHalfEven(std::fabs((static_cast<double>(highBE) - lowBE) * (n - 1) / span) + 1);
    if (!std::isfinite(m) || m > kMaxPoints) return kMaxPoints + 1;
    return static_cast<int>(m);
}

void ShowBackgroundDialog(const Project& project, BackgroundForm& form) {
    const Region& region = project.Current();
    if (!IsSet(region.HasData)) return;
    form.visible = true;
    form.caption = "Region " + std::to_string(project.CurrentRegion + 1);
    // The area of this region's background, never one left from another region.
    form.areaText =
        IsSet(region.HasBackground) ? FormatGeneral(static_cast<float>(NetArea(region))) : "-----";
    if (IsSet(region.HasBackground)) {
        form.lowBEText = FormatGeneral(region.BackgroundLowBE);
        form.highBEText = FormatGeneral(region.BackgroundHighBE);
        if (const char* text = AveragePointsText(region.EndPointAverage)) form.averagePoints = text;
        if (region.BackgroundType == BackgroundKind::Linear) {
            form.backgroundType = "Linear";
        } else if (region.BackgroundType == BackgroundKind::Tougaard) {
            form.backgroundType = "Tougaard";
            form.tougaardB1Text = FormatGeneral(region.BackgroundParameter);
        } else if (region.BackgroundType == BackgroundKind::Shirley) {
            form.backgroundType = "Shirley";
            form.shirleySlopeText = FormatGeneral(region.BackgroundParameter);
        }
    } else {
        form.lowBEText = FormatGeneral(region.MinBE);
        form.highBEText = FormatGeneral(region.MaxBE);
        form.averagePoints = "None";
        form.backgroundType = "Shirley";
    }
}

std::optional<BackgroundBoxes> CheckBackgroundBoxes(const Region& region, Host& host,
                                                    BackgroundForm& form) {
    const float low = BoxSingle(form.lowBEText);
    if (Beyond(low, region.MinBE, true)) {
        form.lowBEText = FormatGeneral(region.MinBE);
        Refuse(host);
        return std::nullopt;
    }
    const float high = BoxSingle(form.highBEText);
    if (Beyond(high, region.MaxBE, false)) {
        form.highBEText = FormatGeneral(region.MaxBE);
        Refuse(host);
        return std::nullopt;
    }
    // Equal or crossed boundaries, and a range too narrow to hold two points of the
    // data, are reset to the data's extent.
    if (low >= high || RangePointCount(region, low, high) < 2) {
        form.lowBEText = FormatGeneral(region.MinBE);
        form.highBEText = FormatGeneral(region.MaxBE);
        Refuse(host);
        return std::nullopt;
    }

    const std::optional<Int16> averagePoints = AveragePointsFromText(form.averagePoints);
    if (!averagePoints) {
        form.averagePoints = "None";
        Refuse(host);
        return std::nullopt;
    }
    return BackgroundBoxes{low, high, *averagePoints};
}

Status CheckBackgroundNumbers(BackgroundForm& form) {
    // An empty slope or B1 box takes its default below; the other type's box is not read.
    const auto parameterBox = [&form](const char* type, const std::string& text) {
        return form.backgroundType == type && !IsBlankText(text) ? text : std::string("0");
    };
    if (Status st = CheckNumberBoxes(
            {{"Low BE", "lowBEText", form.lowBEText},
             {"High BE", "highBEText", form.highBEText},
             {"Slope", "shirleySlopeText", parameterBox("Shirley", form.shirleySlopeText)},
             {"B1", "tougaardB1Text", parameterBox("Tougaard", form.tougaardB1Text)}},
            form.invalidBox);
        !st)
        return st;
    return Status::Ok();
}

Status AcceptBackground(Project& project, Host& host, BackgroundForm& form) {
    Region& region = project.Current();
    if (Status st = CheckBackgroundNumbers(form); !st) return st;
    const std::optional<BackgroundBoxes> boxes = CheckBackgroundBoxes(region, host, form);
    if (!boxes) return Status::Error({});

    if (LeadingNumber(form.shirleySlopeText) == 0) form.shirleySlopeText = "0";
    if (LeadingNumber(form.tougaardB1Text) == 0) form.tougaardB1Text = "3000";

    BackgroundKind type = BackgroundKind::Shirley;
    float parameter = region.BackgroundParameter;
    if (form.backgroundType == "Shirley") {
        parameter = BoxSingle(form.shirleySlopeText);
    } else if (form.backgroundType == "Linear") {
        type = BackgroundKind::Linear;
    } else if (form.backgroundType == "Tougaard") {
        type = BackgroundKind::Tougaard;
        parameter = BoxSingle(form.tougaardB1Text);
    } else {
        form.backgroundType = "Shirley";
        Refuse(host);
        return Status::Error({});
    }

    region.EndPointAverage = boxes->averagePoints;
    region.BackgroundType = type;
    region.BackgroundParameter = parameter;
    region.BackgroundLowBE = boxes->low;
    region.BackgroundHighBE = boxes->high;

    project.KeepAreas = kTrue;
    RecomputeRegion(project, host);
    form.areaText = FormatGeneral(static_cast<float>(NetArea(region)));
    region.HasBackground = kTrue;
    host.RegionInView();
    project.KeepAreas = kFalse;
    return Status::Ok();
}

void CloseBackgroundDialog(BackgroundForm& form) { form.visible = false; }

}  // namespace molvera
