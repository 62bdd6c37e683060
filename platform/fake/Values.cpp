// Envelopes and dictionaries of the fake platform: those in memory, with every call counted.
#include "platform/fake/Objects.h"

namespace orvo::fake {

const Envelope& Envelope::Counted(const char* member) const {
    world_->Call(std::string("Envelope.") + member);
    return *this;
}

Envelope& Envelope::Counted(const char* member) {
    world_->Call(std::string("Envelope.") + member);
    return *this;
}

std::shared_ptr<IEnvelope> Envelope::Clone() const {
    return std::make_shared<Envelope>(Counted("Clone"));
}

void Envelope::Intersect(const IEnvelope& other) {
    Counted("Intersect").memory::Envelope::Intersect(other);
}

bool Dictionary::Exists(const std::string& key) const {
    world_->Call("Dictionary.Exists");
    return memory::Dictionary::Exists(key);
}

void Dictionary::Add(const std::string& key, std::shared_ptr<IEnvelope> item) {
    world_->Call("Dictionary.Add");
    memory::Dictionary::Add(key, std::move(item));
}

}  // namespace orvo::fake
