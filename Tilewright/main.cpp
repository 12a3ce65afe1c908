// The entry point.

#include "DesktopBackend.h"

#include <Tilewright/AccessibleApplication.h>
#include <Tilewright/TilewrightApp.h>

#include <QApplication>
#include <cstdlib>

int main(int argc, char** argv) {
    using namespace tilewright;
    DesktopBackend::prepareToolkit();
    const QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("tilewright"));
    QApplication::setDesktopFileName(QStringLiteral("org.tilewright.Tilewright"));
    installAccessibleApplication();

    const std::unique_ptr<Platform> platform = DesktopBackend::open();
    if (!platform)
        return EXIT_FAILURE;
    if (platform->instanceActivation().claim() == InstanceActivation::Claim::another)
        return EXIT_SUCCESS;
    const Platform::Installation installation(*platform);
    TilewrightApp app;
    return app.run();
}
