#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QtEndian>

/// Lets the map of free pages of a Jet 4 file call pages free that are in use: everything in the
/// file can be read, and every change would destroy something.
inline void FreeUsedPages(const QString& path) {
    constexpr qint64 kMapPage = 4096;
    constexpr qint64 kRowOffsets = 14;
    constexpr qint64 kMapHeader = 5;
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.seek(kMapPage + kRowOffsets));
    const int map = qFromLittleEndian<quint16>(file.read(2).constData()) & 0x1FFF;
    ASSERT_TRUE(file.seek(kMapPage + map + kMapHeader + 2));
    ASSERT_EQ(file.write("\xFF"), 1);
}
