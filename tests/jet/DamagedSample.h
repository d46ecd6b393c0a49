#pragma once

#include <algorithm>
#include <array>

#include "jet/index/IndexPage.h"
#include "jet/page/Bytes.h"
#include "JetTesting.h"

namespace jet {

/// A file in memory to be damaged at places that its undamaged copy names.
class DamagedSample {
public:
    explicit DamagedSample(const std::string& path)
        : bytes(ReadWhole(path)), whole_(OpenBytes(bytes)), file_(bytes), cache_(file_, 1 << 20) {
        std::ignore = cache_.Revalidate();
    }

    [[nodiscard]] std::byte* At(std::size_t offset) { return bytes.data() + offset; }
    [[nodiscard]] std::byte* At(PageNo page, std::size_t offset) {
        return At(Raw(page) * kPageSizeJet4 + offset);
    }
    template <typename T>
    void Put(std::byte* at, T value) {
        std::memcpy(at, &value, sizeof value);
    }
    template <typename T>
    [[nodiscard]] T Get(const std::byte* at) {
        T value;
        std::memcpy(&value, at, sizeof value);
        return value;
    }
    void Add(std::byte* at, int difference) {
        Put(at, static_cast<std::uint16_t>(Get<std::uint16_t>(at) + difference));
    }

    [[nodiscard]] TableDef Def(const char* table) {
        return Must(whole_->OpenTable(table))->Definition();
    }
    [[nodiscard]] std::byte* InDef(const char* table, std::size_t offset) {
        return At(Def(table).page, offset);
    }
    [[nodiscard]] std::vector<Row> Rows(const char* table) {
        return AllRows(*Must(whole_->OpenTable(table)));
    }
    [[nodiscard]] std::byte* SlotOf(RowId id) { return At(id.page, 14 + 2U * id.row); }
    /// First byte of the row in its slot.
    [[nodiscard]] std::byte* RowAt(RowId id) {
        return At(id.page, Get<std::uint16_t>(SlotOf(id)) & 0x1FFFU);
    }
    [[nodiscard]] std::byte* RowEnd(RowId id) {
        return id.row == 0 ? At(id.page, kPageSizeJet4)
                           : RowAt({id.page, static_cast<std::uint8_t>(id.row - 1)});
    }
    [[nodiscard]] std::byte* MapAt(std::uint32_t pointer) {
        return RowAt(RowId::FromPointer(pointer));
    }
    /// The byte and bit of a page in an inline map.
    void FlipInMap(std::uint32_t pointer, std::uint32_t page) {
        const std::uint32_t bit = page - Get<std::uint32_t>(MapAt(pointer) + 1);
        *(MapAt(pointer) + 5 + bit / 8) ^= std::byte(1U << (bit % 8));
    }
    [[nodiscard]] RowId CatalogRow(const std::string& name) {
        for (const Row& row : Rows("MSysObjects")) {
            const auto column = Def("MSysObjects").FindColumn("Name").value();
            const Value value = Must(row.Get(column));
            if (ToUtf8(std::get<std::u16string>(value)) == name) return row.Id();
        }
        throw std::runtime_error("no row for " + name);
    }
    /// The head of a memo or OLE value of this kind that is stored elsewhere than in its row;
    /// `skip` values are passed over.
    [[nodiscard]] std::byte* Descriptor(LongValue::Kind kind, int skip = 0) {
        for (const CatalogEntry& entry : Must(whole_->Tables())) {
            const auto table = Must(whole_->OpenTable(entry));
            for (const Row& row : AllRows(*table)) {
                for (std::size_t i = 0; i < table->Definition().columns.size(); ++i) {
                    const Value value = Must(row.Get(i));
                    const auto* found = std::get_if<LongValue>(&value);
                    if (found == nullptr || found->kind != kind || skip-- > 0) continue;
                    const std::uint32_t flag = kind == LongValue::Kind::SingleRow ? 0x40000000 : 0;
                    const std::array<std::uint32_t, 3> head = {
                        found->length | flag, found->first.Pointer(), found->stamp};
                    const auto raw = std::as_bytes(std::span(head));
                    return std::search(RowAt(row.Id()), RowEnd(row.Id()), raw.begin(), raw.end());
                }
            }
        }
        throw std::runtime_error("no such value");
    }
    [[nodiscard]] PageNo Root(const char* table, std::size_t index = 0) {
        return Def(table).realIndexes.at(index).root;
    }
    [[nodiscard]] IndexPage Node(PageNo page, const char* table) {
        return Must(IndexPage::Open(Must(cache_.Read(page)), Def(table).page));
    }

    std::vector<std::byte> bytes;

private:
    std::unique_ptr<Database> whole_;
    MemoryFile file_;
    PageCache cache_;
};

}  // namespace jet
