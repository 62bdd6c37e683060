#include "platform/memory/Dictionary.h"

#include <utility>

#include "platform/RuntimeError.h"

namespace orvo::memory {

void Dictionary::Add(const std::string& key, std::shared_ptr<IEnvelope> item) {
    if (!items_.emplace(key, std::move(item)).second) throw RuntimeError(Fault::DuplicateKey);
    keys_.push_back(key);
}

std::shared_ptr<IEnvelope> Dictionary::Item(const std::string& key) const {
    const auto at = items_.find(key);
    return at == items_.end() ? nullptr : at->second;
}

}  // namespace orvo::memory
