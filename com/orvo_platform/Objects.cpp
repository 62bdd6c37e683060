#include "com/orvo_platform/Objects.h"

#include "platform/memory/Envelope.h"
#include "platform/windows/automation/EnvelopeObject.h"
#include "platform/windows/automation/HostObjects.h"
#include "platform/windows/automation/Utility.h"
#include "platform/windows/automation/Workspace.h"
#include "platform/windows/desktop/WindowCollection.h"
#include "platform/windows/imaging/RasterFile.h"

namespace orvo::windows {
namespace {

class PointObject final : public ScriptObject {
  public:
    explicit PointObject(Point point) : point_(point) {
        Add(Property(L"X", [this] { return point_.X; }));
        Add(Property(L"Y", [this] { return point_.Y; }));
    }

  private:
    Point point_;
};

class RasterObject final : public ScriptObject {
  public:
    explicit RasterObject(std::shared_ptr<IRaster> raster) : raster_(std::move(raster)) {
        Add(Property(L"Width", [this] { return raster_->Width(); }));
        Add(Property(L"Height", [this] { return raster_->Height(); }));
        Add(Property(L"MeanCellSize",
                     [this] { return Value::Adopt(new PointObject(raster_->MeanCellSize())); }));
        Add(Property(L"RasterDataset",
                     [this] { return Value::Adopt(NewDatasetObject(raster_->RasterDataset())); }));
    }

  private:
    std::shared_ptr<IRaster> raster_;
};

/// Before a file is opened every question but IsInGeodatabase fails with number 91.
class RasterLayerObject final : public ScriptObject {
  public:
    RasterLayerObject() {
        Add({L"Open", [this](const Arguments& arguments) {
                 layer_ = OpenRasterFile(arguments.At(0).AsText());
                 return Value();
             }});
        Add(Property(L"FilePath", [this] { return Object(layer_).FilePath(); }));
        Add(Property(L"Raster", [this] { return Value::Adopt(new RasterObject(Object(layer_).Raster())); }));
        Add(Property(L"Extent", [this] { return Value::Adopt(DispatchOf(Object(layer_).Extent())); }));
        Add(Property(L"IsInGeodatabase", [] { return false; }));
    }

  private:
    std::shared_ptr<IRasterLayer> layer_;
};

class WorkspaceFactoryObject final : public ScriptObject {
  public:
    WorkspaceFactoryObject() {
        Add({L"OpenFromFile", [](const Arguments& arguments) {
                 const Long window = arguments.Count() > 1 ? arguments.At(1).AsLong() : 0;
                 return Value::Adopt(
                     DispatchOf(NewWorkspaceFactory()->OpenFromFile(arguments.At(0).AsText(), window)));
             }});
    }
};

/// The services of all objects share one library, as they do inside the component.
const UtilityMakers& Makers() {
    static const UtilityMakers makers = OwnUtility();
    return makers;
}

class UtilToolsObject final : public ScriptObject {
  public:
    UtilToolsObject() {
        Add(Property(L"GetLanguageOffset", [this] { return tools_->GetLanguageOffset(); }));
        Add({L"GetFreeFileName", [this](const Arguments& arguments) {
                 std::vector<std::string> extensions;
                 for (std::size_t i = 2; i < arguments.Count(); ++i)
                     extensions.push_back(arguments.At(i).AsText());
                 return Value(
                     tools_->GetFreeFileName(arguments.At(0).AsText(), arguments.At(1).AsText(), extensions));
             }});
    }

  private:
    std::shared_ptr<IUtilTools> tools_ = Makers().newUtilTools();
};

Integer QualityOf(const Value& value) {
    const Long quality = value.AsLong();
    if (quality < -0x8000 || quality > 0x7FFF) throw RuntimeError(Fault::Overflow);
    return static_cast<Integer>(quality);
}

class RasterConvertObject final : public ScriptObject {
  public:
    RasterConvertObject() {
        Add({L"ExportRasterWindow", [this](const Arguments& arguments) { return Export(arguments); }});
        Add({L"ConvertExtern", [this](const Arguments& arguments) { return Convert(arguments); }});
    }

  private:
    Value Export(const Arguments& arguments) const {
        return Value(convert_->ExportRasterWindow(RasterLayerOf(arguments.At(0).AsObject().Get()),
                                                  arguments.At(1).AsText(), QualityOf(arguments.At(2)),
                                                  nullptr, EnvelopeOf(arguments.At(4).AsObject().Get()),
                                                  arguments.At(5).AsLong(), arguments.At(6).AsLong()));
    }
    Value Convert(const Arguments& arguments) const {
        std::string target = arguments.At(2).AsText();
        const Ref<IDispatch> collection = arguments.At(4).AsObject();
        const PixelWindow window = collection ? WindowOfCollection(collection.Get()) : PixelWindow{};
        const bool done =
            convert_->ConvertExtern(arguments.At(0).AsText(), arguments.At(1).AsText(), target,
                                    QualityOf(arguments.At(3)), collection ? &window : nullptr, true);
        arguments.WriteBack(2, Value(target));
        return Value(done);
    }
    std::shared_ptr<IRasterConvert> convert_ = Makers().newRasterConvert();
};

}  // namespace

IUnknown* NewEmptyEnvelopeObject() {
    return NewEnvelopeObject(std::make_shared<memory::Envelope>());
}

IUnknown* NewRasterLayerObject() {
    return new RasterLayerObject;
}

IUnknown* NewWorkspaceFactoryObject() {
    return new WorkspaceFactoryObject;
}

IUnknown* NewUtilToolsObject() {
    return new UtilToolsObject;
}

IUnknown* NewRasterConvertObject() {
    return new RasterConvertObject;
}

}  // namespace orvo::windows
