#pragma once

#include <exception>
#include <functional>
#include <QString>
#include <vector>

#include "KV4AddIn/KV4AddIn.h"

namespace studio {

/// The add-ins in the order in which they are asked, and the one place from which they are called:
/// one call at a time, and no exception gets out of it.
class AddInSet {
public:
    struct Failure {
        QString progId;
        QString event;
        QString what;
    };

    AddInSet() = default;
    AddInSet(const AddInSet&) = delete;
    AddInSet& operator=(const AddInSet&) = delete;

    /// `addIn` is borrowed and outlives the set.
    void Add(const QString& progId, KV4AddIn::CKV4Extensibility& addIn) {
        members_.push_back({progId, &addIn});
    }
    [[nodiscard]] bool IsEmpty() const noexcept { return members_.empty(); }
    /// Called for each exception that an add-in let out.
    void SetFailureHandler(std::function<void(const Failure&)> handler) {
        onFailure_ = std::move(handler);
    }
    /// True while an add-in is being called; a dialog of it may be running an event loop then.
    [[nodiscard]] bool InCall() const noexcept { return inCall_; }

    /// Calls every add-in. An event that happens while an add-in is being called is dropped: the
    /// contract promises one call at a time.
    template <class Call>
    void ForEach(const char* event, Call&& call) {
        if (inCall_) return;
        const CallScope scope(inCall_);
        for (const Member& member : members_) {
            try {
                call(*member.addIn);
            } catch (const std::exception& error) {
                Report(member, event, QString::fromUtf8(error.what()));
            } catch (...) {
                Report(member, event, QStringLiteral("?"));
            }
        }
    }

private:
    struct Member {
        QString progId;
        KV4AddIn::CKV4Extensibility* addIn;
    };
    class CallScope {
    public:
        explicit CallScope(bool& flag) noexcept : flag_(flag) { flag_ = true; }
        ~CallScope() { flag_ = false; }
        CallScope(const CallScope&) = delete;
        CallScope& operator=(const CallScope&) = delete;

    private:
        bool& flag_;
    };

    void Report(const Member& member, const char* event, const QString& what) const {
        if (onFailure_) onFailure_({member.progId, QString::fromLatin1(event), what});
    }

    std::vector<Member> members_;
    std::function<void(const Failure&)> onFailure_;
    bool inCall_ = false;
};

}  // namespace studio
