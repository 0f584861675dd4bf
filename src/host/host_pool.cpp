#include "host/host_pool.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "app/base/error.h"
#include "app/base/text.h"
#include "host/host_program.h"
#include "plugin/no_host.h"

namespace tessary {
namespace {

// Between two starts that fail, in milliseconds: some, and some times what the last one took.
constexpr ULONGLONG kPause = 2000;
constexpr ULONGLONG kPausePerStart = 3;
constexpr int kMostTries = 4;  // in a row

// Of hosts of single plug-ins: how long one stays that is not needed, in milliseconds, and how many
// there are at most.
constexpr ULONGLONG kLongestRest = 60'000;
constexpr size_t kMostAlone = 3;

PluginEnds Sum(const PluginEnds& one, const PluginEnds& other) {
    PluginEnds sum = one;
    for (size_t i = 0; i < kEndKindCount; ++i)
        sum.counts[i] += other.counts[i];
    return sum;
}

}  // namespace

HostPool::HostPool(std::wstring program, HostLimits limits, HostWait wait, Blame blame)
    : program_(std::move(program)),
      limits_([limits] { return limits; }),
      wait_(std::move(wait)),
      blame_(std::move(blame)) {}

HostProcess* HostPool::For(const std::wstring& plugin) {
    const std::wstring key = SlotOf(plugin);
    EndSuperfluous(key);
    Slot& slot = slots_[key];
    slot.usedAt = GetTickCount64();
    if (slot.host != nullptr && slot.host->IsAlive() && !slot.host->IsWorn() &&
        !slot.host->IsReplaced(plugin)) {
        return slot.host.get();
    }
    if (slot.usedAt < retryAt_) return nullptr;
    if (slot.host != nullptr) {
        // Of a worn one the crash was told. Another one has ended while nothing was asked of it: a
        // thread may have.
        const bool isBlameless = slot.host->IsWorn() || slot.host->IsAlive();
        const std::optional<PluginEnd> end =
            isBlameless ? std::nullopt : slot.host->TakeBlame(HostEnd::kDied, {});
        slot.host.reset();
        if (end) Tell(*end);
    }
    const ULONGLONG begin = GetTickCount64();
    ULONGLONG now = begin;
    whyNone_ = WhyNoHostProgram(program_);
    // Somebody may have ended one in its first moment.
    for (int tries = 0;
         whyNone_ == 0 && slot.host == nullptr && tries < kMostTries && now - begin < kPause;
         ++tries) {
        slot.host =
            HostProcess::Start(program_, wait_, {limits_().memory, limits_().starting, isHidden_});
        now = GetTickCount64();
    }
    if (whyNone_ == 0 && slot.host == nullptr) whyNone_ = kErrorNoHost;
    retryAt_ = slot.host == nullptr ? now + kPause + kPausePerStart * (now - begin) : 0;
    return slot.host.get();
}

HostProcess* HostPool::RunningFor(const std::wstring& plugin) {
    const auto found = slots_.find(SlotOf(plugin));
    if (found == slots_.end()) return nullptr;
    HostProcess* const host = found->second.host.get();
    return host != nullptr && host->IsAlive() && !host->IsWorn() ? host : nullptr;
}

bool HostPool::IsGivenUp(const std::wstring& plugin) {
    Record& record = RecordOf(plugin);
    // The user may have forgiven it meanwhile.
    if (Sum(record.stored, record.told).IsGivenUp()) ReadAnew(plugin, record);
    return Sum(record.stored, record.told).IsGivenUp();
}

void HostPool::Tell(const PluginEnd& end) {
    if (CallsAreExcused()) return;  // the session ends, and takes the hosts along
    Record& record = RecordOf(end.call.plugin);
    const bool isStored = !blame_ && Trapped(false, [&] {
        CountEnd(end);
        return true;
    });
    if (isStored) return ReadAnew(end.call.plugin, record);
    ++record.told.counts[static_cast<size_t>(end.kind)];
    if (blame_) Trapped([&] { blame_(end); });
}

HostPool::Record& HostPool::RecordOf(const std::wstring& plugin) {
    const auto [found, isNew] = records_.try_emplace(ToUpper(plugin));
    if (isNew) ReadAnew(plugin, found->second);
    return found->second;
}

void HostPool::ReadAnew(const std::wstring& plugin, Record& record) const {
    PluginEnds stored = Trapped(PluginEnds(), [&] { return ReadEnds(plugin); });
    // What was forgiven there was meant for all.
    if (stored.Total() < record.stored.Total()) record.told = {};
    record.stored = std::move(stored);
}

std::wstring HostPool::SlotOf(const std::wstring& plugin) {
    if (plugin.empty()) return {};
    Record& record = RecordOf(plugin);
    const auto isAlone = [&] { return Sum(record.stored, record.told).IsAlone(); };
    if (!isAlone()) return {};
    // The user may have forgiven it meanwhile: then its own host is not needed any more.
    ReadAnew(plugin, record);
    const std::wstring own = ToUpper(plugin);
    if (isAlone()) return own;
    const auto left = slots_.find(own);
    if (left != slots_.end()) left->second.usedAt = 0;
    return {};
}

void HostPool::EndSuperfluous(const std::wstring& used) {
    std::vector<std::wstring> others;
    for (const auto& [plugin, slot] : slots_) {
        if (!plugin.empty() && plugin != used) others.push_back(plugin);
    }
    std::ranges::sort(others, {}, [&](const auto& plugin) { return slots_[plugin].usedAt; });
    size_t count = others.size();
    for (const std::wstring& plugin : others) {
        Slot& slot = slots_[plugin];
        const ULONGLONG now = GetTickCount64();
        if (count < kMostAlone && now - slot.usedAt < kLongestRest) return;
        HostReply reply;
        const bool isRunning = slot.host != nullptr && slot.host->IsAlive();
        if (isRunning) {
            slot.host->Call({.operation = HostOperation::kIsInUse, .plugin = plugin},
                            limits_().asking, {}, {}, reply);
        }
        // Its settings window may still be open.
        slot.usedAt = now;
        if (reply.isInUse) continue;
        slots_.erase(plugin);
        --count;
    }
}

}  // namespace tessary
