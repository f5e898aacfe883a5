#pragma once
// Errors as values: an operation that can fail returns a Status with the exact message
// the program shows, and a detail that says where and why (file, line or byte, field).

#include <string>
#include <utility>

namespace molvera {

class [[nodiscard]] Status {
public:
    Status() = default;
    static Status Ok() { return {}; }
    static Status Error(std::string message, std::string detail = {}) {
        Status s;
        s.failed_ = true;
        s.message_ = std::move(message);
        s.detail_ = std::move(detail);
        return s;
    }
    bool ok() const { return !failed_; }
    explicit operator bool() const { return ok(); }
    /// The fixed text the program shows ("Error in reading file").
    const std::string& message() const { return message_; }
    /// Where and why, for the user who wants to know ("c1s.vms, line 57: a count was
    /// expected"); empty when there is nothing to add.
    const std::string& detail() const { return detail_; }
    /// The message, with the detail as a second line when there is one.
    std::string Text() const { return detail_.empty() ? message_ : message_ + "\n" + detail_; }

private:
    bool failed_ = false;
    std::string message_;
    std::string detail_;
};

}  // namespace molvera
