#pragma once

#include <ListeningSocket.h>

#include <QFile>
#include <QString>
#include <array>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <sys/socket.h>
#include <unistd.h>

namespace tilewright::testing {

/// A compositor that is there for one client, as long as that takes to find it there, and gone for
/// the next. It offers nothing, and knows no more of the protocol than how to say that that is all.
class PassingCompositor {
public:
    enum class Gone {
        /// Nobody listens any more when the next client comes.
        beforeTheNext,
        /// The next client is let in, and has no answer.
        withTheNext,
    };

    /// Listens at the path, whatever another compositor has left there.
    PassingCompositor(const QString& path, Gone gone)
        : gone_(gone) {
        QFile::remove(path);
        listener_.emplace(path);
    }
    PassingCompositor(const PassingCompositor&) = delete;
    PassingCompositor& operator=(const PassingCompositor&) = delete;
    ~PassingCompositor() { close(first_); }

    /// Does what can be done by now; whether it is gone.
    [[nodiscard]] bool isGone() {
        if (first_ < 0)
            first_ = listener_->accept();
        else if (!hasAnswered_)
            answer();
        else if (listener_ && letInAndOut())
            listener_.reset();
        return hasAnswered_ && !listener_;
    }

private:
    static constexpr std::uint32_t display = 1;
    static constexpr std::size_t header = 2 * sizeof(std::uint32_t);

    static void close(int descriptor) {
        if (descriptor >= 0)
            ::close(descriptor);
    }

    /// Answers the request that asks whether everything has been said.
    void answer() {
        std::array<char, 256> some{};
        const ssize_t length = ::recv(first_, some.data(), some.size(), 0);
        if (length > 0)
            requests_.append(some.data(), length);
        while (static_cast<std::size_t>(requests_.size()) >= 3 * sizeof(std::uint32_t)) {
            std::array<std::uint32_t, 3> request{};
            std::memcpy(request.data(), requests_.constData(), sizeof request);
            const auto [object, sizeAndCode, argument] = request;
            requests_.remove(0, static_cast<int>(sizeAndCode >> 16));
            constexpr std::uint32_t sync = 0;
            if (object == display && (sizeAndCode & 0xffff) == sync)
                sayThatThisWasAll(argument);
        }
    }
    void sayThatThisWasAll(std::uint32_t callback) {
        if (gone_ == Gone::beforeTheNext)
            listener_.reset();
        constexpr std::uint32_t serial = 1;
        const std::array<std::uint32_t, 3> done{callback, (header + sizeof serial) << 16, serial};
        EXPECT_EQ(::send(first_, done.data(), sizeof done, MSG_NOSIGNAL), ssize_t{sizeof done});
        hasAnswered_ = true;
    }
    bool letInAndOut() {
        const int next = listener_->accept();
        close(next);
        return next >= 0;
    }

    const Gone gone_;
    std::optional<ListeningSocket> listener_;
    int first_ = -1;
    QByteArray requests_;
    bool hasAnswered_ = false;
};

} // namespace tilewright::testing
