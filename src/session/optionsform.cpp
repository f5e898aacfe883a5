#include "session/optionsform.h"

#include <cmath>

#include "base/messages.h"
#include "base/numtext.h"
#include "fileio/optionfile.h"
#include "model/records.h"
#include "session/formnumber.h"

namespace molvera {

namespace {

// One row kind of the dialog: its controls and the levels they edit.
struct SearchRows {
    std::array<bool, kLevels>& check;
    std::array<std::string, kLevels>& range;
    std::array<std::string, kLevels>& step;
    std::array<SearchLevel, kLevels>& levels;
    const char* rangePrefix;
    const char* stepPrefix;
    const char* rangeField;  // the form's field, the level's index after it
    const char* stepField;
};

struct NewtonRows {
    std::array<bool, kLevels>& check;
    std::array<std::string, kLevels>& delta;
    std::array<NewtonLevel, kLevels>& levels;
    const char* deltaPrefix;
    const char* deltaField;
};

std::array<SearchRows, 3> SearchRowsOf(OptionsForm& f, FitOptions& o) {
    return {{{f.usePositionSearch, f.positionRangeText, f.positionStepText, o.PositionSearch,
              msg::kPosRangePrefix, msg::kPosStepPrefix, "positionRangeText", "positionStepText"},
             {f.useAreaSearch, f.areaRangeText, f.areaStepText, o.AreaSearch, msg::kAreaRangePrefix,
              msg::kAreaStepPrefix, "areaRangeText", "areaStepText"},
             {f.useFWHMSearch, f.fwhmRangeText, f.fwhmStepText, o.FWHMSearch, msg::kFWHMRangePrefix,
              msg::kFWHMStepPrefix, "fwhmRangeText", "fwhmStepText"}}};
}

std::array<NewtonRows, 3> NewtonRowsOf(OptionsForm& f, FitOptions& o) {
    return {
        {{f.usePositionNewton, f.positionDeltaText, o.PositionNewton, msg::kPosDeltaPrefix,
          "positionDeltaText"},
         {f.useAreaNewton, f.areaDeltaText, o.AreaNewton, msg::kAreaDeltaPrefix, "areaDeltaText"},
         {f.useFWHMNewton, f.fwhmDeltaText, o.FWHMNewton, msg::kFWHMDeltaPrefix, "fwhmDeltaText"}}};
}

// A trial count typed into a box: 1..200 after rounding halves to even.
bool ReadTrials(const std::string& text, std::int16_t& target) {
    const double n = RoundHalfEven(LeadingNumber(text));
    if (!(n >= 1 && n <= 200)) return false;
    target = static_cast<std::int16_t>(n);
    return true;
}

// A range, step or delta: stored at once when it is a positive Single.
bool ReadPositive(const std::string& text, float& target) {
    const auto v = static_cast<float>(LeadingNumber(text));
    if (!(v > 0) || !std::isfinite(v)) return false;
    target = v;
    return true;
}

// The boxes in use, each of which must hold a number.
std::vector<NumberBox> NumberBoxesInUse(OptionsForm& form, FitOptions& options) {
    std::vector<NumberBox> boxes = {
        {"No. of trials for Search method", "searchTrialsText", form.searchTrialsText},
        {"No. of trials for Newton's method", "newtonTrialsText", form.newtonTrialsText},
        {"% Tolerance", "toleranceText", form.toleranceText}};
    for (int i = 0; i < kLevels; ++i) {
        const std::string level = std::to_string(i + 1);
        const std::string index = std::to_string(i);
        for (SearchRows rows : SearchRowsOf(form, options)) {
            if (!rows.check[i]) continue;
            boxes.push_back({std::string(rows.rangePrefix) + " " + level, rows.rangeField + index,
                             rows.range[i]});
            boxes.push_back(
                {std::string(rows.stepPrefix) + " " + level, rows.stepField + index, rows.step[i]});
        }
        for (NewtonRows rows : NewtonRowsOf(form, options)) {
            if (!rows.check[i]) continue;
            boxes.push_back({std::string(rows.deltaPrefix) + " " + level, rows.deltaField + index,
                             rows.delta[i]});
        }
    }
    return boxes;
}

// The tolerance in per cent as a user types it: the fewest decimals that OK reads back to
// the same Single ("0.001", not the Single's "0.00099999993108").
std::string ToleranceText(float tolerance) {
    const double perCent = static_cast<double>(tolerance) * 100;
    for (int decimals = 0; decimals < 14; ++decimals) {
        std::string text = FormatTrimmed(perCent, decimals);
        if (static_cast<float>(LeadingNumber(text) / 100) == tolerance) return text;
    }
    return FormatTrimmed(static_cast<float>(perCent));
}

Status MustBePositive(const char* prefix, int level) {
    return Status::Error(std::string(prefix) + " " + std::to_string(level) +
                         msg::kMustBePositiveSuffix);
}

}  // namespace

void FillOptionsDialog(const FitOptions& options, OptionsForm& form) {
    form.useSearch = options.Method == 0;
    form.useLevenbergMarquardt = options.Method == 2;
    form.useNewton = !form.useSearch && !form.useLevenbergMarquardt;
    form.searchTrialsText = std::to_string(options.SearchTrials);
    form.newtonTrialsText = std::to_string(options.NewtonTrials);
    form.toleranceText = ToleranceText(options.Tolerance);
    form.glSum = options.GLSum != 0;
    form.glProduct = !form.glSum;
    form.asymmetryFrameEnabled = form.glSum;
    FitOptions copy = options;
    for (int i = 0; i < kLevels; ++i) {
        for (SearchRows rows : SearchRowsOf(form, copy)) {
            rows.check[i] = rows.levels[i].Use != 0;
            rows.range[i] = FormatGeneral(rows.levels[i].Range);
            rows.step[i] = FormatGeneral(rows.levels[i].Step);
        }
        for (NewtonRows rows : NewtonRowsOf(form, copy)) {
            rows.check[i] = rows.levels[i].Use != 0;
            rows.delta[i] = FormatGeneral(rows.levels[i].Delta);
        }
    }
    form.visible = true;
}

Status ApplyOptionsDialog(OptionsForm& form, FitOptions& options) {
    if (Status st = CheckNumberBoxes(NumberBoxesInUse(form, options), form.invalidBox); !st)
        return st;
    options.Method = form.useSearch ? 0.0f : form.useLevenbergMarquardt ? 2.0f : 1.0f;
    if (!ReadTrials(form.searchTrialsText, options.SearchTrials))
        return Status::Error(msg::kSearchTrialsRange);
    if (!ReadTrials(form.newtonTrialsText, options.NewtonTrials))
        return Status::Error(msg::kNewtonTrialsRange);
    const double t = LeadingNumber(form.toleranceText);
    if (!(t >= 0 && t <= 100)) return Status::Error(msg::kToleranceRange);
    options.Tolerance = static_cast<float>(t / 100);

    for (int i = 0; i < kLevels; ++i) {
        const int level = i + 1;
        for (SearchRows rows : SearchRowsOf(form, options)) {
            SearchLevel& l = rows.levels[i];
            if (!rows.check[i]) {
                l.Use = kFalse;
                continue;
            }
            l.Use = kTrue;
            if (!ReadPositive(rows.range[i], l.Range))
                return MustBePositive(rows.rangePrefix, level);
            if (!ReadPositive(rows.step[i], l.Step)) return MustBePositive(rows.stepPrefix, level);
        }
        for (NewtonRows rows : NewtonRowsOf(form, options)) {
            NewtonLevel& l = rows.levels[i];
            if (!rows.check[i]) {
                l.Use = kFalse;
                continue;
            }
            l.Use = kTrue;
            if (!ReadPositive(rows.delta[i], l.Delta))
                return MustBePositive(rows.deltaPrefix, level);
        }
    }
    form.visible = false;
    return Status::Ok();
}

void CancelOptionsDialog(OptionsForm& form, FitOptions& options, const FitOptions& opened) {
    options = opened;
    FillOptionsDialog(options, form);
    form.invalidBox.clear();
    form.visible = false;
}

void ApplyNewtonChoice(OptionsForm& form, FitOptions& options) {
    options.Method = form.useNewton ? 1.0f : 0.0f;
    form.useSearch = !form.useNewton;
    form.useLevenbergMarquardt = false;
}

void ApplySearchChoice(OptionsForm& form, FitOptions& options) {
    options.Method = form.useSearch ? 0.0f : 1.0f;
    form.useNewton = !form.useSearch;
    form.useLevenbergMarquardt = false;
}

void ApplyLevenbergMarquardtChoice(OptionsForm& form, FitOptions& options) {
    options.Method = form.useLevenbergMarquardt ? 2.0f : 1.0f;
    form.useNewton = !form.useLevenbergMarquardt;
    form.useSearch = false;
}

void ApplyGLSumChoice(OptionsForm& form, FitOptions& options) {
    options.GLSum = ToFlag(form.glSum);
    form.glProduct = !form.glSum;
    form.asymmetryFrameEnabled = form.glSum;
}

void ApplyGLProductChoice(OptionsForm& form, FitOptions& options) {
    options.GLSum = ToFlag(!form.glProduct);
    form.glSum = !form.glProduct;
    form.asymmetryFrameEnabled = form.glSum;
}

std::string ProposeOptionFileName(const std::string& lastFileName) {
    const std::size_t dot = lastFileName.find('.');
    if (dot == std::string::npos) return lastFileName;
    return lastFileName.substr(0, dot + 1) + "opa";
}

Status LoadOptionsCommand(const std::string& path, OptionsForm& form, FitOptions& options) {
    Status st = ReadOptionFile(options, path);
    if (st) FillOptionsDialog(options, form);
    return st;
}

void LoadDefaultOptions(const std::string& path, OptionsForm& form, FitOptions& options) {
    if (ReadOptionFile(options, path)) FillOptionsDialog(options, form);
    form.visible = false;
}

}  // namespace molvera
