// GUI tests: real widgets on the offscreen platform unless another is asked for.
#include <gtest/gtest.h>

#include "ui/application.h"

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    ::testing::InitGoogleTest(&argc, argv);
    molvera::ui::Application app(argc, argv);
    return RUN_ALL_TESTS();
}
