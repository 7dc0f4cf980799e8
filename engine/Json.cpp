#include "engine/Json.h"

#include "pge/Files.h"

#include <cctype>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace adv::json {
namespace {

const Value kNull;
const std::string kEmptyString;
const std::vector<Value> kEmptyItems;

// Deep enough for any real data; the limit keeps the recursion flat against nesting attacks.
constexpr int kMaxDepth = 64;

struct Reader {
    std::string error;
    const std::string& text;
    size_t pos = 0;

    explicit Reader(const std::string& t) : text(t) {}

    bool AtEnd() const { return pos >= text.size(); }
    char Peek() const { return text[pos]; }

    bool Fail(const char* message) {
        if (error.empty()) error = std::string(message) + " (Zeichen " + std::to_string(pos) + ")";
        return false;
    }

    void SkipSpace() {
        while (!AtEnd() && std::isspace(static_cast<unsigned char>(text[pos]))) ++pos;
    }

    bool StartsWith(const char* word) const { return text.compare(pos, std::strlen(word), word) == 0; }

    void AppendUtf8(std::string& out, unsigned long unit) {
        if (unit < 0x80) {
            out += char(unit);
        } else if (unit < 0x800) {
            out += char(0xC0 | (unit >> 6));
            out += char(0x80 | (unit & 0x3F));
        } else {
            out += char(0xE0 | ((unit >> 12) & 0x0F));
            out += char(0x80 | ((unit >> 6) & 0x3F));
            out += char(0x80 | (unit & 0x3F));
        }
    }

    // pos stands on the opening quotation mark.
    bool ParseString(std::string& out) {
        ++pos;
        while (!AtEnd()) {
            const char c = text[pos++];
            if (c == '"') return true;
            if (c != '\\') {
                out += c;
                continue;
            }
            if (AtEnd()) break;
            const char e = text[pos++];
            switch (e) {
            case 'n': out += '\n'; break;
            case 'r': out += '\r'; break;
            case 't': out += '\t'; break;
            case 'b': out += '\b'; break;
            case 'f': out += '\f'; break;
            case 'u': {
                if (text.size() - pos < 4) return Fail("kaputtes \\u");
                char digits[5] = {text[pos], text[pos + 1], text[pos + 2], text[pos + 3], 0};
                pos += 4;
                AppendUtf8(out, std::strtoul(digits, nullptr, 16) & 0xFFFF);
                break;
            }
            default: out += e; break;
            }
        }
        return Fail("Zeichenkette nicht geschlossen");
    }

    bool ParseObject(Value& out, int depth) {
        out = Value::MakeObject({});
        ++pos;
        SkipSpace();
        if (!AtEnd() && Peek() == '}') {
            ++pos;
            return true;
        }
        for (;;) {
            SkipSpace();
            if (AtEnd()) return Fail("unerwartetes Ende");
            if (Peek() != '"') return Fail("Schluessel erwartet");
            std::string key;
            if (!ParseString(key)) return false;
            SkipSpace();
            if (AtEnd()) return Fail("unerwartetes Ende");
            if (Peek() != ':') return Fail("':' erwartet");
            ++pos;
            Value member;
            if (!ParseValue(member, depth + 1)) return false;
            out.members[key] = std::move(member);
            SkipSpace();
            if (AtEnd()) return Fail("unerwartetes Ende");
            const char c = text[pos++];
            if (c == '}') return true;
            if (c != ',') {
                --pos;
                return Fail("',' oder '}' erwartet");
            }
        }
    }

    bool ParseArray(Value& out, int depth) {
        out = Value::MakeArray({});
        ++pos;
        SkipSpace();
        if (!AtEnd() && Peek() == ']') {
            ++pos;
            return true;
        }
        for (;;) {
            Value item;
            if (!ParseValue(item, depth + 1)) return false;
            out.items.push_back(std::move(item));
            SkipSpace();
            if (AtEnd()) return Fail("unerwartetes Ende");
            const char c = text[pos++];
            if (c == ']') return true;
            if (c != ',') {
                --pos;
                return Fail("',' oder ']' erwartet");
            }
        }
    }

    bool ParseValue(Value& out, int depth) {
        if (depth > kMaxDepth) return Fail("zu tief verschachtelt");
        SkipSpace();
        if (AtEnd()) return Fail("unerwartetes Ende");
        switch (Peek()) {
        case '{': return ParseObject(out, depth);
        case '[': return ParseArray(out, depth);
        case '"': {
            std::string s;
            if (!ParseString(s)) return false;
            out = Value::MakeString(std::move(s));
            return true;
        }
        default: break;
        }
        if (StartsWith("true")) {
            pos += 4;
            out = Value::MakeBool(true);
            return true;
        }
        if (StartsWith("false")) {
            pos += 5;
            out = Value::MakeBool(false);
            return true;
        }
        if (StartsWith("null")) {
            pos += 4;
            out = Value();
            return true;
        }
        // The string's own terminator stops strtod at the end of the text.
        const char* start = text.c_str() + pos;
        char* end = nullptr;
        const double n = std::strtod(start, &end);
        if (end == start) return Fail("unbekannter Wert");
        pos += size_t(end - start);
        out = Value::MakeNumber(n);
        return true;
    }
};

} // namespace

Value::Value(Value&& other) noexcept
    : type(std::exchange(other.type, Type::Null)), boolean(std::exchange(other.boolean, false)),
      number(std::exchange(other.number, 0.0)), text(std::move(other.text)), items(std::move(other.items)),
      members(std::move(other.members)) {
    other.text.clear();
    other.items.clear();
    other.members.clear();
}

Value& Value::operator=(Value&& other) noexcept {
    if (this == &other) return *this;
    type = std::exchange(other.type, Type::Null);
    boolean = std::exchange(other.boolean, false);
    number = std::exchange(other.number, 0.0);
    text = std::move(other.text);
    items = std::move(other.items);
    members = std::move(other.members);
    other.text.clear();
    other.items.clear();
    other.members.clear();
    return *this;
}

Value Value::MakeBool(bool b) {
    Value v;
    v.type = Type::Boolean;
    v.boolean = b;
    return v;
}

Value Value::MakeNumber(double n) {
    Value v;
    v.type = Type::Number;
    v.number = n;
    return v;
}

Value Value::MakeString(std::string s) {
    Value v;
    v.type = Type::String;
    v.text = std::move(s);
    return v;
}

Value Value::MakeArray(std::vector<Value> a) {
    Value v;
    v.type = Type::Array;
    v.items = std::move(a);
    return v;
}

Value Value::MakeObject(std::map<std::string, Value> m) {
    Value v;
    v.type = Type::Object;
    v.members = std::move(m);
    return v;
}

bool Value::Bool(bool fallback) const { return type == Type::Boolean ? boolean : fallback; }
double Value::Number(double fallback) const { return type == Type::Number ? number : fallback; }
int32_t Value::Int(int32_t fallback) const {
    if (type != Type::Number || std::isnan(number)) return fallback;
    if (number <= double(INT32_MIN)) return INT32_MIN;
    if (number >= double(INT32_MAX)) return INT32_MAX;
    return int32_t(number);
}
const std::string& Value::String() const { return type == Type::String ? text : kEmptyString; }
const std::vector<Value>& Value::Items() const { return type == Type::Array ? items : kEmptyItems; }

const Value& Value::operator[](const std::string& key) const {
    if (type != Type::Object) return kNull;
    const auto it = members.find(key);
    return it == members.end() ? kNull : it->second;
}

const Value& Value::operator[](size_t index) const {
    return type == Type::Array && index < items.size() ? items[index] : kNull;
}

bool Parse(const std::string& text, Value& out, std::string* error) {
    Reader reader(text);
    bool ok = reader.ParseValue(out, 0);
    if (ok) {
        reader.SkipSpace();
        if (!reader.AtEnd()) ok = reader.Fail("Text nach dem Ende");
    }
    if (!ok && error) *error = reader.error;
    return ok;
}

bool ParseFile(const std::string& path, Value& out, std::string* error) {
    std::string text;
    if (!pge::files::ReadAll(path, text, pge::files::kMaxDataBytes)) {
        if (error) *error = "Datei fehlt: " + path;
        return false;
    }
    return Parse(text, out, error);
}

} // namespace adv::json
