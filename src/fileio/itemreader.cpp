#include "fileio/itemreader.h"

#include <string>

#include "base/numtext.h"

namespace molvera {

bool ItemReader::AtEnd() const {
    for (std::size_t i = pos_; i < text_.size(); ++i) {
        const char c = text_[i];
        if (c != ' ' && c != '\t' && !IsLineEnd(c)) return false;
    }
    return true;
}

std::string ItemReader::Where() const {
    // CR LF, LF and a lone CR each end a line.
    int line = 1;
    for (std::size_t i = 0; i < pos_ && i < text_.size(); ++i) {
        if (text_[i] == '\n' ||
            (text_[i] == '\r' && (i + 1 >= text_.size() || text_[i + 1] != '\n')))
            ++line;
    }
    return "line " + std::to_string(line);
}

void ItemReader::SkipBlanks() {
    while (pos_ < text_.size() && IsBlank(text_[pos_])) ++pos_;
}

void ItemReader::ConsumeLineEnd() {
    if (pos_ < text_.size() && text_[pos_] == '\r') ++pos_;
    if (pos_ < text_.size() && text_[pos_] == '\n') ++pos_;
}

void ItemReader::FinishItem() {
    SkipBlanks();
    if (pos_ >= text_.size()) return;
    if (IsSeparator(text_[pos_]))
        ++pos_;
    else if (IsLineEnd(text_[pos_]))
        ConsumeLineEnd();
}

void ItemReader::SkipEmptyLines() {
    while (pos_ < text_.size() &&
           (text_[pos_] == ' ' || text_[pos_] == '\t' || IsLineEnd(text_[pos_])))
        ++pos_;
}

std::string ItemReader::Quoted() {
    ++pos_;  // opening quote
    const std::size_t start = pos_;
    while (pos_ < text_.size() && text_[pos_] != '"' && !IsLineEnd(text_[pos_])) ++pos_;
    std::string item(text_.substr(start, pos_ - start));
    if (pos_ < text_.size() && text_[pos_] == '"') ++pos_;
    return item;
}

std::optional<std::string> ItemReader::Text() {
    SkipBlanks();
    if (pos_ >= text_.size()) return std::nullopt;
    std::string item;
    if (text_[pos_] == '"') {
        item = Quoted();
    } else {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && !IsSeparator(text_[pos_]) && !IsLineEnd(text_[pos_])) ++pos_;
        item = std::string(text_.substr(start, pos_ - start));
        while (!item.empty() && (item.back() == ' ' || item.back() == '\t')) item.pop_back();
    }
    FinishItem();
    return item;
}

std::optional<std::string> ItemReader::NumberItem() {
    SkipEmptyLines();
    if (pos_ >= text_.size()) return std::nullopt;
    std::string item;
    if (text_[pos_] == '"') {
        item = Quoted();
    } else {
        const std::size_t start = pos_;
        while (pos_ < text_.size() && text_[pos_] != ' ' && text_[pos_] != '\t' &&
               !IsSeparator(text_[pos_]) && !IsLineEnd(text_[pos_]))
            ++pos_;
        item = std::string(text_.substr(start, pos_ - start));
    }
    FinishItem();
    return item;
}

std::optional<double> ItemReader::Number() {
    const std::optional<std::string> item = NumberItem();
    if (!item || LeadingNumberLength(*item) == 0) return std::nullopt;
    return LeadingNumber(*item);
}

std::optional<Int16> ValueAfterEquals(std::string_view text) {
    const std::size_t eq = text.find('=');
    if (eq != std::string_view::npos) text.remove_prefix(eq + 1);
    return ToInt16(LeadingNumber(text));
}

}  // namespace molvera
