#include "fileio/optionfile.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "base/binstream.h"
#include "base/messages.h"
#include "fileio/files.h"

namespace molvera {

namespace {

std::size_t FieldSize(const std::variant<float*, std::int16_t*>& v) {
    return std::holds_alternative<float*>(v) ? 4 : 2;
}

}  // namespace

std::vector<OptionField> OptionFileFields(FitOptions& o) {
    std::vector<OptionField> fields;
    std::size_t offset = 0;
    auto add = [&](std::string name, std::variant<float*, std::int16_t*> value) {
        const std::size_t size = FieldSize(value);
        fields.push_back({std::move(name), offset, value});
        offset += size;
    };
    add("Method", &o.Method);
    add("SearchTrials", &o.SearchTrials);
    add("NewtonTrials", &o.NewtonTrials);
    add("Tolerance", &o.Tolerance);
    // The levels are interleaved by level number: all six rows of level 1, then level 2...
    for (int i = 0; i < kLevels; ++i) {
        const std::string level = "[" + std::to_string(i + 1) + "].";
        for (auto [name, rows] :
             {std::pair{"PositionSearch", &o.PositionSearch},
              std::pair{"AreaSearch", &o.AreaSearch}, std::pair{"FWHMSearch", &o.FWHMSearch}}) {
            SearchLevel& l = (*rows)[i];
            add(name + level + "Use", &l.Use);
            add(name + level + "Range", &l.Range);
            add(name + level + "Step", &l.Step);
        }
        for (auto [name, rows] :
             {std::pair{"PositionNewton", &o.PositionNewton},
              std::pair{"AreaNewton", &o.AreaNewton}, std::pair{"FWHMNewton", &o.FWHMNewton}}) {
            NewtonLevel& l = (*rows)[i];
            add(name + level + "Use", &l.Use);
            add(name + level + "Delta", &l.Delta);
        }
    }
    add("GLSum", &o.GLSum);
    return fields;
}

Status ReadOptionFile(FitOptions& options, const std::string& path) {
    std::string bytes;
    {
        std::ifstream file(path, std::ios::binary);
        if (!file)
            return WithFileName(Status::Error(msg::kErrorReadingFile, "cannot be opened"), path);
        bytes.resize(kOptionFileSize);
        file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
        bytes.resize(static_cast<std::size_t>(file.gcount()));
    }
    return WithFileName(ReadOptionBytes(options, bytes), path);
}

Status ReadOptionBytes(FitOptions& options, std::string_view bytes) {
    // Read into a copy: a damaged file leaves the options as they were.
    FitOptions read = options;
    BinaryReader in(bytes);
    const std::vector<OptionField> fields = OptionFileFields(read);
    for (std::size_t k = 0; k < fields.size(); ++k) {
        const OptionField& f = fields[k];
        if (in.Remaining() < FieldSize(f.value)) {
            // A file that ends after the level blocks keeps the previous GLSum.
            if (k + 1 == fields.size()) break;
            return Status::Error(
                msg::kErrorReadingFile,
                std::to_string(bytes.size()) + " bytes: the file ends inside " + f.name);
        }
        if (auto* p = std::get_if<float*>(&f.value)) {
            **p = in.F32();
        } else {
            *std::get<std::int16_t*>(f.value) = in.I16();
        }
    }
    options = read;
    return Status::Ok();
}

std::string OptionFileBytes(const FitOptions& options) {
    FitOptions copy = options;
    std::ostringstream bytes;
    BinaryWriter out(bytes);
    for (const OptionField& f : OptionFileFields(copy)) {
        if (auto* p = std::get_if<float*>(&f.value)) {
            out.F32(**p);
        } else {
            out.I16(*std::get<std::int16_t*>(f.value));
        }
    }
    return std::move(bytes).str();
}

Status WriteOptionFile(const FitOptions& options, const std::string& path) {
    return WriteFileBytes(path, OptionFileBytes(options), msg::kErrorWritingFile);
}

std::string InstalledDataDir() { return MOLVERA_DATA_DIR; }

std::vector<std::string> DefaultOptionsFolders(const std::string& dataDir) {
    std::vector<std::string> folders{""};
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const char* home = std::getenv("HOME");
    if (config && config[0] == '/')
        folders.push_back(std::string(config) + "/molvera");
    else if (home && home[0] == '/')
        folders.push_back(std::string(home) + "/.config/molvera");
    folders.push_back(dataDir);
    return folders;
}

std::string FindDefaultOptions(const std::vector<std::string>& folders) {
    for (const std::string& folder : folders) {
        std::string path = folder.empty() ? "default.opa" : folder + "/default.opa";
        std::error_code ec;
        if (std::filesystem::is_regular_file(path, ec)) return path;
    }
    return "";
}

}  // namespace molvera
