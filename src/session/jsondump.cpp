#include "session/jsondump.h"

#include <array>
#include <charconv>
#include <cmath>
#include <type_traits>

#include "base/numtext.h"
#include "model/recordfields.h"

namespace molvera {

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

// Every field of a record as VisitFields lists them, under its own name.
// The visitor only adds to a JSON object (nlohmann may throw on allocation only).
// NOLINTNEXTLINE(bugprone-exception-escape)
class JsonFields : public EveryField {
public:
    template <typename T>
    void Field(const char* name, const T& x) {
        if constexpr (std::is_same_v<T, float>) {
            json_[name] = FloatJson(x);
        } else if constexpr (std::is_same_v<T, Text20>) {
            json_[name] = TextJson(x.Str());
        } else {
            json_[name] = static_cast<Int16>(x);
        }
    }

    template <std::size_t N>
    void Indices(const char* name, const std::array<Int16, N>& slots, int) {
        json_[name] = slots;
    }

    void Points(const char* name, const SingleArray& a, std::size_t) { json_[name] = ArrayJson(a); }
    void Curve(const char* name, const SingleArray& a, Int16) { json_[name] = ArrayJson(a); }

    template <typename R>
    void Record(const char* name, const R& sub) {
        json_[name] = RecordJson(sub);
    }

    template <typename R>
    static Json RecordJson(const R& record) {
        JsonFields fields;
        VisitFields(record, fields);
        return std::move(fields.json_);
    }

private:
    Json json_;
};

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
    for (const Region& r : project.Regions) j["Regions"].push_back(JsonFields::RecordJson(r));
    j["Peaks"] = Json::array();
    for (const Peak& p : project.Peaks) j["Peaks"].push_back(JsonFields::RecordJson(p));
    j["Constraints"] = Json::array();
    for (const PeakConstraint& c : project.Constraints)
        j["Constraints"].push_back(JsonFields::RecordJson(c));
    j["CurrentRegion"] = project.CurrentRegion;
    j["CurrentPeak"] = project.CurrentPeak;
    j["EditPeak"] = JsonFields::RecordJson(project.EditPeak);
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

}  // namespace molvera
