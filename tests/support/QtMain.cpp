#include <gtest/gtest.h>

#include <QApplication>
#include <QLocale>
#include <QStyleFactory>
#include <QTemporaryDir>

// The start of every test program that needs Qt: the same style, font and locale everywhere, and
// nothing of the user's own settings.
int main(int argc, char** argv) {
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    const QTemporaryDir home;
    qputenv("XDG_CONFIG_HOME", home.path().toUtf8());
    qputenv("XDG_DATA_HOME", home.path().toUtf8());
    qputenv("XDG_STATE_HOME", home.filePath(QStringLiteral("state")).toUtf8());
    qputenv("KV_REGISTRY", home.filePath(QStringLiteral("machine.reg")).toUtf8());
    qunsetenv("KV_ADDINS");
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedKingdom));

    QApplication app(argc, argv);
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
