#include "engine/Json.h"
#include <gtest/gtest.h>
#include <string>

using adv::json::Value;

namespace {

std::string ErrorOf(const std::string& text) {
    Value v;
    std::string error;
    EXPECT_FALSE(adv::json::Parse(text, v, &error)) << text;
    return error;
}

Value Parsed(const std::string& text) {
    Value v;
    std::string error;
    EXPECT_TRUE(adv::json::Parse(text, v, &error)) << text << ": " << error;
    return v;
}

} // namespace

TEST(JsonErrors, MessagesPositionsAndNesting) {
    const std::pair<std::string, std::string> cases[] = {
        {"", "unerwartetes Ende (Zeichen 0)"},        {"   ", "unerwartetes Ende (Zeichen 3)"},
        {"[1,2", "unerwartetes Ende (Zeichen 4)"},    {"{\"a\":", "unerwartetes Ende (Zeichen 5)"},
        {"{\"a\"", "unerwartetes Ende (Zeichen 4)"},  {"[1 2]", "',' oder ']' erwartet (Zeichen 3)"},
        {"{\"a\":1,}", "Schluessel erwartet (Zeichen 7)"}, {"{1:2}", "Schluessel erwartet (Zeichen 1)"},
        {"{\"a\" 1}", "':' erwartet (Zeichen 5)"},    {"{\"a\":1 \"b\":2}", "',' oder '}' erwartet (Zeichen 7)"},
        {"[1,]", "unbekannter Wert (Zeichen 3)"},     {"@", "unbekannter Wert (Zeichen 0)"},
        {"1 2", "Text nach dem Ende (Zeichen 2)"},    {"truex", "Text nach dem Ende (Zeichen 4)"},
        {"\"abc", "Zeichenkette nicht geschlossen (Zeichen 4)"},
        {"\"abc\\", "Zeichenkette nicht geschlossen (Zeichen 5)"},
        {"\"\\u12", "kaputtes \\u (Zeichen 3)"},
        // Four bytes are taken as they come, even the closing quotation mark.
        {"[\"\\u12\"]", "Zeichenkette nicht geschlossen (Zeichen 8)"},
        {std::string(66, '[') + std::string(66, ']'), "zu tief verschachtelt (Zeichen 65)"},
    };
    for (const auto& [text, message] : cases) EXPECT_EQ(ErrorOf(text), message) << text;
    // 65 levels still parse; objects count the same: the 66th opens at byte 5 * 65 of {"a":{"a":...
    EXPECT_EQ(Parsed(std::string(65, '[') + std::string(65, ']'))[size_t(0)][size_t(0)].type, Value::Type::Array);
    std::string objects;
    for (int i = 0; i < 66; ++i) objects += "{\"a\":";
    EXPECT_EQ(ErrorOf(objects + "1" + std::string(66, '}')), "zu tief verschachtelt (Zeichen 325)");
    Value v;
    EXPECT_FALSE(adv::json::Parse("[1,", v, nullptr));
}

TEST(JsonErrors, HundredMegabyteNestingIsRejectedAtTheLimit) {
    std::string attack(100u << 20, '[');
    EXPECT_EQ(ErrorOf(attack), "zu tief verschachtelt (Zeichen 65)");
    for (size_t i = 1; i < attack.size(); i += 2) attack[i] = '{';
    EXPECT_EQ(ErrorOf(attack), "Schluessel erwartet (Zeichen 2)"); // [{[{... : the object wants a key
}

TEST(JsonValues, EscapesLiteralsContainersAndFallbacks) {
    // \u gives UTF-8; surrogate halves stay apart as two three-byte sequences; raw bytes pass unchecked.
    EXPECT_EQ(Parsed("\"\\u00e4\\u0041\\u20AC\\ud83d\\ude00\"").String(), "\xC3\xA4" "A\xE2\x82\xAC\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(Parsed("\"a\\nb\\rc\\td\\be\\ff\\\"\\\\\\/\\q\"").String(), "a\nb\rc\td\be\ff\"\\/q");
    EXPECT_EQ(Parsed("\"x\ny\xFF\"").String(), "x\ny\xFF");
    const Value v = Parsed(" { \"b\" : [true, false, null, -2.5e1, +3, 0x10], \"a\": \"s\", \"a\": 4 } ");
    EXPECT_EQ(v["a"].Number(0), 4.0); // the later duplicate wins
    const Value& b = v["b"];
    ASSERT_EQ(b.Items().size(), 6u);
    EXPECT_TRUE(b[size_t(0)].Bool(false) && !b[1].Bool(true) && b[2].type == Value::Type::Null);
    EXPECT_EQ(std::vector<double>({b[3].Number(0), b[4].Number(0), b[5].Number(0)}), std::vector<double>({-25, 3, 16}));
    // Asking for what is not there gives the fallback.
    EXPECT_TRUE(b[3].String().empty() && b[3].Bool(true) && b[3].Items().empty() && !v["x"]["y"][3].Bool(false));
    EXPECT_EQ(b[3]["a"].Number(7.5) + b[6].Number(-1), 6.5);
    // Integers truncate, saturate and take no NaN.
    const Value n = Parsed("[3.9, -3.9, 1e10, -1e10, 1e300, nan, -inf, 2147483647, \"7\"]");
    const std::vector<int32_t> ints = {3, -3, INT32_MAX, INT32_MIN, INT32_MAX, 5, INT32_MIN, INT32_MAX, 5};
    for (size_t i = 0; i < ints.size(); ++i) EXPECT_EQ(n[i].Int(5), ints[i]) << i;
}
