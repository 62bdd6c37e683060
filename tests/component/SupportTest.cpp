// Arithmetic, texts, string table, localization, registry reader and Min.
#include <cmath>
#include <limits>

#include "support/Arithmetic.h"
#include "support/Form.h"
#include "support/GUIApi.h"
#include "support/Text.h"
#include "support/basApi.h"
#include "tests/component/Fixture.h"

namespace orvo {
namespace {

constexpr Long kMax = std::numeric_limits<Long>::max();
constexpr Long kLow = std::numeric_limits<Long>::min();

Long NumberOf(const std::function<void()>& call) {
    try {
        call();
    } catch (const RuntimeError& error) {
        return error.Number();
    }
    return 0;
}

TEST(ArithmeticTest, RoundsHalfToEvenAndChecksEveryResult) {
    for (const auto& [value, rounded] : std::vector<std::pair<double, double>>{{2.5, 2},
                                                                               {3.5, 4},
                                                                               {-2.5, -2},
                                                                               {-3.5, -4},
                                                                               {250.50000001, 251},
                                                                               {-0.5, 0},
                                                                               {0.49999999999999994, 0}}) {
        EXPECT_EQ(RoundHalfEven(value), rounded) << value;
    }
    EXPECT_EQ(RoundUp(250.3), 251);
    EXPECT_EQ(RoundUp(256), 256);
    EXPECT_EQ(RoundUp(257), 258);
    EXPECT_EQ(RoundUp(0), 0);
    EXPECT_EQ(ToLong(2147483647.4), kMax);
    EXPECT_EQ(ToLong(-2147483648.5), kLow);
    EXPECT_EQ(NumberOf([] { ToLong(2147483647.5); }), 6);
    EXPECT_EQ(NumberOf([] { ToLong(std::nan("")); }), 6);
    EXPECT_EQ(NumberOf([] { Add(kMax, 1); }), 6);
    EXPECT_EQ(NumberOf([] { Subtract(kLow, 1); }), 6);
    EXPECT_EQ(NumberOf([] { Multiply(65536, 32768); }), 6);
    EXPECT_EQ(Multiply(-65536, 32768), kLow);
    EXPECT_EQ(NumberOf([] { Divide(1, 0); }), 11);
    EXPECT_EQ(NumberOf([] { Divide(0, 0); }), 6);
    EXPECT_EQ(NumberOf([] { Divide(1e308, 1e-10); }), 6);
    EXPECT_EQ(NumberOf([] { Mod(5, 0); }), 11);
    EXPECT_EQ(Mod(-7, 3), -1);
    for (const auto& [tile, count] : std::vector<std::pair<Long, Long>>{
             {250, 4}, {252, 4}, {1000, 1}, {1001, 1}, {3, 334}, {-10, -100}, {257, 4}}) {
        EXPECT_EQ(TilesToCover(1000, tile), count) << tile;
    }
}

TEST(TextTest, CaseAndNumberRules) {
    EXPECT_EQ(LCase("TIF ÄÖÜ ÉŒŸ"), "tif äöü éœÿ");
    EXPECT_EQ(UCase("tif äöüß éœÿ ž"), "TIF ÄÖÜß ÉŒŸ Ž");
    EXPECT_EQ(UCase("×÷ €"), "×÷ €");
    EXPECT_EQ(AfterLast("owner.ortho", '.'), "ortho");
    EXPECT_EQ(AfterLast("ortho", '.'), "ortho");
    for (const auto& [value, text] :
         std::vector<std::pair<double, std::string>>{{0.1 + 0.2, "0,3"},
                                                     {-0.0, "0"},
                                                     {123456789012345, "123456789012345"},
                                                     {1e15, "1E+15"},
                                                     {-1512.25, "-1512,25"}}) {
        EXPECT_EQ(NumberText(value, ","), text);
    }
    for (const char* number : {"8012", " -3 ", "1.5", ".5", "2E3"}) EXPECT_TRUE(IsNumeric(number)) << number;
    for (const char* text : {"", " ", "8012a", "-", "1E", "."}) EXPECT_FALSE(IsNumeric(text)) << text;
}

class StringsTest : public ComponentTest {};

TEST_F(StringsTest, EveryRowIsThereOnceInEveryLanguageButForTheKnownGaps) {
    std::set<Integer> ids;
    for (const auto rows : {StringRows(), ContactRows()}) {
        for (const StringRow& row : rows) EXPECT_TRUE(ids.insert(row.id).second) << row.id;
    }
    const std::set<Integer> germanOnly = {1};
    const std::set<Integer> noFrench = {1, 1001, 1002, 8008, 8011};
    std::size_t german = 0;
    for (const Integer id : ids) {
        if (id >= 10000) continue;
        ++german;
        EXPECT_EQ(ids.contains(static_cast<Integer>(id + 10000)), !germanOnly.contains(id)) << id;
        EXPECT_EQ(ids.contains(static_cast<Integer>(id + 20000)), !noFrench.contains(id)) << id;
    }
    EXPECT_EQ(ids.size(), german * 3 - germanOnly.size() - noFrench.size() + 1)
        << "29202 alone has no German row";
    LangOffset() = 20000;
    EXPECT_EQ(Text(8018), "Ligne N°. :");
    EXPECT_EQ(NumberOf([] { Text(8008); }), 326);
    EXPECT_EQ(NumberOf([] { Text(12768); }), 6);
    EXPECT_EQ(Text(1), LoadResString(1)) << "one row for all languages";
    EXPECT_EQ(Text(8024), "&Commande répèter");
    LangOffset() = 10000;
    EXPECT_EQ(Text(1), LoadResString(1));
    EXPECT_EQ(Text(8018), "Record No.:");
    EXPECT_EQ(LoadResString(102), "keine Kachelgröße bzw. -anzahl angegeben ");
    EXPECT_TRUE(Text(209).ends_with("|*.*\"")) << "the stray quote behind the second pattern list";
}

TEST_F(StringsTest, ContinuedLookupJoinsPiecesAndAdvancesTheId) {
    static constexpr StringRow rows[] = {
        {500, "one_"}, {501, "_"}, {502, "two"}, {503, "lost_"}, {32767, "end"}};
    AddedRows() = rows;
    Integer id = 500;
    EXPECT_EQ(GetResString(id), "onetwo");
    EXPECT_EQ(id, 503);
    EXPECT_EQ(NumberOf([&] { GetResString(id); }), 326);
    id = 32767;
    EXPECT_EQ(NumberOf([&] { GetResString(id); }), 6);
    AddedRows() = {};
}

TEST_F(StringsTest, LocalizationServesAllKindsOfControlAndSkipsWhatFails) {
    using P = Control::Properties;
    LangOffset() = 20000;
    Form form;
    form.self = {"Form", P{{"Caption", "design"}, {"Tag", "8012"}}};
    form.controls = {{"Menu", P{{"Caption", "206"}}},
                     {"Menu", P{}},
                     {"TabStrip", P{}},
                     {"Toolbar", P{}},
                     {"ListView", P{}},
                     {"Label", P{{"Caption", "kept"}, {"Tag", "8008"}, {"ToolTipText", "210"}}},
                     {"TextBox", P{{"Tag", "210"}, {"ToolTipText", "99999"}}},
                     {"Frame", P{{"Caption", "x"}, {"Tag", "8019"}}}};
    form.controls[2].Items() = {{"Tab", P{{"Caption", ""}, {"Tag", "203"}, {"ToolTipText", "204"}}},
                                {"Tab", P{{"Caption", ""}, {"Tag", "204"}}}};
    form.controls[3].Items() = {{"Button", P{{"Tag", "200"}, {"ToolTipText", ""}}}};
    form.controls[4].Items() = {{"ColumnHeader", P{{"Tag", "201"}, {"Text", ""}}}};
    EXPECT_NO_THROW(LoadResStrings(form));
    auto& c = form.controls;
    EXPECT_EQ(form.self.Get("Caption"), "ATTENTION! Une erreur s'est produite ...");
    EXPECT_EQ(c[0].Get("Caption"), "Annuler");
    EXPECT_EQ(c[2].Items()[0].Get("Caption"), "Largeur");
    EXPECT_EQ(c[2].Items()[0].Get("ToolTipText"), "Hauteur");
    EXPECT_EQ(c[2].Items()[1].Get("Caption"), "Hauteur");
    EXPECT_EQ(c[3].Items()[0].Get("ToolTipText"), "Propriétés de la tuile");
    EXPECT_EQ(c[4].Items()[0].Get("Text"), "Format de la tuile");
    EXPECT_EQ(c[5].Get("Caption"), "kept") << "a missing text costs only its own assignment";
    EXPECT_EQ(c[5].Get("ToolTipText"), "Ouvrir");
    EXPECT_EQ(c[6].Get("ToolTipText"), "99999") << "not a 16-bit number";
    EXPECT_EQ(c[7].Get("Caption"), "Information programme :");
}

class RegistryTest : public ComponentTest {};

TEST_F(RegistryTest, ReadsTextAndBinaryAndNothingElse) {
    using namespace std::string_literals;
    const auto get = [] { return GetString(IRegistry::kCurrentUser, "Key", "Value"); };
    const std::tuple<Long, std::string, std::string> cases[] = {
        {1, "C:\\Daten\0"s, "C:\\Daten"},
        {1, "cut\0rest\0"s, "cut"},
        {1, "\0"s, ""},
        {3, "\xFF\xFF"s, "-1"},
        {3, "\0\2"s, "512"},
        {3, "\x80"s, "128"},
        {3, "\1\0\7\7\7\7\7\7\7\7"s, "1"},  // only two bytes count
        {3, ""s, "0"},
        {2, "%TEMP%\0"s, ""},
        {4, "\1\0\0\0"s, ""},
    };
    EXPECT_EQ(std::get<std::string>(get()), "") << "no key";
    world->registry["Key"];
    EXPECT_EQ(std::get<std::string>(get()), "") << "no value";
    for (const auto& [type, bytes, text] : cases) {
        world->registry["Key"]["Value"] = {type, bytes};
        EXPECT_EQ(std::get<std::string>(get()), text) << type << " " << bytes;
    }
    EXPECT_TRUE(world->failures.empty());
    for (const char* endless : {"", "abc"}) {
        world->failures.clear();
        world->registry["Key"]["Value"] = {1, endless};
        EXPECT_TRUE(std::holds_alternative<std::monostate>(get()));
        ASSERT_EQ(world->failures.size(), 1U);
        EXPECT_EQ(ShownError(0) + ShownLabel(0), "5 (Invalid procedure call or argument)GetString");
    }
}

class MinTest : public ComponentTest {};

TEST_F(MinTest, GivesTheSmallestVariantWithItsType) {
    EXPECT_EQ(std::get<double>(Min({Long{3}, 1.5, Long{2}})), 1.5);
    EXPECT_EQ(std::get<Long>(Min({Long{2}, 2.0})), 2) << "the first of equals";
    EXPECT_EQ(std::get<double>(Min({})), 1E+230);
    EXPECT_EQ(std::get<double>(Min({1E+231, std::string("1")})), 1E+230) << "a text is above every number";
    EXPECT_EQ(std::get<bool>(Min({Integer{0}, true})), true) << "True is -1";
    EXPECT_TRUE(std::holds_alternative<std::monostate>(Min({Long{1}, std::monostate{}})));
    EXPECT_EQ(std::get<Long>(Min({Null{}, Long{1}})), 1);
    EXPECT_EQ(Trace().At(0), "14:25:07 [GUIApi] Function Min(ParamArray x()) As Variant");
}

}  // namespace
}  // namespace orvo
