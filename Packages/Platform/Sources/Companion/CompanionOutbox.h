#pragma once

#include "CompanionCommand.h"

#include <functional>
#include <map>
#include <optional>
#include <utility>

class QJsonArray;

namespace tilewright {

/// What a companion is to do next. A later wish takes the place of an earlier one for the same
/// thing, so that no answer is long, however late it is fetched. Main thread only.
class CompanionOutbox {
public:
    /// Neither more tiles, nor frames of more windows, are sent at once.
    static constexpr std::size_t mostTiles = 64;
    static constexpr std::size_t mostFrames = 16;

    using Frames = std::map<CompanionWindowID, CompanionRect>;

    /// Registers the one listener, called whenever something has been put in.
    void onNews(std::function<void()> callback) { onNews_ = std::move(callback); }

    void showOverlay(const CompanionOverlay& overlay);
    void hideOverlay();
    void setFrame(CompanionWindowID window, const CompanionRect& frame);
    void showItem(const CompanionItem& item);
    void setPanel(const CompanionPanel& panel);
    /// Brings this program's window with the title before all others.
    void bringForward(const QString& title);
    /// Has the companion tell where the pointer is.
    void askForPointer();
    /// Drops the panel where it is closed: for whoever places it in the moment that it comes.
    void dropClosedPanel();
    /// Drops everything: nobody is there to do it, or somebody new who knows nothing of it.
    void clear();

    [[nodiscard]] bool isEmpty() const;
    /// Whether there is something that `takeLasting` would take.
    [[nodiscard]] bool hasLasting() const;
    /// Takes everything out, as the JSON text of an answer.
    [[nodiscard]] QString take();
    /// Takes out what matters however late it comes: all but the overlay and the frames.
    [[nodiscard]] QString takeLasting();
    /// Takes out the frames alone.
    [[nodiscard]] Frames takeFrames() { return std::exchange(frames_, {}); }
    /// Puts frames back that were taken out and not sent; of a window that was given another one
    /// since, the later one counts.
    void giveBack(Frames frames) { frames_.merge(std::move(frames)); }
    /// The JSON text of an answer that holds these frames alone.
    [[nodiscard]] static QString answerWith(const Frames& frames);

private:
    struct Overlay {
        /// None where it is to go.
        std::optional<CompanionOverlay> shown;
    };

    void appendLasting(QJsonArray& commands);
    void tell() const {
        if (onNews_)
            onNews_();
    }

    std::function<void()> onNews_;
    std::optional<Overlay> overlay_;
    Frames frames_;
    std::optional<CompanionItem> item_;
    std::optional<CompanionPanel> panel_;
    std::optional<QString> front_;
    bool wantsPointer_ = false;
};

} // namespace tilewright
