#pragma once

#include <functional>
#include <QCoreApplication>
#include <QVariant>

namespace platform {

/// A function that everyone in the process shares. Host and add-ins each hold a copy of this
/// library, so a plain static would not be the same one in both: the place is a dynamic property
/// of the application object.
template <typename Signature>
class ProcessHook {
public:
    using Function = std::function<Signature>;

    explicit ProcessHook(const char* name) : name_(name) {}

    /// nullptr when none is installed.
    [[nodiscard]] const Function* Get() const {
        if (QCoreApplication::instance() == nullptr) return nullptr;
        const QVariant value = QCoreApplication::instance()->property(name_);
        return static_cast<const Function*>(value.value<void*>());
    }
    /// `function` is borrowed until another one (or nullptr) takes its place.
    void Set(const Function* function) const {
        QCoreApplication::instance()->setProperty(
            name_, QVariant::fromValue<void*>(const_cast<Function*>(function)));
    }

private:
    const char* name_;
};

}  // namespace platform
