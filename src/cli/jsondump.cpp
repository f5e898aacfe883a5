#include "cli/jsondump.h"

#include <charconv>
#include <cmath>

#include "base/numtext.h"

namespace molvera::cli {

Json FloatJson(float value) {
    if (std::isnan(value)) return "NaN";
    if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
    // The shortest decimal text that reads back to this Single, held as a double.
    char buf[32];
    auto res = std::to_chars(buf, buf + sizeof buf, value);
    double d = 0;
    std::from_chars(buf, res.ptr, d);
    return d;
}

namespace {

Json ArrayJson(const SingleArray& a) {
    Json out = Json::array();
    for (float v : a) out.push_back(FloatJson(v));
    return out;
}

Json TextJson(const std::string& latin1) { return Latin1ToUtf8(latin1); }

Json RegionJson(const Region& r) {
    Json j;
    j["HasData"] = r.HasData;
    j["ImportRegionNumber"] = r.ImportRegionNumber;
    j["Caption"] = TextJson(r.Caption.Str());
    j["PointCount"] = r.PointCount;
    j["BindingEnergy"] = ArrayJson(r.BindingEnergy);
    j["RawIntensity"] = ArrayJson(r.RawIntensity);
    j["MaxBE"] = FloatJson(r.MaxBE);
    j["MinBE"] = FloatJson(r.MinBE);
    j["MaxIntensity"] = FloatJson(r.MaxIntensity);
    j["MinIntensity"] = FloatJson(r.MinIntensity);
    j["HasBackground"] = r.HasBackground;
    j["PeakCount"] = r.PeakCount;
    j["PeakIndex"] = r.PeakIndex;
    j["BackgroundType"] = static_cast<Int16>(r.BackgroundType);
    j["BackgroundLowBE"] = FloatJson(r.BackgroundLowBE);
    j["BackgroundHighBE"] = FloatJson(r.BackgroundHighBE);
    j["LinearStep"] = FloatJson(r.LinearStep);
    j["RangeStart"] = r.RangeStart;
    j["RangeEnd"] = r.RangeEnd;
    j["RangeCount"] = r.RangeCount;
    j["NetMax"] = FloatJson(r.NetMax);
    j["NetMin"] = FloatJson(r.NetMin);
    j["NetScale"] = FloatJson(r.NetScale);
    j["ChiSquare"] = FloatJson(r.ChiSquare);
    j["RangeBE"] = ArrayJson(r.RangeBE);
    j["RangeIntensity"] = ArrayJson(r.RangeIntensity);
    j["BackgroundWork"] = ArrayJson(r.BackgroundWork);
    j["BackgroundCurve"] = ArrayJson(r.BackgroundCurve);
    j["PeakSumCurve"] = ArrayJson(r.PeakSumCurve);
    j["Residual"] = ArrayJson(r.Residual);
    j["EndAverage"] = FloatJson(r.EndAverage);
    j["StartAverage"] = FloatJson(r.StartAverage);
    j["EndPointAverage"] = r.EndPointAverage;
    j["BackgroundParameter"] = FloatJson(r.BackgroundParameter);
    j["Shift"] = FloatJson(r.Shift);
    return j;
}

Json PeakJson(const Peak& p) {
    Json j;
    j["InUse"] = p.InUse;
    j["Label"] = TextJson(p.Label.Str());
    j["PeakType"] = static_cast<Int16>(p.PeakType);
    j["Splitting"] = FloatJson(p.Splitting);
    j["Position"] = FloatJson(p.Position);
    j["Area"] = FloatJson(p.Area);
    j["HeightPercent"] = FloatJson(p.HeightPercent);
    j["FWHM"] = FloatJson(p.FWHM);
    j["PercentGL"] = p.PercentGL;
    j["FixPosition"] = p.FixPosition;
    j["FixFWHM"] = p.FixFWHM;
    j["FixArea"] = p.FixArea;
    j["FixGL"] = p.FixGL;
    j["Region"] = p.Region;
    j["Curve"] = ArrayJson(p.Curve);
    j["TailScale"] = FloatJson(p.TailScale);
    j["TailLength"] = FloatJson(p.TailLength);
    return j;
}

Json GroupJson(const ParameterConstraint& c) {
    Json j;
    j["Linked"] = c.Linked;
    j["RefPeak"] = c.RefPeak;
    j["IsReference"] = c.IsReference;
    j["DependentPeak"] = c.DependentPeak;
    j["Operation"] = c.Operation;
    j["Argument"] = FloatJson(c.Argument);
    j["UseLimits"] = c.UseLimits;
    j["LowLimit"] = FloatJson(c.LowLimit);
    j["HighLimit"] = FloatJson(c.HighLimit);
    return j;
}

Json SearchLevelsJson(const std::array<SearchLevel, kLevels>& levels) {
    Json out = Json::array();
    for (const SearchLevel& l : levels) {
        Json j;
        j["Use"] = l.Use;
        j["Range"] = FloatJson(l.Range);
        j["Step"] = FloatJson(l.Step);
        out.push_back(j);
    }
    return out;
}

Json NewtonLevelsJson(const std::array<NewtonLevel, kLevels>& levels) {
    Json out = Json::array();
    for (const NewtonLevel& l : levels) {
        Json j;
        j["Use"] = l.Use;
        j["Delta"] = FloatJson(l.Delta);
        out.push_back(j);
    }
    return out;
}

}  // namespace

Json ProjectToJson(const Project& project) {
    Json j;
    j["Regions"] = Json::array();
    for (const Region& r : project.Regions) j["Regions"].push_back(RegionJson(r));
    j["Peaks"] = Json::array();
    for (const Peak& p : project.Peaks) j["Peaks"].push_back(PeakJson(p));
    j["Constraints"] = Json::array();
    for (const PeakConstraint& c : project.Constraints) {
        Json g;
        g["Position"] = GroupJson(c.Position);
        g["Area"] = GroupJson(c.Area);
        g["FWHM"] = GroupJson(c.FWHM);
        g["GL"] = GroupJson(c.GL);
        j["Constraints"].push_back(g);
    }
    j["CurrentRegion"] = project.CurrentRegion;
    j["CurrentPeak"] = project.CurrentPeak;
    j["EditPeak"] = PeakJson(project.EditPeak);
    j["TotalPeakCount"] = project.TotalPeakCount;
    j["TotalChiSquare"] = FloatJson(project.TotalChiSquare);
    j["AreaScale"] = FloatJson(project.AreaScale);
    j["Description"] = TextJson(project.Description);
    return j;
}

Json OptionsToJson(const FitOptions& o) {
    Json j;
    j["Method"] = FloatJson(o.Method);
    j["SearchTrials"] = o.SearchTrials;
    j["NewtonTrials"] = o.NewtonTrials;
    j["Tolerance"] = FloatJson(o.Tolerance);
    j["PositionSearch"] = SearchLevelsJson(o.PositionSearch);
    j["AreaSearch"] = SearchLevelsJson(o.AreaSearch);
    j["FWHMSearch"] = SearchLevelsJson(o.FWHMSearch);
    j["PositionNewton"] = NewtonLevelsJson(o.PositionNewton);
    j["AreaNewton"] = NewtonLevelsJson(o.AreaNewton);
    j["FWHMNewton"] = NewtonLevelsJson(o.FWHMNewton);
    j["GLSum"] = o.GLSum;
    return j;
}

}  // namespace molvera::cli
