#include "platform/windows/automation/EnvelopeObject.h"

#include "platform/memory/Envelope.h"
#include "platform/windows/automation/HostObjects.h"

namespace orvo::windows {
namespace {

class EnvelopeObject final : public ScriptObject {
  public:
    explicit EnvelopeObject(std::shared_ptr<IEnvelope> envelope) : envelope_(std::move(envelope)) {
        AddEdge(L"XMin", &IEnvelope::XMin, &IEnvelope::XMin);
        AddEdge(L"YMin", &IEnvelope::YMin, &IEnvelope::YMin);
        AddEdge(L"XMax", &IEnvelope::XMax, &IEnvelope::XMax);
        AddEdge(L"YMax", &IEnvelope::YMax, &IEnvelope::YMax);
        AddEdge(L"Width", &IEnvelope::Width, &IEnvelope::Width);
        AddEdge(L"Height", &IEnvelope::Height, &IEnvelope::Height);
        AddEdge(L"Depth", &IEnvelope::Depth, &IEnvelope::Depth);
        Add(Property(L"IsEmpty", [this] { return envelope_->IsEmpty(); }));
        Add(Property(L"GeometryType", [this] { return static_cast<Long>(envelope_->GeometryType()); }));
        Add({L"Clone", [this](const Arguments&) { return Copy(); }});
        Add({L"Intersect", [this](const Arguments& arguments) {
                 envelope_->Intersect(Object(EnvelopeOf(arguments.At(0).AsObject().Get())));
                 return Value();
             }});
    }

  private:
    void AddEdge(const wchar_t* name, double (IEnvelope::*get)() const, void (IEnvelope::*put)(double)) {
        Add(Property(
            name, [this, get] { return (*envelope_.*get)(); },
            [this, put](const Value& value) { (*envelope_.*put)(value.AsDouble()); }));
    }
    Value Copy() const { return Value::Adopt(NewEnvelopeObject(envelope_->Clone())); }
    std::shared_ptr<IEnvelope> envelope_;
};

}  // namespace

ScriptObject* NewEnvelopeObject(std::shared_ptr<IEnvelope> envelope) {
    return new EnvelopeObject(std::move(envelope));
}

std::shared_ptr<IEnvelope> NewEnvelope() {
    const Value object = Value::Adopt(NewEnvelopeObject(std::make_shared<memory::Envelope>()));
    return EnvelopeOf(object.AsObject().Get());
}

}  // namespace orvo::windows
