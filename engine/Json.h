#pragma once
// A small read-only JSON reader with tolerant accessors: asking for something that is
// not there gives a default, never an error. Error texts are German, with the byte
// position of the fault.
#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace adv::json {

struct Value {
    enum class Type : int32_t { Null = 0, Boolean = 1, Number = 2, String = 3, Array = 4, Object = 5 };

    Type type = Type::Null;
    bool boolean = false;
    double number = 0.0;
    std::string text;
    std::vector<Value> items;
    std::map<std::string, Value> members;

    Value() = default;
    Value(const Value&) = default;
    Value& operator=(const Value&) = default;
    // A move leaves the source a null value.
    Value(Value&& other) noexcept;
    Value& operator=(Value&& other) noexcept;

    static Value MakeBool(bool b);
    static Value MakeNumber(double n);
    static Value MakeString(std::string s);
    static Value MakeArray(std::vector<Value> v);
    static Value MakeObject(std::map<std::string, Value> m);

    bool Bool(bool fallback) const;
    double Number(double fallback) const;
    // The number truncated towards zero and held to the range of int32_t; a NaN or
    // no number at all gives the fallback.
    int32_t Int(int32_t fallback) const;
    const std::string& String() const;
    const std::vector<Value>& Items() const;
    // A null value when this is no object or has no such member.
    const Value& operator[](const std::string& key) const;
    // A null value when this is no array or the index is out of range.
    const Value& operator[](size_t index) const;
};

// False on a syntax error; then *error (if given) holds the message and out must not be used.
bool Parse(const std::string& text, Value& out, std::string* error);
bool ParseFile(const std::string& path, Value& out, std::string* error);

} // namespace adv::json
