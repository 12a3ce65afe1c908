#include <X11/X11Guidance.h>

#include <QFile>
#include <QXmlStreamReader>
#include <gtest/gtest.h>

namespace tilewright {
namespace {

using Lack = X11Trust::Lack;

/// The page's text without its marks, each run of white space as one space.
QString textOf(const QString& page) {
    QFile file(QStringLiteral(TILEWRIGHT_HELP_FOLDER "/") + page);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << page.toStdString();
    QXmlStreamReader reader(&file);
    QString text;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::Characters)
            text += reader.text();
    }
    EXPECT_FALSE(reader.hasError()) << page.toStdString() << reader.errorString().toStdString();
    return text.simplified();
}

} // namespace

TEST(X11Guidance, HasAPageForEachLackThatAUserCanDoSomethingAbout) {
    for (const Lack lack :
         {Lack::x11Session, Lack::inputEvents, Lack::windowManager, Lack::windowManagerSupport}) {
        const FreeDesktopGuidance::Topic topic = guidanceFor(lack);
        ASSERT_FALSE(topic.page.isEmpty());
        EXPECT_TRUE(textOf(topic.page).contains(X11Trust::explanation(lack)))
            << "the page says what the notification would";
        EXPECT_EQ(topic.text, X11Trust::explanation(lack));
        EXPECT_FALSE(topic.title.isEmpty());
    }
}

TEST(X11Guidance, ShowsNoPageWhereNothingIsMissingOrNothingCanBeShown) {
    for (const Lack lack : {Lack::nothing, Lack::connection}) {
        EXPECT_EQ(guidanceFor(lack).page, QString());
        EXPECT_FALSE(guidanceFor(lack).text.isEmpty());
    }
}

TEST(X11Guidance, LeadsToTheChoiceOfAWindowManagerOnlyWhereAnotherOneHelps) {
    using Setting = FreeDesktopGuidance::Setting;
    EXPECT_EQ(guidanceFor(Lack::windowManager).setting, Setting::windowManager);
    EXPECT_EQ(guidanceFor(Lack::windowManagerSupport).setting, Setting::windowManager);
    EXPECT_EQ(guidanceFor(Lack::x11Session).setting, Setting::none);
    EXPECT_EQ(guidanceFor(Lack::inputEvents).setting, Setting::none);
    EXPECT_EQ(guidanceFor(Lack::nothing).setting, Setting::none);
}

} // namespace tilewright
