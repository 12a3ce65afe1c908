#pragma once

#include <QLoggingCategory>
#include <QStringList>
#include <utility>
#include <vector>

namespace tilewright::testing {

/// Keeps the program's messages for as long as it lives, and turns on what the rules say, as
/// QT_LOGGING_RULES does. One at a time.
class KeptMessages {
public:
    explicit KeptMessages(const QString& rules = {})
        : before_(qInstallMessageHandler(keep)) {
        messages().clear();
        QLoggingCategory::setFilterRules(rules);
    }
    KeptMessages(const KeptMessages&) = delete;
    KeptMessages& operator=(const KeptMessages&) = delete;
    ~KeptMessages() {
        QLoggingCategory::setFilterRules({});
        qInstallMessageHandler(before_);
    }

    /// Those of the categories whose name begins so, in order.
    [[nodiscard]] QStringList of(const char* category) const {
        QStringList lines;
        for (const auto& [name, text] : messages()) {
            if (name.startsWith(QLatin1StringView(category)))
                lines.append(text);
        }
        return lines;
    }

private:
    // The handler is a plain function: it finds what it fills here.
    static std::vector<std::pair<QString, QString>>& messages() {
        static std::vector<std::pair<QString, QString>> kept;
        return kept;
    }
    static void keep(QtMsgType, const QMessageLogContext& context, const QString& text) {
        messages().emplace_back(QString::fromUtf8(context.category), text);
    }
    QtMessageHandler before_;
};

} // namespace tilewright::testing
