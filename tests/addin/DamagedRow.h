#pragma once

#include <gtest/gtest.h>

#include <QFile>
#include <QtEndian>

#include "projectdb/ADOArchiv.h"

/// Makes one row of a table unreadable; `position` counts from 0 in the order of the recordset. The
/// row's first field, its number of columns, becomes larger than any table's.
inline void DamageRow(const QString& path, ADOArchiv::Command command, int position) {
    constexpr qint64 kPageSize = 4096;
    constexpr qint64 kRowOffsets = 14;
    ADOArchiv environment;
    environment.OpenConnection(path);
    ado::Recordset& rows = environment.PrepareRecordset(command);
    for (int i = 0; i < position; ++i) rows.MoveNext();
    // A row of one table: page and number in the page stand in the upper half.
    const auto pointer = static_cast<std::uint32_t>(rows.GetBookmark().row >> 32);
    environment.CloseConnection();

    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    const qint64 page = (pointer >> 8) * kPageSize;
    ASSERT_TRUE(file.seek(page + kRowOffsets + 2 * (pointer & 0xFF)));
    const int offset = qFromLittleEndian<quint16>(file.read(2).constData()) & 0x1FFF;
    ASSERT_TRUE(file.seek(page + offset));
    ASSERT_EQ(file.write("\xFF\xFF"), 2);
}
