// What GetLastCondition answers: an entry beside those of the Susie interface, as
// docs/plugin-extension.md gives it. Every plug-in keeps what it has told each thread last.
#pragma once

#include "plugins/common/host_call.h"
#include "plugins/common/remark.h"

namespace tessary::spi {

// Keeps it for this thread, in place of what was kept of its call before.
void KeepCondition(codec::Remark remark) noexcept;

// GetLastCondition.
int AnswerCondition(wchar_t* text, int length) noexcept;

// As Guarded, for the calls that GetLastCondition tells about: `function` is given the Remark to
// fill. Nothing is told of a call that the host has stopped.
template <class Function>
int GuardedAndTold(Function&& function) {
    codec::Remark remark;
    const int result = Guarded([&] { return function(remark); });
    if (result == static_cast<int>(codec::Result::kAborted)) remark = {};
    KeepCondition(std::move(remark));
    return result;
}

}  // namespace tessary::spi
