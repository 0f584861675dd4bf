// What a host is to know of a call beside its result.
#pragma once

#include <cstdint>
#include <string>

namespace tessary::codec {

// The values are those of GetLastCondition (docs/plugin-extension.md).
enum class Condition : int32_t {
    kNone = 0,
    kDamaged = 1,  // damaged or cut short; what could be read was delivered
    kPasswordNeeded = 2,
    kVolumeMissing = 3,       // part of a set of volumes, of which another is needed
    kDirectoryEncrypted = 4,  // the list of the members itself is encrypted
    kKindNotRead = 5,         // a kind or method that this plug-in does not do
};

// The text is Japanese, one short line for the user.
struct Remark {
    Condition condition = Condition::kNone;
    std::wstring text = {};
};

}  // namespace tessary::codec
