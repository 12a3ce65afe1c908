// A plug-in that Qt loads at a program's start, `QT_QPA_GENERIC_PLUGINS=openglquestion:FILE`: it
// asks Qt for an OpenGL context, as Plasma's theme does then, and writes into the file whether
// there is one.

#include <QFile>
#include <QGenericPlugin>
#include <QOpenGLContext>

namespace tilewright::testing {

class OpenGlQuestion final : public QGenericPlugin {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID QGenericPluginFactoryInterface_iid FILE "OpenGlQuestion.json")

public:
    QObject* create(const QString& /*key*/, const QString& file) override {
        QOpenGLContext context;
        const bool isThere = context.create();
        QFile answer(file);
        if (answer.open(QIODevice::WriteOnly))
            answer.write(isThere ? "yes" : "no");
        return nullptr;
    }
};

} // namespace tilewright::testing

#include "OpenGlQuestion.moc"
