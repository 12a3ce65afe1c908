#include <QCoreApplication>
#include <gmock/gmock.h>

int main(int argc, char** argv) {
    ::testing::InitGoogleMock(&argc, argv);
    if (::testing::GTEST_FLAG(list_tests))
        return RUN_ALL_TESTS();
    const QCoreApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
