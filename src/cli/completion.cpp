#include "cli/completion.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>

namespace molvera::cli {

namespace {

// The script's helper: completes the word under the cursor from an action, "=WORDS" those
// words, ".EXTS" folders and the files ending in one of EXTS (either case), "." any file,
// "" nothing.
constexpr const char* kOffer =
    R"(# bash completion for molvera-cli (written by `molvera-cli completion bash`)

_molvera_cli_offer() {
    local cur=${COMP_WORDS[COMP_CWORD]} ext
    case $1 in
    =*) mapfile -t COMPREPLY < <(compgen -W "${1#=}" -- "$cur") ;;
    .) compopt -o filenames 2>/dev/null
       mapfile -t COMPREPLY < <(compgen -f -- "$cur") ;;
    .*) compopt -o filenames 2>/dev/null
        mapfile -t COMPREPLY < <(compgen -d -- "$cur"
            for ext in ${1#.}; do
                compgen -f -X "!*.$ext" -- "$cur"
                compgen -f -X "!*.${ext^^}" -- "$cur"
            done) ;;
    esac
}

)";

// The completion function: the commands after the program's name, then for the command
// given (the cases written from the parser) the choices or files of the option before the
// cursor, its options, or what its file argument under the cursor takes.
constexpr const char* kStart = R"(_molvera_cli() {
    local cur=${COMP_WORDS[COMP_CWORD]} prev=${COMP_WORDS[COMP_CWORD-1]}
    [[ $prev == = ]] && prev=${COMP_WORDS[COMP_CWORD-2]}  # --type=...
    COMPREPLY=()
    if ((COMP_CWORD == 1)); then
        _molvera_cli_offer '=)";
constexpr const char* kCommands = R"(--help --version'
        return
    fi
    local options values files many i n=0
    case ${COMP_WORDS[1]} in
)";
constexpr const char* kEnd = R"(    *) return ;;
    esac
    if [[ $cur == -* ]]; then
        _molvera_cli_offer "=$options"
        return
    fi
    # The file argument under the cursor: the words before it that are neither options
    # nor their values; the last one repeats when it takes many files.
    for ((i = 2; i < COMP_CWORD; i++)); do
        if [[ ${COMP_WORDS[i+1]} == = ]]; then
            ((i += 2))
        elif [[ ${COMP_WORDS[i]} != -* ]]; then
            ((++n))
        elif [[ $values == *" ${COMP_WORDS[i]} "* ]]; then
            ((++i))
        fi
    done
    ((many && n >= ${#files[@]})) && n=$((${#files[@]} - 1))
    ((n < ${#files[@]})) && _molvera_cli_offer "${files[n]}"
}

complete -F _molvera_cli molvera-cli
)";

// What completion offers for a value named `value` in the help: the words it lists
// ("shirley|linear|tougaard"); else the files with the extensions it names
// ("FILE.rpa|PROJECT.xps"), any file for a file argument that names none ("FILES"), and
// nothing for a number ("N").
std::string Action(const std::string& value, bool file) {
    std::string words, extensions;
    for (const std::string& word : ValueWords(value)) words += " " + word;
    if (!words.empty()) return "=" + words.substr(1);
    std::size_t start = 0;
    for (std::size_t bar = 0; bar != std::string::npos; start = bar + 1) {
        bar = value.find('|', start);
        const std::string part = value.substr(start, bar - start);
        if (const std::size_t dot = part.rfind('.'); dot != std::string::npos)
            extensions += " " + part.substr(dot + 1);
    }
    if (!extensions.empty()) return "." + extensions.substr(1);
    return file ? "." : "";
}

}  // namespace

std::vector<std::string> ValueWords(std::string_view value) {
    std::vector<std::string> words;
    std::size_t start = 0;
    for (std::size_t bar = 0; bar != std::string_view::npos; start = bar + 1) {
        bar = value.find('|', start);
        const std::string_view part = value.substr(start, bar - start);
        if (!part.empty() &&
            std::none_of(part.begin(), part.end(), [](unsigned char c) { return std::isupper(c); }))
            words.emplace_back(part);
    }
    return words;
}

std::string BashCompletion(const CLI::App& app) {
    std::string commands;
    std::string cases;
    for (const CLI::App* sub : app.get_subcommands({})) {
        commands += sub->get_name() + " ";
        std::string options, values, files, prev;
        bool many = false;
        for (const CLI::Option* o : sub->get_options()) {
            if (o->get_positional()) {
                const std::string value = o->get_type_name();
                files += (files.empty() ? "'" : " '") +
                         Action(value.empty() ? o->get_name() : value, true) + "'";
                many = o->get_expected_max() > 1;
                continue;
            }
            options += " " + o->get_name();
            if (o->get_expected_max() == 0) continue;  // a flag
            values += " " + o->get_name();
            prev += "        " + o->get_name() + ") _molvera_cli_offer '" +
                    Action(o->get_type_name(), false) + "'; return ;;\n";
        }
        cases += "    " + sub->get_name() + ")\n        options='" + options.substr(1) +
                 "'\n        values='" + values + " '\n        files=(" + files + ")\n" +
                 "        many=" + (many ? "1" : "0") + "\n        case $prev in\n" + prev +
                 "        esac ;;\n";
    }
    return std::string(kOffer) + kStart + commands + kCommands + cases + kEnd;
}

}  // namespace molvera::cli
