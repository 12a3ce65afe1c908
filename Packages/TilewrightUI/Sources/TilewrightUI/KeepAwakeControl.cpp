#include "KeepAwakeControl.h"

#include "GlassButton.h"
#include "HitArea.h"
#include "Look.h"
#include "SlidingRow.h"
#include "TextLabel.h"
#include "ToggleSwitch.h"

#include <QBoxLayout>
#include <array>

namespace tilewright {

namespace {

constexpr int lineSpacing = 2;
constexpr int itemSpacing = 8;
constexpr Spring rowSpring{0.25};

/// The whole seconds of a count, truncated toward zero.
qint64 wholeSeconds(double seconds) {
    constexpr double limit = 9223372036854775808.0;
    // NaN fails both comparisons.
    if (!(seconds >= -limit && seconds < limit))
        qFatal("a session's remaining seconds are no number of seconds");
    return static_cast<qint64>(seconds);
}

} // namespace

KeepAwakeControl::KeepAwakeControl()
    : manager_(KeepAwakeManager::shared())
    , refresh_([this] { refresh(); }) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());
    sessionRow_ = new SlidingRow(makeSessionRow(), itemSpacing, rowSpring, this);
    sessionRow_->setFocusHeir(switch_);
    column->addWidget(sessionRow_);
    for (auto* button : sessionRow_->findChildren<GlassButton*>())
        new HitArea(button, this);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    refresh();
    refresh_.observe(manager_);
}

KeepAwakeControl::~KeepAwakeControl() = default;

QWidget* KeepAwakeControl::makeHeader() {
    auto* header = new QWidget;
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(look::defaultSpacing);
    auto* lines = new QVBoxLayout;
    lines->setSpacing(lineSpacing);
    lines->addWidget(new TextLabel(tr("Keep Awake"), look::TextStyle::headline));
    status_ = new TextLabel(QString(), look::TextStyle::caption, TextLabel::Importance::secondary);
    status_->setOverflow(TextLabel::Overflow::shrinkThenElide);
    lines->addWidget(status_);
    row->addLayout(lines, 1);
    switch_ = new ToggleSwitch(tr("Keep Awake"));
    row->addWidget(switch_);
    connect(switch_, &ToggleSwitch::toggleRequested, this, [this](bool on) {
        if (on)
            manager_.activate(KeepAwakeSession::indefinite());
        else
            manager_.deactivate();
    });
    return header;
}

QWidget* KeepAwakeControl::makeSessionRow() {
    struct Choice {
        const char* label;
        double duration;
        QString description;
    };
    const std::array choices{Choice{"15m", 900, tr("Keeps the display awake for 15 minutes")},
                             Choice{"1h", 3600, tr("Keeps the display awake for 1 hour")},
                             Choice{"2h", 7200, tr("Keeps the display awake for 2 hours")}};
    auto* row = new QWidget;
    auto* cells = new QHBoxLayout(row);
    cells->setContentsMargins(0, 0, 0, 0);
    cells->setSpacing(itemSpacing);
    for (const Choice& choice : choices) {
        auto* button = new GlassButton(QString::fromLatin1(choice.label));
        button->setAccessibleDescription(choice.description);
        connect(button, &QAbstractButton::clicked, this, [this, duration = choice.duration] {
            manager_.activate(KeepAwakeSession::timed(duration));
        });
        auto* cell = new QHBoxLayout;
        cell->addStretch();
        cell->addWidget(button);
        cell->addStretch();
        cells->addLayout(cell, 1);
    }
    return row;
}

bool KeepAwakeControl::showsSessionRow() const {
    return !manager_.isActive() || showSessionPicker_;
}

int KeepAwakeControl::roomToGrow() const {
    return sessionRow_->heightToCome();
}

void KeepAwakeControl::refresh() {
    status_->setText(
        statusText(manager_.isActive(), manager_.session(), manager_.remainingSeconds()));
    switch_->setOn(manager_.isActive());
    sessionRow_->setPresent(showsSessionRow());
}

QString KeepAwakeControl::statusText(bool isActive, const std::optional<KeepAwakeSession>& session,
                                     double remainingSeconds) {
    if (!isActive)
        return tr("Display sleep allowed");
    if (!session || !session->asTimed())
        return tr("Active — indefinitely");
    constexpr qint64 secondsPerMinute = 60;
    const qint64 seconds = wholeSeconds(remainingSeconds);
    const QString time =
        QString::asprintf("%lld:%02lld", seconds / secondsPerMinute, seconds % secondsPerMinute);
    //: %1 is minutes and seconds, such as 14:59.
    return tr("Active — %1 remaining").arg(time);
}

} // namespace tilewright
