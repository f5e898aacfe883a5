#pragma once
// Errors as values: an operation that can fail returns a Status with the exact message.

#include <string>
#include <utility>

namespace molvera {

class [[nodiscard]] Status {
public:
    Status() = default;
    static Status Ok() { return {}; }
    static Status Error(std::string message) {
        Status s;
        s.failed_ = true;
        s.message_ = std::move(message);
        return s;
    }
    bool ok() const { return !failed_; }
    explicit operator bool() const { return ok(); }
    const std::string& message() const { return message_; }

private:
    bool failed_ = false;
    std::string message_;
};

}  // namespace molvera
