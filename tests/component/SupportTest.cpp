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

using testing::ElementsAre;
using testing::UnorderedElementsAre;

constexpr Long kMax = std::numeric_limits<Long>::max();
constexpr Long kLow = std::numeric_limits<Long>::min();

TEST(ArithmeticTest, RoundsHalfToEvenAndChecksEveryResult) {
    const double rounded[] = {
        2.5, 2, 3.5, 4, -2.5, -2, -3.5, -4, 250.50000001, 251, -0.5, 0, 0.49999999999999994, 0};
    for (std::size_t n = 0; n < std::size(rounded); n += 2)
        EXPECT_EQ(RoundHalfEven(rounded[n]), rounded[n + 1]);
    const double up[] = {250.3, 251, 256, 256, 257, 258, 0, 0};
    for (std::size_t n = 0; n < std::size(up); n += 2) EXPECT_EQ(RoundUp(up[n]), up[n + 1]);
    EXPECT_EQ(ToLong(2147483647.4), kMax);
    EXPECT_EQ(ToLong(-2147483648.5), kLow);
    EXPECT_EQ(Multiply(-65536, 32768), kLow);
    EXPECT_EQ(Mod(-7, 3), -1);
    for (const auto& overflow : std::vector<std::function<void()>>{
             [] { ToLong(2147483647.5); }, [] { ToLong(std::nan("")); }, [] { Add(kMax, 1); },
             [] { Subtract(kLow, 1); }, [] { Multiply(65536, 32768); }, [] { Divide(0, 0); },
             [] { Divide(1e308, 1e-10); }})
        EXPECT_EQ(NumberOf(overflow), 6);
    EXPECT_EQ(NumberOf([] { Divide(1, 0); }) + NumberOf([] { Mod(5, 0); }), 11 + 11);
    const Long tiles[] = {250, 4, 252, 4, 1000, 1, 1001, 1, 3, 334, -10, -100, 257, 4};
    for (std::size_t n = 0; n < std::size(tiles); n += 2)
        EXPECT_EQ(TilesToCover(1000, tiles[n]), tiles[n + 1]);
}

TEST(TextTest, CaseAndNumberRules) {
    EXPECT_EQ(LCase("TIF ÄÖÜ ÉŒŸ"), "tif äöü éœÿ");
    EXPECT_EQ(UCase("tif äöüß éœÿ ž ×÷ €"), "TIF ÄÖÜß ÉŒŸ Ž ×÷ €");
    std::string numbers;
    for (const double value : {0.1 + 0.2, -0.0, 123456789012345.0, 1e15, -1512.25})
        numbers += NumberText(value, ",") + " ";
    EXPECT_EQ(numbers, "0,3 0 123456789012345 1E+15 -1512,25 ");
    for (const char* number : {"8012", " -3 ", "1.5", ".5", "2E3"}) EXPECT_TRUE(IsNumeric(number)) << number;
    for (const char* text : {"", " ", "8012a", "-", "1E", "."}) EXPECT_FALSE(IsNumeric(text)) << text;
}

struct SupportTest : ComponentTest {
    ~SupportTest() override { AddedRows() = {}; }
};

TEST_F(SupportTest, EveryTextIsThereOnceInEveryLanguageButForTheKnownGaps) {
    std::set<Integer> ids;
    for (const auto rows : {StringRows(), ContactRows()})
        for (const StringRow& row : rows) EXPECT_TRUE(ids.insert(row.id).second) << row.id;
    std::vector<int> gaps, alone;
    for (const Integer id : ids) {
        const int language = id / 10000 * 10000;
        if (language > 0 && !ids.contains(static_cast<Integer>(id - language))) alone.push_back(id);
        for (const int other : {10000, 20000})
            if (language == 0 && !ids.contains(static_cast<Integer>(id + other))) gaps.push_back(id + other);
    }
    EXPECT_THAT(gaps, UnorderedElementsAre(10001, 20001, 21001, 21002, 28008, 28011));
    EXPECT_THAT(alone, UnorderedElementsAre(29202)) << "without a German row";
    EXPECT_TRUE(LoadResString(10209).ends_with("|*.*\"")) << "the stray quote behind the second pattern list";
    LangOffset() = 20000;
    EXPECT_EQ(Text(8018), "Ligne N°. :");
    EXPECT_EQ(NumberOf([] { Text(8008); }), 326);
    EXPECT_EQ(NumberOf([] { Text(12768); }), 6);
    EXPECT_EQ(Text(1), LoadResString(1)) << "one row for all languages";
}

TEST_F(SupportTest, ContinuedLookupJoinsPiecesAndAdvancesTheId) {
    static constexpr StringRow rows[] = {
        {500, "one_"}, {501, "_"}, {502, "two"}, {503, "lost_"}, {32767, "end"}};
    AddedRows() = rows;
    Integer id = 500;
    EXPECT_EQ(GetResString(id), "onetwo");
    EXPECT_EQ(id, 503);
    EXPECT_EQ(NumberOf([&] { GetResString(id); }), 326);
    id = 32767;
    EXPECT_EQ(NumberOf([&] { GetResString(id); }), 6);
}

TEST_F(SupportTest, LocalizationServesAllKindsOfControlAndSkipsWhatFails) {
    using P = Control::Properties;
    const struct {
        const char *owner, *type;  ///< a control, or an item of its owner
        P before;
        std::string shown;  ///< all properties afterwards but for the tag
    } cases[] = {
        {"", "Menu", {{"Caption", "206"}}, "Annuler|"},
        {"", "Menu", {}, ""},
        {"TabStrip", "Tab", {{"Caption", ""}, {"Tag", "203"}, {"ToolTipText", "204"}}, "Largeur|Hauteur|"},
        {"TabStrip", "Tab", {{"Caption", ""}, {"Tag", "204"}}, "Hauteur|"},
        {"Toolbar", "Button", {{"Tag", "200"}, {"ToolTipText", ""}}, "Propriétés de la tuile|"},
        {"ListView", "ColumnHeader", {{"Tag", "201"}, {"Text", ""}}, "Format de la tuile|"},
        // A missing text costs only its own assignment; 99999 is no 16-bit number.
        {"", "Label", {{"Caption", "kept"}, {"Tag", "8008"}, {"ToolTipText", "210"}}, "kept|Ouvrir|"},
        {"", "TextBox", {{"Tag", "210"}, {"ToolTipText", "99999"}}, "99999|"},
        {"", "Frame", {{"Caption", "x"}, {"Tag", "8019"}}, "Information programme :|"},
    };
    LangOffset() = 20000;
    Form form;
    form.self = {"Form", P{{"Caption", "design"}, {"Tag", "8012"}}};
    for (const auto& c : cases) {
        form.controls.emplace_back(*c.owner == 0 ? c.type : c.owner, *c.owner == 0 ? c.before : P{});
        if (*c.owner != 0) form.controls.back().Items() = {{c.type, P{}}, {c.type, c.before}};
    }
    LoadResStrings(form);
    EXPECT_EQ(form.self.Caption(), "ATTENTION! Une erreur s'est produite ...");
    for (std::size_t n = 0; n < std::size(cases); ++n) {
        Control& control = form.controls[n];
        const Control& localized = control.Items().empty() ? control : control.Items()[1];
        std::string shown;
        for (const auto& [property, text] : cases[n].before)
            shown += property == "Tag" ? "" : localized.Get(property) + "|";
        EXPECT_EQ(shown, cases[n].shown);
    }
}

TEST_F(SupportTest, RegistryReaderTakesTextAndBinaryAndNothingElse) {
    using namespace std::string_literals;
    const auto get = [] { return GetString(IRegistry::kCurrentUser, "Key", "Value"); };
    const std::tuple<Long, std::string, std::string> cases[] = {
        {1, "C:\\Daten\0"s, "C:\\Daten"},
        {1, "\0rest"s, ""},
        {3, "\xFF\xFF"s, "-1"},
        {3, "\x80"s, "128"},
        {3, "\1\0\7\7\7\7\7\7\7\7"s, "1"},  // only two bytes count
        {3, ""s, "0"},
        {4, "\1\0\0\0"s, ""},
    };
    EXPECT_EQ(std::get<std::string>(get()), "") << "no key";
    world->registry["Key"];
    EXPECT_EQ(std::get<std::string>(get()), "") << "no value";
    for (const auto& [type, bytes, text] : cases) {
        world->registry["Key"]["Value"] = {type, bytes};
        EXPECT_EQ(std::get<std::string>(get()), text) << type << " " << bytes;
    }
    EXPECT_EQ(Failures(), "");
    for (const char* endless : {"", "abc"}) {
        world->registry["Key"]["Value"] = {1, endless};
        EXPECT_TRUE(std::holds_alternative<std::monostate>(get()));
        EXPECT_EQ(Failures(), "5 GetString");
    }
}

TEST_F(SupportTest, MinGivesTheSmallestVariantWithItsType) {
    EXPECT_EQ(std::get<double>(Min({Long{3}, 1.5, Long{2}})), 1.5);
    EXPECT_EQ(std::get<Long>(Min({Long{2}, 2.0})), 2) << "the first of equals";
    EXPECT_EQ(std::get<double>(Min({1E+231, std::string("1")})), 1E+230) << "a text is above every number";
    EXPECT_EQ(std::get<bool>(Min({Integer{0}, true})), true) << "True is -1";
    EXPECT_TRUE(std::holds_alternative<std::monostate>(Min({Long{1}, std::monostate{}})));
    EXPECT_EQ(std::get<Long>(Min({Null{}, Long{1}})), 1);
    EXPECT_EQ(Trace().At(0), "14:25:07 [GUIApi] Function Min(ParamArray x()) As Variant");
}

}  // namespace
}  // namespace orvo
