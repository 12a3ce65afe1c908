#pragma once

#include <QByteArray>
#include <optional>
#include <utility>

namespace tilewright {

/// Gives a variable of the environment another value for as long as this exists, or none; then it
/// is again what it was. Several of one variable end in the reverse order of their making.
class ScopedVariable {
public:
    ScopedVariable(QByteArray name, const std::optional<QByteArray>& value)
        : name_(std::move(name)) {
        if (qEnvironmentVariableIsSet(name_.constData()))
            before_ = qgetenv(name_.constData());
        set(value);
    }
    ScopedVariable(const ScopedVariable&) = delete;
    ScopedVariable& operator=(const ScopedVariable&) = delete;
    ~ScopedVariable() { set(before_); }

private:
    void set(const std::optional<QByteArray>& value) const {
        if (value)
            qputenv(name_.constData(), *value);
        else
            qunsetenv(name_.constData());
    }

    const QByteArray name_;
    std::optional<QByteArray> before_;
};

} // namespace tilewright
