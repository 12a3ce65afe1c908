#include <X11/X11Guidance.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <set>

namespace tilewright {
namespace {

using Lack = X11Trust::Lack;

} // namespace

TEST(X11GuidanceSteps, SayWhatIsMissingInWordsOfTheirOwn) {
    std::set<QString> titles;
    for (const Lack lack : {Lack::nothing, Lack::connection, Lack::x11Session, Lack::inputEvents,
                            Lack::windowManager, Lack::windowManagerSupport}) {
        const GuidanceStep step = X11Guidance::stepFor(lack);
        EXPECT_FALSE(step.title.isEmpty());
        EXPECT_FALSE(step.text.isEmpty());
        EXPECT_TRUE(step.action.isEmpty()) << "nothing of this desktop's could help";
        titles.insert(step.title);
        EXPECT_TRUE(step.text.contains(X11Trust::explanation(lack)))
            << "the window says what the notification does";
    }
    EXPECT_EQ(titles.size(), 6U);
}

TEST(X11GuidanceSteps, OfferTheDesktopsSettingsOnlyWhereAnotherWindowManagerHelps) {
    for (const Lack lack : {Lack::windowManager, Lack::windowManagerSupport})
        EXPECT_FALSE(X11Guidance::stepFor(lack, true).action.isEmpty());
    for (const Lack lack : {Lack::nothing, Lack::connection, Lack::x11Session, Lack::inputEvents})
        EXPECT_TRUE(X11Guidance::stepFor(lack, true).action.isEmpty());
}

TEST(X11Guidance, KnowsTheSettingsOfTheDesktopsThatHaveThemWhereTheyAreInstalled) {
    const QTemporaryDir folder;
    QProcessEnvironment environment;
    environment.insert(QStringLiteral("PATH"), folder.path());
    for (const auto& [desktop, program] :
         {std::pair("LXQt", "lxqt-config-session"), std::pair("LXDE", "lxsession-default-apps")}) {
        environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"),
                           QStringLiteral("Other:") + QLatin1String(desktop));
        EXPECT_TRUE(X11Guidance::windowManagerSettings(environment).isEmpty());
        QFile file(folder.filePath(QString::fromLatin1(program)));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        ASSERT_TRUE(file.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
        EXPECT_EQ(X11Guidance::windowManagerSettings(environment), file.fileName());
    }
    environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("XFCE"));
    EXPECT_TRUE(X11Guidance::windowManagerSettings(environment).isEmpty());
    environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("LXQt"));
    environment.remove(QStringLiteral("PATH"));
    EXPECT_TRUE(X11Guidance::windowManagerSettings(environment).isEmpty());
}

} // namespace tilewright
