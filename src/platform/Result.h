#pragma once

#include <utility>
#include <variant>

namespace mirovane {

/// A value, or the reason why it could not be had. Reading the side that is not there is a programming error.
template <typename Value, typename Error>
class Result {
public:
    Result(Value value) : content_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : content_(std::in_place_index<1>, std::move(error)) {}

    explicit operator bool() const { return content_.index() == 0; }
    bool ok() const { return content_.index() == 0; }

    const Value& value() const& { return std::get<0>(content_); }
    Value& value() & { return std::get<0>(content_); }
    Value&& value() && { return std::get<0>(std::move(content_)); }
    const Error& error() const { return std::get<1>(content_); }

private:
    std::variant<Value, Error> content_;
};

} // namespace mirovane
