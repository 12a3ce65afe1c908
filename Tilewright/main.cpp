// The entry point.

#include "DesktopBackend.h"

#include <Tilewright/AccessibleApplication.h>
#include <Tilewright/TilewrightApp.h>

#include <QApplication>
#include <cstdlib>

int main(int argc, char** argv) {
    using namespace tilewright;
    const std::unique_ptr<DesktopBackend> desktop =
        DesktopBackend::find({argv, static_cast<std::size_t>(argc)});
    if (!desktop)
        return EXIT_FAILURE;
    std::vector<std::string> arguments = desktop->qtArguments();
    arguments.emplace(arguments.begin(), argc > 0 ? argv[0] : "tilewright");
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments)
        pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    int count = static_cast<int>(arguments.size());
    std::shared_ptr<void> precaution = desktop->precaution();
    const QApplication application(count, pointers.data());
    precaution.reset();
    QApplication::setApplicationName(QStringLiteral("tilewright"));
    QApplication::setDesktopFileName(QStringLiteral("org.tilewright.Tilewright"));
    installAccessibleApplication();

    const std::unique_ptr<Platform> platform = desktop->open();
    if (!platform)
        return EXIT_FAILURE;
    if (platform->instanceActivation.claim() == InstanceActivation::Claim::another)
        return EXIT_SUCCESS;
    const Platform::Installation installation(*platform);
    TilewrightApp app;
    const std::shared_ptr<void> life = desktop->beginLife();
    return app.run();
}
