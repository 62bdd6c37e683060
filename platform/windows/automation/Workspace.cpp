#include "platform/windows/automation/Workspace.h"

#include <filesystem>

#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/imaging/RasterFile.h"
#include "support/SystemPath.h"

namespace orvo::windows {
namespace {

class HostFactory final : public IRasterWorkspaceFactory {
  public:
    explicit HostFactory(IDispatch* object) : object_(object) {}
    std::shared_ptr<IWorkspace> OpenFromFile(const std::string& path, Long hWnd) override {
        return WorkspaceOf(object_.Call(L"OpenFromFile", {path, hWnd}).AsObject().Get());
    }

  private:
    Automation object_;
};

class DatasetObject final : public ScriptObject {
  public:
    explicit DatasetObject(std::shared_ptr<IRasterDataset> dataset) : dataset_(std::move(dataset)) {
        Add(Property(L"FormatName", [this] { return dataset_->FormatName(); }));
    }

  private:
    std::shared_ptr<IRasterDataset> dataset_;
};

class WorkspaceObject final : public ScriptObject {
  public:
    explicit WorkspaceObject(std::string folder) : folder_(std::move(folder)) {
        Add(Property(L"PathName", [this] { return folder_; }));
        Add({L"OpenRasterDataset", [this](const Arguments& arguments) {
                 const auto file = DiskPath(folder_) / DiskPath(arguments.At(0).AsText());
                 return Value::Adopt(NewDatasetObject(OpenImageDataset(PathText(file))));
             }});
    }

  private:
    std::string folder_;
};

class FolderFactory final : public IRasterWorkspaceFactory {
  public:
    std::shared_ptr<IWorkspace> OpenFromFile(const std::string& path, Long /*hWnd*/) override {
        std::error_code failed;
        if (!std::filesystem::is_directory(DiskPath(path), failed))
            throw RuntimeError(Fault::PathNotFound, path);
        const Value workspace = Value::Adopt(new WorkspaceObject(path));
        return WorkspaceOf(workspace.AsObject().Get());
    }
};

}  // namespace

std::shared_ptr<IRasterWorkspaceFactory> WorkspaceFactoryOf(IDispatch* object) {
    return std::make_shared<HostFactory>(object);
}

std::shared_ptr<IRasterWorkspaceFactory> NewWorkspaceFactory() {
    return std::make_shared<FolderFactory>();
}

ScriptObject* NewDatasetObject(std::shared_ptr<IRasterDataset> dataset) {
    return new DatasetObject(std::move(dataset));
}

}  // namespace orvo::windows
