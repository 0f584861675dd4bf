// One directory of a TIFF file, read with suspicion.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "plugins/iftesswic/number_reader.h"
#include "plugins/iftesswic/patched_source.h"

namespace tessary::wic {

class TiffDirectory {
  public:
    // Reads the one at `start`, or the first one where nothing is said; `order` knows the byte
    // order of the file.
    TiffDirectory(dib::ByteSource& file, NumberReader order,
                  std::optional<uint32_t> start = std::nullopt);

    // Where the next one stands; 0: it is the last.
    uint32_t Next() { return order_.Long(end_).value_or(0); }

    // Whether the file has it, with all entries.
    bool IsThere() const { return !entries_.empty(); }
    bool IsBigEndian() const { return order_.IsBigEndian(); }

    bool Has(uint32_t tag) const { return Find(tag) != nullptr; }
    // How many values the entry announces that lie within the file; 0 without such an entry.
    uint64_t Count(uint32_t tag) const;
    // The first value of an entry of numbers.
    std::optional<uint32_t> Value(uint32_t tag);
    uint32_t ValueOr(uint32_t tag, uint32_t otherwise) { return Value(tag).value_or(otherwise); }
    // Calls `use` with the first `count` values, in their order, until it answers false.
    void ForEach(uint32_t tag, uint64_t count, const std::function<bool(uint32_t value)>& use);

    // Whether an entry with one of these tags has its values outside the file.
    bool LeadsOut(uint32_t tag) const;
    // Makes it the only one: takes the links to other directories, and what leads out of the file,
    // away.
    void Isolate(PatchedSource& patched) const;

  private:
    struct Entry {
        uint64_t place;  // of its twelve bytes
        uint32_t tag;
        uint32_t type;
        uint64_t count;
        uint64_t valuesAt;
    };

    const Entry* Find(uint32_t tag) const;
    bool IsInside(const Entry& entry) const;

    dib::ByteSource& file_;
    NumberReader order_;
    std::vector<Entry> entries_;
    uint32_t start_ = 0;
    uint64_t end_ = 0;  // where the link to the next directory stands
};

}  // namespace tessary::wic
