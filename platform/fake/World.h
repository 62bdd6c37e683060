// A platform in memory for tests of this library and of programs that embed it.
//
//     auto world = fake::World::Make();
//     platform::Install(world->MakePlatform());
//     world->answer = [](const FailureView&) { return Integer{1}; };  // "next statement", at every failure
//     world->FailCall(17, fake::Lasting::Once);   // the 17th call of the platform fails
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "platform/FailureView.h"
#include "platform/Platform.h"

namespace orvo::fake {

enum class Lasting { Once, ForGood };

/// What the conversion and export services do.
enum class Conversion { Works, Fails };

struct Message {
    std::string text;
    std::string title;
    MessageIcon icon;
    MessageButtons buttons;
};

struct Progress {
    std::string text;
    Long maxValue;  ///< −1 for ShowMessage
    bool step;
    bool operator==(const Progress&) const = default;
};

struct RegistryValue {
    Long type;
    std::string bytes;
};

/// All that the fake platform's objects share. Every call of an object is counted and may be made to fail.
class World : public std::enable_shared_from_this<World> {
  public:
    static std::shared_ptr<World> Make() { return std::make_shared<World>(); }
    /// A platform whose objects all live in this world and keep it alive.
    platform::Platform MakePlatform();

    // Faults.
    /// Makes the n-th call from now fail; for good means every call from then on, except those that the error
    /// dialog needs itself: desktop, text files, clock and operating system.
    void FailCall(long n, Lasting lasting);
    void FailNothing() { failAt_ = 0; }
    /// Counts a call of the platform and fails where one is due. Names look like "Envelope.XMin".
    void Call(const std::string& name);
    long Calls() const { return calls_; }
    const std::string& FailedCall() const { return failedCall_; }  ///< the first that failed

    // Disk. Paths are kept with "\"; a "/" serves as well.
    static std::string Normal(std::string path);
    void PutFile(const std::string& path, const std::string& content) { files[Normal(path)] = content; }
    bool HasFile(const std::string& path) const { return files.contains(Normal(path)); }
    std::map<std::string, std::string> files;
    std::set<std::string> readOnlyFiles;  ///< deleted only by force
    std::set<std::string> lockedFiles;    ///< never deleted or written
    std::set<std::string> folders{"C:", "C:\\out", "C:\\Temp"};
    std::string currentFolder = "C:\\work";

    // Utility library.
    Integer languageOffset = 0;
    Conversion convertExtern = Conversion::Works;
    Conversion exportWindow = Conversion::Works;
    bool exportGivesTiff = false;  ///< the export answers with a TIFF, its world file and side files
    long looksAtDisk = 0;          ///< of GetFreeFileName
    std::set<std::string> reservedNames;
    std::map<std::string, std::string> reservedExtension;  ///< of names reserved for exactly one
    std::vector<PixelWindow> convertedWindows;
    std::vector<std::pair<Long, Long>> exportedSizes;  ///< pixels

    // System.
    LocalTime now{2024, 3, 9, 14, 25, 7};
    std::map<std::string, std::map<std::string, RegistryValue>> registry;  ///< key path → value name → value
    OSVersion version{6, 1, 7601, 2, "Service Pack 1"};
    std::string tempFolder = "C:\\Temp";

    // Desktop.
    std::vector<Message> messages;
    MessageAnswer messageAnswer = MessageAnswer::OK;
    std::vector<FailureView> failures;  ///< as the dialog showed them
    /// The index of the continue button to click; none closes the window otherwise. Leaves by default.
    std::function<std::optional<Integer>(const FailureView&)> answer;
    std::vector<Integer> reportClicks;        ///< report buttons to click before each answer
    std::vector<RuntimeError> eventFailures;  ///< of the dialog's handlers
    int beeps = 0;
    Box screen{0, 0, 15360, 11520};
    std::vector<std::vector<std::string>> printed;  ///< documents
    std::string clipboard;
    std::vector<std::string> opened;  ///< addresses

  private:
    long calls_ = 0;
    long failAt_ = 0;
    Lasting lasting_ = Lasting::Once;
    std::string failedCall_;
};

/// A status object that remembers what it was shown.
class StatusDisplay : public IStatusDisplay {
  public:
    explicit StatusDisplay(std::shared_ptr<World> world) : world_(std::move(world)) {}
    void ShowMessage(const std::string& text) override;
    void ShowProgress(const std::string& text, Long maxValue, bool step) override;
    std::vector<Progress> shown;

  private:
    std::shared_ptr<World> world_;
};

/// The facts of a raster layer in memory.
struct LayerFacts {
    std::string filePath = "C:\\img\\ortho.png";
    Long columns = 9;
    Long rows = 9;
    double xMin = 0;
    double yMax = 9;
    Point cellSize{1, 1};
    std::string formatName = "PNG";
    bool inGeodatabase = false;
};

std::shared_ptr<IRasterLayer> MakeRasterLayer(std::shared_ptr<World> world, LayerFacts facts);

}  // namespace orvo::fake
