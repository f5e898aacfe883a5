// GUI tests: real widgets on the offscreen platform unless another is asked for, with the
// settings (window geometry, recent files) in a folder of their own, never the user's.
#include <gtest/gtest.h>

#include <QSettings>
#include <QTemporaryDir>

#include "ui/application.h"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    molvera::ui::Application app(argc, argv);
    const QTemporaryDir settings;
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, settings.path());
    return RUN_ALL_TESTS();
}
