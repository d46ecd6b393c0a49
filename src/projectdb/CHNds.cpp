#include "projectdb/CHNds.h"

namespace projectdb {

CHNds::CHNds() = default;
CHNds::~CHNds() = default;
CHNds::CHNds(CHNds&&) noexcept = default;
CHNds& CHNds::operator=(CHNds&&) noexcept = default;

CHNd& CHNds::Add(Kind kind, std::int32_t id) {
    const auto [entry, isNew] = byKey_.try_emplace({kind, id}, nullptr);
    if (isNew) {
        nodes_.push_back(std::make_unique<CHNd>(kind, id));
        entry->second = nodes_.back().get();
    }
    return *entry->second;
}

void CHNds::Clear() noexcept {
    nodes_.clear();
    byKey_.clear();
}

const CHNd* CHNds::Find(Kind kind, std::int32_t id) const {
    const auto entry = byKey_.find({kind, id});
    return entry == byKey_.end() ? nullptr : entry->second;
}

}  // namespace projectdb
