// What a look at a file's headers says, before the system's decoder sees them.
#pragma once

#include <string>
#include <utility>

#include "plugins/common/remark.h"
#include "plugins/common/result.h"

namespace tessary::wic {

// With a success the remark is about a file that can be decoded all the same.
struct Inspection {
    codec::Result result = codec::Result::kSuccess;
    codec::Remark remark = {};
};

inline Inspection Damaged(std::wstring text) {
    return {codec::Result::kSuccess, {codec::Condition::kDamaged, std::move(text)}};
}
// Headers that no decoder is to see.
inline Inspection Broken(std::wstring text) {
    return {codec::Result::kBrokenData, {codec::Condition::kDamaged, std::move(text)}};
}
// Of a kind that comes out wrong, or that nobody has tried.
inline Inspection NotRead(std::wstring text) {
    return {codec::Result::kUnknownFormat, {codec::Condition::kKindNotRead, std::move(text)}};
}

}  // namespace tessary::wic
