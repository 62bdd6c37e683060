#include "platform/windows/automation/HostObjects.h"

#include "platform/windows/automation/Automation.h"
#include "platform/windows/system/WideText.h"

namespace orvo::windows {
namespace {

/// What every wrapper is: it knows the object that it was made from.
class Hosted {
  public:
    explicit Hosted(IDispatch* object) : object_(object) {}
    virtual ~Hosted() = default;
    Hosted(const Hosted&) = delete;
    Hosted& operator=(const Hosted&) = delete;
    const Automation& Host() const { return object_; }

  private:
    Automation object_;
};

template <class Interface>
IDispatch* ObjectBehind(const Interface* reference) {
    if (reference == nullptr) return nullptr;
    const auto* hosted = dynamic_cast<const Hosted*>(reference);
    if (hosted == nullptr) throw RuntimeError(Fault::TypeMismatch);
    hosted->Host().Dispatch()->AddRef();
    return hosted->Host().Dispatch();
}

template <class Interface>
Value ArgumentOf(const Interface* reference) {
    return Value::Adopt(ObjectBehind(reference));
}

class HostEnvelope final : public IEnvelope, public Hosted {
  public:
    using Hosted::Hosted;
    orvo::GeometryType GeometryType() const override { return orvo::GeometryType::Envelope; }
    bool IsEmpty() const override { return Host().Get(L"IsEmpty").AsBool(); }
    double XMin() const override { return Host().Get(L"XMin").AsDouble(); }
    double YMin() const override { return Host().Get(L"YMin").AsDouble(); }
    double XMax() const override { return Host().Get(L"XMax").AsDouble(); }
    double YMax() const override { return Host().Get(L"YMax").AsDouble(); }
    double Width() const override { return Host().Get(L"Width").AsDouble(); }
    double Height() const override { return Host().Get(L"Height").AsDouble(); }
    double Depth() const override { return Host().Get(L"Depth").AsDouble(); }
    void XMin(double value) override { Host().Put(L"XMin", value); }
    void YMin(double value) override { Host().Put(L"YMin", value); }
    void XMax(double value) override { Host().Put(L"XMax", value); }
    void YMax(double value) override { Host().Put(L"YMax", value); }
    void Width(double value) override { Host().Put(L"Width", value); }
    void Height(double value) override { Host().Put(L"Height", value); }
    void Depth(double value) override { Host().Put(L"Depth", value); }
    std::shared_ptr<IEnvelope> Clone() const override {
        return EnvelopeOf(Host().Call(L"Clone").AsObject().Get());
    }
    void Intersect(const IEnvelope& other) override {
        Host().Call(L"Intersect", {ArgumentOf<IGeometry>(&other)});
    }
};

class HostDataset final : public IRasterDataset {
  public:
    explicit HostDataset(IDispatch* object) : object_(object) {}
    std::string FormatName() override { return object_.Get(L"FormatName").AsText(); }

  private:
    Automation object_;
};

std::shared_ptr<IRasterDataset> DatasetOf(const Value& value) {
    const Ref<IDispatch> object = value.AsObject();
    return object ? std::make_shared<HostDataset>(object.Get()) : nullptr;
}

class HostRaster final : public IRaster {
  public:
    explicit HostRaster(IDispatch* object) : object_(object) {}
    Long Width() override { return object_.Get(L"Width").AsLong(); }
    Long Height() override { return object_.Get(L"Height").AsLong(); }
    Point MeanCellSize() override {
        const Automation size(object_.Get(L"MeanCellSize").AsObject().Get());
        return {size.Get(L"X").AsDouble(), size.Get(L"Y").AsDouble()};
    }
    std::shared_ptr<IRasterDataset> RasterDataset() override {
        return DatasetOf(object_.Get(L"RasterDataset"));
    }

  private:
    Automation object_;
};

class HostRasterLayer final : public IRasterLayer, public Hosted {
  public:
    using Hosted::Hosted;
    std::string FilePath() override { return Host().Get(L"FilePath").AsText(); }
    std::shared_ptr<IRaster> Raster() override {
        const Ref<IDispatch> raster = Host().Get(L"Raster").AsObject();
        return raster ? std::make_shared<HostRaster>(raster.Get()) : nullptr;
    }
    /// A layer that does not know the question holds a file of its own.
    bool IsInGeodatabase() override {
        return Host().Has(L"IsInGeodatabase") && Host().Get(L"IsInGeodatabase").AsBool();
    }
    std::shared_ptr<IEnvelope> Extent() override {
        return EnvelopeOf(Host().Get(L"Extent").AsObject().Get());
    }
};

class HostLayer final : public ILayer {
  public:
    explicit HostLayer(IDispatch* object) : object_(object) {}
    std::shared_ptr<IEnvelope> AreaOfInterest() override {
        return EnvelopeOf(object_.Get(L"AreaOfInterest").AsObject().Get());
    }

  private:
    Automation object_;
};

class HostGeometry final : public IGeometry,
                           public IPoint,
                           public IClone,
                           public IRelationalOperator,
                           public ITopologicalOperator,
                           public Hosted {
  public:
    using Hosted::Hosted;
    orvo::GeometryType GeometryType() const override {
        return static_cast<orvo::GeometryType>(Host().Get(L"GeometryType").AsLong());
    }
    bool IsEmpty() const override { return Host().Get(L"IsEmpty").AsBool(); }
    double X() const override { return Host().Get(L"X").AsDouble(); }
    double Y() const override { return Host().Get(L"Y").AsDouble(); }
    std::shared_ptr<IGeometry> Clone() const override {
        return GeometryOf(Host().Call(L"Clone").AsObject().Get());
    }
    bool Within(const std::shared_ptr<IEnvelope>& other) const override { return Relation(L"Within", other); }
    bool Crosses(const std::shared_ptr<IEnvelope>& other) const override {
        return Relation(L"Crosses", other);
    }
    bool Overlaps(const std::shared_ptr<IEnvelope>& other) const override {
        return Relation(L"Overlaps", other);
    }
    void Clip(const std::shared_ptr<IEnvelope>& clipEnvelope) override {
        Host().Call(L"Clip", {ArgumentOf<IGeometry>(clipEnvelope.get())});
    }

  private:
    bool Relation(const wchar_t* name, const std::shared_ptr<IEnvelope>& other) const {
        return Host().Call(name, {ArgumentOf<IGeometry>(other.get())}).AsBool();
    }
};

class HostDictionary final : public IDictionary, public Hosted {
  public:
    using Hosted::Hosted;
    Long Count() const override { return Host().Get(L"Count").AsLong(); }
    bool Exists(const std::string& key) const override { return Host().Call(L"Exists", {key}).AsBool(); }
    void Add(const std::string& key, std::shared_ptr<IEnvelope> item) override {
        Host().Call(L"Add", {key, ArgumentOf<IGeometry>(item.get())});
    }
    std::shared_ptr<IEnvelope> Item(const std::string& key) const override {
        if (!Exists(key)) return nullptr;  // the system's dictionary would add it
        return EnvelopeOf(Host().Call(L"Item", {key}).AsObject().Get());
    }
    std::vector<std::string> Keys() const override;
};

std::vector<std::string> HostDictionary::Keys() const {
    Value keys = Host().Call(L"Keys");
    std::vector<std::string> texts;
    if ((keys.Raw().vt & VT_ARRAY) == 0) throw RuntimeError(Fault::TypeMismatch, "Keys");
    SAFEARRAY* const array = keys.Raw().parray;
    LONG first = 0, last = -1;
    Require(::SafeArrayGetLBound(array, 1, &first), "Keys");
    Require(::SafeArrayGetUBound(array, 1, &last), "Keys");
    for (LONG i = first; i <= last; ++i) {
        Value key;
        Require(::SafeArrayGetElement(array, &i, key.Out()), "Keys");
        texts.push_back(key.AsText());
    }
    return texts;
}

template <class Base>
class HostWorkspace : public Base, public Hosted {
  public:
    using Hosted::Hosted;
    std::string PathName() override { return Host().Get(L"PathName").AsText(); }
};

class HostRasterWorkspace final : public HostWorkspace<IRasterWorkspace> {
  public:
    using HostWorkspace::HostWorkspace;
    std::shared_ptr<IRasterDataset> OpenRasterDataset(const std::string& name) override {
        return DatasetOf(Host().Call(L"OpenRasterDataset", {name}));
    }
};

class NamedStatus final : public IStatusDisplay {
  public:
    explicit NamedStatus(IDispatch* object) : object_(object) {}
    void ShowMessage(const std::string& text) override { object_.Call(L"ShowMessage", {text}); }
    void ShowProgress(const std::string& text, Long maxValue, bool step) override {
        object_.Call(L"ShowProgress", {text, maxValue, step});
    }

  private:
    Automation object_;
};

}  // namespace

/// The table of functions of a status object: the first three are its own affair. Not in the nameless
/// namespace: there the compiler would know that nobody implements it.
struct StatusTable : IDispatch {
    virtual HRESULT STDMETHODCALLTYPE First() = 0;
    virtual HRESULT STDMETHODCALLTYPE Second() = 0;
    virtual HRESULT STDMETHODCALLTYPE Third() = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowMessage(BSTR text) = 0;
    virtual HRESULT STDMETHODCALLTYPE ShowProgress(BSTR text, LONG maxValue, VARIANT_BOOL step) = 0;

  protected:
    ~StatusTable() = default;
};

namespace {

class BoundStatus final : public IStatusDisplay {
  public:
    explicit BoundStatus(Ref<StatusTable> object) : object_(std::move(object)) {}
    void ShowMessage(const std::string& text) override {
        const Value argument(text);
        RequireCall([&] { return object_->ShowMessage(argument.Raw().bstrVal); }, "ShowMessage");
    }
    void ShowProgress(const std::string& text, Long maxValue, bool step) override {
        const Value argument(text);
        const VARIANT_BOOL further = step ? VARIANT_TRUE : VARIANT_FALSE;
        RequireCall([&] { return object_->ShowProgress(argument.Raw().bstrVal, maxValue, further); },
                    "ShowProgress");
    }

  private:
    Ref<StatusTable> object_;
};

template <class Wrapper, class Interface>
std::shared_ptr<Interface> Wrapped(IDispatch* object) {
    if (object == nullptr) return nullptr;
    return std::make_shared<Wrapper>(object);
}

}  // namespace

std::shared_ptr<IEnvelope> EnvelopeOf(IDispatch* object) {
    return Wrapped<HostEnvelope, IEnvelope>(object);
}

std::shared_ptr<IRasterLayer> RasterLayerOf(IDispatch* object) {
    return Wrapped<HostRasterLayer, IRasterLayer>(object);
}

std::shared_ptr<ILayer> LayerOf(IDispatch* object) {
    return Wrapped<HostLayer, ILayer>(object);
}

std::shared_ptr<IGeometry> GeometryOf(IDispatch* object) {
    return Wrapped<HostGeometry, IGeometry>(object);
}

std::shared_ptr<IDictionary> DictionaryOf(IDispatch* object) {
    return Wrapped<HostDictionary, IDictionary>(object);
}

std::shared_ptr<IWorkspace> WorkspaceOf(IDispatch* object) {
    if (Automation(object).Has(L"OpenRasterDataset")) return Wrapped<HostRasterWorkspace, IWorkspace>(object);
    return Wrapped<HostWorkspace<IWorkspace>, IWorkspace>(object);
}

std::shared_ptr<IStatusDisplay> StatusDisplayOf(IUnknown* object, const IID& id) {
    if (object == nullptr) return nullptr;
    auto bound = Query<StatusTable>(object, id);
    if (bound) return std::make_shared<BoundStatus>(std::move(bound));
    const auto named = Query<IDispatch>(object, IID_IDispatch);
    if (!named) throw RuntimeError(Fault::TypeMismatch, "the status object");
    return std::make_shared<NamedStatus>(named.Get());
}

IDispatch* DispatchOf(const IGeometry* geometry) {
    return ObjectBehind(geometry);
}

IDispatch* DispatchOf(const IDictionary* dictionary) {
    return ObjectBehind(dictionary);
}

IDispatch* DispatchOf(const IWorkspace* workspace) {
    return ObjectBehind(workspace);
}

IDispatch* DispatchOf(const IRasterLayer* layer) {
    return ObjectBehind(layer);
}

}  // namespace orvo::windows
