#include "engine/Json.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <random>
#include <string>

namespace {

using adv::json::Value;

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

std::string TempPath(const std::string& name) {
    return std::string(TORVANE_BINARY_DIR) + "/json_test_" + name;
}

} // namespace

TEST(JsonErrors, MessagesAndPositions) {
    EXPECT_EQ(ErrorOf(""), "unerwartetes Ende (Zeichen 0)");
    EXPECT_EQ(ErrorOf("   "), "unerwartetes Ende (Zeichen 3)");
    EXPECT_EQ(ErrorOf("[1,2"), "unerwartetes Ende (Zeichen 4)");
    EXPECT_EQ(ErrorOf("[1 2]"), "',' oder ']' erwartet (Zeichen 3)");
    EXPECT_EQ(ErrorOf("{\"a\":1,}"), "Schluessel erwartet (Zeichen 7)");
    EXPECT_EQ(ErrorOf("{\"a\" 1}"), "':' erwartet (Zeichen 5)");
    EXPECT_EQ(ErrorOf("{\"a\":1 \"b\":2}"), "',' oder '}' erwartet (Zeichen 7)");
    EXPECT_EQ(ErrorOf("{1:2}"), "Schluessel erwartet (Zeichen 1)");
    EXPECT_EQ(ErrorOf("[1,]"), "unbekannter Wert (Zeichen 3)");
    EXPECT_EQ(ErrorOf("1 2"), "Text nach dem Ende (Zeichen 2)");
    EXPECT_EQ(ErrorOf("truex"), "Text nach dem Ende (Zeichen 4)");
    EXPECT_EQ(ErrorOf("\"abc"), "Zeichenkette nicht geschlossen (Zeichen 4)");
    EXPECT_EQ(ErrorOf("\"abc\\"), "Zeichenkette nicht geschlossen (Zeichen 5)");
    EXPECT_EQ(ErrorOf("{\"a\":"), "unerwartetes Ende (Zeichen 5)");
    EXPECT_EQ(ErrorOf("{\"a\""), "unerwartetes Ende (Zeichen 4)");
    EXPECT_EQ(ErrorOf("{"), "unerwartetes Ende (Zeichen 1)");
    EXPECT_EQ(ErrorOf("\"\\u12"), "kaputtes \\u (Zeichen 3)");
    // Four bytes are taken as they come, even the closing quotation mark.
    EXPECT_EQ(ErrorOf("[\"\\u12\"]"), "Zeichenkette nicht geschlossen (Zeichen 8)");
    EXPECT_EQ(ErrorOf("@"), "unbekannter Wert (Zeichen 0)");
}

TEST(JsonErrors, FirstErrorCountsAndNullErrorPointerIsFine) {
    Value v;
    EXPECT_FALSE(adv::json::Parse("[1,", v, nullptr));
    std::string error = "untouched";
    EXPECT_TRUE(adv::json::Parse("[1]", v, &error));
    EXPECT_EQ(error, "untouched");
}

TEST(JsonDepth, SixtyFiveLevelsParseSixtySixFail) {
    const Value v = Parsed(std::string(65, '[') + std::string(65, ']'));
    const Value* inner = &v;
    for (int i = 0; i < 64; ++i) inner = &(*inner)[size_t(0)];
    EXPECT_EQ(inner->type, Value::Type::Array);
    EXPECT_TRUE(inner->Items().empty());
    EXPECT_EQ(ErrorOf(std::string(66, '[') + std::string(66, ']')), "zu tief verschachtelt (Zeichen 65)");
    // Objects count the same way: the 66th level opens at byte 5 * 65 of {"a":{"a":...
    std::string objects;
    for (int i = 0; i < 66; ++i) objects += "{\"a\":";
    objects += "1" + std::string(66, '}');
    EXPECT_EQ(ErrorOf(objects), "zu tief verschachtelt (Zeichen 325)");
}

TEST(JsonDepth, HundredMegabyteNestingIsRejectedAtTheLimit) {
    std::string attack(100u << 20, '[');
    EXPECT_EQ(ErrorOf(attack), "zu tief verschachtelt (Zeichen 65)");
    for (size_t i = 1; i < attack.size(); i += 2) attack[i] = '{';
    // [{[{... : an object wants a key, so the second byte already fails.
    EXPECT_EQ(ErrorOf(attack), "Schluessel erwartet (Zeichen 2)");
}

TEST(JsonStrings, EscapesAndCodeUnits) {
    EXPECT_EQ(Parsed("\"\\u00e4\"").String(), "\xC3\xA4");
    EXPECT_EQ(Parsed("\"\\u0041\"").String(), "A");
    EXPECT_EQ(Parsed("\"\\u20AC\"").String(), "\xE2\x82\xAC");
    // Surrogate halves stay apart: two three-byte sequences.
    EXPECT_EQ(Parsed("\"\\ud83d\\ude00\"").String(), "\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(Parsed("\"a\\nb\\rc\\td\\be\\ff\"").String(), "a\nb\rc\td\be\ff");
    EXPECT_EQ(Parsed("\"\\\"\\\\\\/\\q\"").String(), "\"\\/q");
    // Raw bytes pass unchecked.
    EXPECT_EQ(Parsed("\"x\ny\xFF\"").String(), "x\ny\xFF");
}

TEST(JsonValues, LiteralsNumbersAndContainers) {
    const Value v = Parsed(" { \"b\" : [true, false, null, -2.5e1, +3, 0x10], \"a\": \"s\", \"a\": 4 } ");
    ASSERT_EQ(v.type, Value::Type::Object);
    EXPECT_EQ(v.members.size(), 2u);
    EXPECT_EQ(v.members.begin()->first, "a"); // sorted by key
    EXPECT_EQ(v["a"].Number(0), 4.0);         // the later duplicate wins
    const Value& b = v["b"];
    ASSERT_EQ(b.Items().size(), 6u);
    EXPECT_TRUE(b[size_t(0)].Bool(false));
    EXPECT_FALSE(b[1].Bool(true));
    EXPECT_EQ(b[2].type, Value::Type::Null);
    EXPECT_EQ(b[3].Number(0), -25.0);
    EXPECT_EQ(b[4].Number(0), 3.0);
    EXPECT_EQ(b[5].Number(0), 16.0);
    EXPECT_EQ(Parsed("{}").type, Value::Type::Object);
    EXPECT_EQ(Parsed("[ ]").type, Value::Type::Array);
}

TEST(JsonAccessors, MissingPiecesGiveFallbacks) {
    const Value three = Value::MakeNumber(3);
    EXPECT_EQ(three.String(), "");
    EXPECT_TRUE(three.Bool(true));
    EXPECT_EQ(three["a"].type, Value::Type::Null);
    EXPECT_EQ(three["a"].Number(7.5), 7.5);
    EXPECT_TRUE(three.Items().empty());
    EXPECT_EQ(three[size_t(0)].type, Value::Type::Null);

    const Value list = Value::MakeArray({Value::MakeString("x")});
    EXPECT_EQ(list[size_t(0)].String(), "x");
    EXPECT_EQ(list[1].Number(-1), -1.0);
    EXPECT_EQ(list["x"]["y"][3].Bool(false), false);
    EXPECT_EQ(Value::MakeObject({{"k", Value::MakeBool(true)}})["k"].Bool(false), true);
}

TEST(JsonAccessors, MoveLeavesTheSourceEmpty) {
    Value a = Value::MakeArray({Value::MakeNumber(1), Value::MakeNumber(2)});
    Value b = std::move(a);
    EXPECT_EQ(b.Items().size(), 2u);
    EXPECT_EQ(a.type, Value::Type::Null); // NOLINT(bugprone-use-after-move)
    EXPECT_TRUE(a.items.empty());
    Value c;
    c = std::move(b);
    EXPECT_EQ(c.Items().size(), 2u);
    EXPECT_EQ(b.type, Value::Type::Null); // NOLINT(bugprone-use-after-move)
    Value copy = c;
    EXPECT_EQ(copy[1].Number(0), 2.0);
    EXPECT_EQ(c[1].Number(0), 2.0);
}

TEST(JsonFiles, MissingFileAndParseErrorWithoutTheName) {
    Value v;
    std::string error;
    EXPECT_FALSE(adv::json::ParseFile(TempPath("does_not_exist.json"), v, &error));
    EXPECT_EQ(error, "Datei fehlt: " + TempPath("does_not_exist.json"));

    const std::string path = TempPath("good.json");
    std::ofstream(path, std::ios::binary) << "{\"cycles\": [{\"start\": 1}]}";
    ASSERT_TRUE(adv::json::ParseFile(path, v, &error));
    EXPECT_EQ(v["cycles"][size_t(0)]["start"].Number(0), 1.0);

    std::ofstream(path, std::ios::binary | std::ios::trunc) << "[1,";
    EXPECT_FALSE(adv::json::ParseFile(path, v, &error));
    EXPECT_EQ(error, "unerwartetes Ende (Zeichen 3)");
    std::remove(path.c_str());
}

TEST(JsonFiles, RandomBytesGiveAnErrorText) {
    std::mt19937 rng(7);
    const std::string path = TempPath("random.json");
    for (int round = 0; round < 20; ++round) {
        std::string bytes(4096, '\0');
        for (char& c : bytes) c = char(rng() & 0xFF);
        std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
        Value v;
        std::string error;
        EXPECT_FALSE(adv::json::ParseFile(path, v, &error));
        EXPECT_NE(error.find(" (Zeichen "), std::string::npos) << error;
    }
    std::remove(path.c_str());
}
