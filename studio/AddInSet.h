#pragma once

#include <exception>
#include <functional>
#include <QString>
#include <vector>

#include "KV4AddIn/KV4AddIn.h"

namespace studio {

class ProjectAddIns;

/// The add-ins that are loaded, in the order in which they are asked, and the one place from which
/// they are called: one call at a time, for whichever project, and no exception gets out of it.
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

private:
    friend class ProjectAddIns;

    struct Member {
        QString progId;
        KV4AddIn::CKV4Extensibility* root;
        ProjectAddIns* user = nullptr;  // the project that has the root object
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

    /// REQUIRES: a CallScope.
    template <class Call>
    void Guarded(const QString& progId, const char* event, Call&& call) const {
        try {
            call();
        } catch (const std::exception& error) {
            Report(progId, event, QString::fromUtf8(error.what()));
        } catch (...) {
            Report(progId, event, QStringLiteral("?"));
        }
    }
    void Report(const QString& progId, const char* event, const QString& what) const {
        if (onFailure_) onFailure_({progId, QString::fromLatin1(event), what});
    }

    std::vector<Member> members_;
    std::function<void(const Failure&)> onFailure_;
    bool inCall_ = false;
};

}  // namespace studio
