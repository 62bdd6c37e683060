// The utility library: free names, conversion, export.
#include "tests/contracts/Contract.h"

namespace orvo {
namespace {

struct UtilityContract : Contract {
    std::string FreeName(const std::vector<std::string>& extensions) {
        return tools->GetFreeFileName(subject.folder, "i142507", extensions);
    }
    bool Convert(const std::string& source, std::string& target, const PixelWindow* window) {
        return convert->ConvertExtern(subject.program, source, target, 75, window, true);
    }
    bool Exists(const std::string& path) const { return services.newFileSystemObject()->FileExists(path); }

    const std::shared_ptr<IUtilTools> tools = services.newUtilTools();
    const std::shared_ptr<IRasterConvert> convert = services.newRasterConvert();
    const std::string open = subject.folder + (subject.folder.starts_with('/') ? "/" : "\\");
    const std::string stem = open + "i142507_";
};

ORVO_CONTRACT(UtilityContract);

TEST_P(UtilityContract, GivesEachNameOnceInAFolderThatIsThere) {
    EXPECT_EQ(tools->GetLanguageOffset(), 20000);
    for (const char* taken : {"2.png", "3.gif", "4.bmp"}) services.textFiles->Append(stem + taken, "x");
    const std::vector<std::string> names{FreeName({"png"}), FreeName({"jpg", "png", "gif"}),
                                         FreeName({"bmp"})};
    EXPECT_THAT(names, testing::ElementsAre(stem + "1", stem + "4", stem + "5"));
    EXPECT_THAT(services.newUtilTools()->GetFreeFileName(subject.folder, "i142507", {"bmp"}),
                testing::Not(testing::AnyOfArray(names)));
    EXPECT_EQ(tools->GetFreeFileName(subject.folder, "ö", {"png"}), open + "ö_1");
    EXPECT_EQ(NumberOf([&] { tools->GetFreeFileName(open + "missing", "i", {"png"}); }), 76);
}

TEST_P(UtilityContract, ConvertsAWindowOrAWholeImageAndReplacesNone) {
    const PixelWindow window{10, 20, 30, 40};
    std::string target = FreeName({"png"});
    EXPECT_FALSE(convert->ConvertExtern("", subject.source, target, 0, nullptr, true));
    EXPECT_FALSE(Convert(subject.source + ".none", target, nullptr));
    EXPECT_TRUE(target == stem + "1" && !Exists(target + ".png"));
    EXPECT_TRUE(Convert(subject.source, target, &window) && Exists(target));
    EXPECT_EQ(target, stem + "1.png") << "completed";
    EXPECT_FALSE(Convert(subject.source, target, nullptr)) << "it stands";
    target = FreeName({"jpg", "png", "gif"}) + ".png";
    EXPECT_TRUE(Convert(subject.source, target, nullptr) && Exists(target));
    EXPECT_EQ(target, stem + "2.png") << "as given";
}

TEST_P(UtilityContract, ExportsUnderTheNameItReturns) {
    const auto layer = subject.openSource();
    const auto extent = layer->Extent();
    const std::string target = FreeName({"tif", "png"});
    const auto exported = [&](const std::string& file, const auto& some, const auto& part) {
        return convert->ExportRasterWindow(some, file, 0, nullptr, part, 40, 30);
    };
    const std::string written = exported(target + ".png", layer, extent);
    EXPECT_THAT(written, testing::StartsWith(target + "."));
    EXPECT_TRUE(Exists(written));
    EXPECT_EQ(exported(written, layer, extent), "") << "it stands";
    EXPECT_EQ(NumberOf([&] { exported(open + "a.png", layer, std::shared_ptr<IEnvelope>()); }), 91);
    EXPECT_EQ(NumberOf([&] { exported(open + "a.png", std::shared_ptr<IRasterLayer>(), extent); }), 91);
}

}  // namespace
}  // namespace orvo
