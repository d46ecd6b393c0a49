#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "ado/AdoError.h"
#include "ado/Connection.h"
#include "ado/Recordset.h"

namespace ado {

[[nodiscard]] inline std::string ConnectionString(const std::string& file) {
    return "Provider=Microsoft.Jet.OLEDB.4.0;Data Source=" + file +
           ";Mode=Read|Write|Share Deny None;";
}

[[nodiscard]] inline std::string Example(const std::string& name) {
    return std::string(KV_EXAMPLES "/") + name;
}
[[nodiscard]] inline std::string TestData(const std::string& name) {
    return std::string(KV_TEST_DATA "/") + name;
}

/// The number of the AdoError that `action` throws; 0 when it throws none.
[[nodiscard]] inline std::int32_t ErrorOf(const std::function<void()>& action) {
    try {
        action();
    } catch (const AdoError& error) {
        EXPECT_FALSE(error.Description().empty());
        return error.Number();
    }
    return 0;
}

/// All values of one column from the first row to the last, as text.
[[nodiscard]] inline std::vector<std::u16string> Column(Recordset& rows, std::string_view name) {
    std::vector<std::u16string> values;
    if (rows.RecordCount() == 0) return values;
    for (rows.MoveFirst(); !rows.IsEOF(); rows.MoveNext()) values.push_back(ToText(rows.Get(name)));
    return values;
}

}  // namespace ado
