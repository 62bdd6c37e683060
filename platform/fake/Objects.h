// The fake platform's objects. Use World::MakePlatform to get them.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/fake/World.h"
#include "platform/memory/Dictionary.h"
#include "platform/memory/Envelope.h"

namespace orvo::fake {

class Envelope : public memory::Envelope {
  public:
    explicit Envelope(std::shared_ptr<World> world) : world_(std::move(world)) {}
    bool IsEmpty() const override { return Counted("IsEmpty").memory::Envelope::IsEmpty(); }
    double XMin() const override { return Counted("XMin").memory::Envelope::XMin(); }
    double YMin() const override { return Counted("YMin").memory::Envelope::YMin(); }
    double XMax() const override { return Counted("XMax").memory::Envelope::XMax(); }
    double YMax() const override { return Counted("YMax").memory::Envelope::YMax(); }
    double Width() const override { return Counted("Width").memory::Envelope::Width(); }
    double Height() const override { return Counted("Height").memory::Envelope::Height(); }
    double Depth() const override { return Counted("Depth").memory::Envelope::Depth(); }
    void XMin(double v) override { Counted("XMin=").memory::Envelope::XMin(v); }
    void YMin(double v) override { Counted("YMin=").memory::Envelope::YMin(v); }
    void XMax(double v) override { Counted("XMax=").memory::Envelope::XMax(v); }
    void YMax(double v) override { Counted("YMax=").memory::Envelope::YMax(v); }
    void Width(double v) override { Counted("Width=").memory::Envelope::Width(v); }
    void Height(double v) override { Counted("Height=").memory::Envelope::Height(v); }
    void Depth(double v) override { Counted("Depth=").memory::Envelope::Depth(v); }
    std::shared_ptr<IEnvelope> Clone() const override;
    void Intersect(const IEnvelope& other) override;

  private:
    const Envelope& Counted(const char* member) const;
    Envelope& Counted(const char* member);
    std::shared_ptr<World> world_;
};

class Dictionary : public memory::Dictionary {
  public:
    explicit Dictionary(std::shared_ptr<World> world) : world_(std::move(world)) {}
    bool Exists(const std::string& key) const override;
    void Add(const std::string& key, std::shared_ptr<IEnvelope> item) override;

  private:
    std::shared_ptr<World> world_;
};

class FileSystemObject : public IFileSystemObject {
  public:
    explicit FileSystemObject(std::shared_ptr<World> world) : world_(std::move(world)) {}
    bool FileExists(const std::string& path) override;
    bool FolderExists(const std::string& path) override;
    std::string GetFileName(const std::string& path) override;
    std::string GetBaseName(const std::string& path) override;
    std::string GetExtensionName(const std::string& path) override;
    std::string GetParentFolderName(const std::string& path) override;
    std::string GetAbsolutePathName(const std::string& path) override;
    void DeleteFile(const std::string& path, bool force) override;

  private:
    std::shared_ptr<World> world_;
};

class UtilTools : public IUtilTools {
  public:
    explicit UtilTools(std::shared_ptr<World> world) : world_(std::move(world)) {}
    Integer GetLanguageOffset() override;
    std::string GetFreeFileName(const std::string& folder, const std::string& baseName,
                                const std::vector<std::string>& extensions) override;

  private:
    bool IsTaken(const std::string& name, const std::vector<std::string>& extensions);
    std::shared_ptr<World> world_;
    std::map<std::string, int> lastNumber_;  ///< by folder and base name
};

class RasterConvert : public IRasterConvert {
  public:
    explicit RasterConvert(std::shared_ptr<World> world) : world_(std::move(world)) {}
    std::string ExportRasterWindow(const std::shared_ptr<IRasterLayer>& layer, const std::string& targetFile,
                                   Integer quality, const std::shared_ptr<void>& reserved,
                                   const std::shared_ptr<IEnvelope>& envelope, Long width,
                                   Long height) override;
    bool ConvertExtern(const std::string& program, const std::string& sourceFile, std::string& targetFile,
                       Integer quality, const PixelWindow* window, bool wait) override;

  private:
    std::shared_ptr<World> world_;
};

class RasterWorkspaceFactory : public IRasterWorkspaceFactory {
  public:
    explicit RasterWorkspaceFactory(std::shared_ptr<World> world) : world_(std::move(world)) {}
    std::shared_ptr<IWorkspace> OpenFromFile(const std::string& path, Long hWnd) override;

  private:
    std::shared_ptr<World> world_;
};

class Registry : public IRegistry {
  public:
    explicit Registry(std::shared_ptr<World> world) : world_(std::move(world)) {}
    Long RegOpenKey(Long hKey, const std::string& path, Long& handle) override;
    Long RegQueryValueEx(Long hKey, const std::string& name, Long& type, char* data, Long& size) override;
    Long RegCloseKey(Long handle) override;
    std::size_t OpenKeys() const { return open_.size(); }

  private:
    std::shared_ptr<World> world_;
    std::map<Long, std::string> open_;  ///< handle → key path
    Long lastHandle_ = 0;
};

class Clock : public IClock {
  public:
    explicit Clock(std::shared_ptr<World> world) : world_(std::move(world)) {}
    std::int64_t Seconds() override;
    LocalTime Local(std::int64_t seconds) override;

  private:
    std::shared_ptr<World> world_;
};

class OperatingSystem : public IOperatingSystem {
  public:
    explicit OperatingSystem(std::shared_ptr<World> world) : world_(std::move(world)) {}
    OSVersion GetVersion() override;
    std::string TempFolder() override;

  private:
    std::shared_ptr<World> world_;
};

class TextFiles : public ITextFiles {
  public:
    explicit TextFiles(std::shared_ptr<World> world) : world_(std::move(world)) {}
    bool Exists(const std::string& path) override;
    void Append(const std::string& path, const std::string& text) override;
    void Replace(const std::string& path, const std::string& text) override;

  private:
    std::string& Writable(const std::string& path);
    std::shared_ptr<World> world_;
};

class Desktop : public IDesktop {
  public:
    explicit Desktop(std::shared_ptr<World> world) : world_(std::move(world)) {}
    MessageAnswer MessageBox(const std::string& text, const std::string& title, MessageIcon icon,
                             MessageButtons buttons) override;
    void ShowModal(IDialogEvents& events) override;
    void Beep() override;
    void ResetPointer() override { world_->Call("Desktop.ResetPointer"); }
    orvo::Box Screen() override;
    void Print(const std::vector<std::string>& lines) override;
    void CopyToClipboard(const std::string& text) override;
    void Open(const std::string& address) override;

  private:
    std::shared_ptr<World> world_;
};

}  // namespace orvo::fake
