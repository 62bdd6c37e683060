// A dictionary that lives in memory.
#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "platform/Scripting.h"

namespace orvo::memory {

class Dictionary : public IDictionary {
  public:
    Long Count() const override { return static_cast<Long>(keys_.size()); }
    bool Exists(const std::string& key) const override { return items_.contains(key); }
    void Add(const std::string& key, std::shared_ptr<IEnvelope> item) override;
    std::shared_ptr<IEnvelope> Item(const std::string& key) const override;
    std::vector<std::string> Keys() const override { return keys_; }

  private:
    std::unordered_map<std::string, std::shared_ptr<IEnvelope>> items_;
    std::vector<std::string> keys_;  ///< in the order of adding
};

}  // namespace orvo::memory
