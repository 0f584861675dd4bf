#include "picture/ahead/pictures_ahead.h"

#include <utility>

#include "app/base/modGetFolder.h"
#include "app/settings/modValue.h"
#include "picture/ahead/ahead_rules.h"
#include "plugin/modSusie.h"

namespace tessary {

void PicturesAhead::Begin(int threads, ConnectorMaker connect) {
    thumbs_.Begin(threads, connect, LocalDataFolder());
    threads_ = std::make_unique<AheadThreads>(
        threads, AheadSource{std::move(connect), MayBeReadAhead}, thumbs_.HolderAhead());
}

void PicturesAhead::End() {
    thumbs_.End();
    threads_.reset();
    plugins_.reset();
}

// What was read by others is not to be shown.
std::shared_ptr<const KnownPlugins> PicturesAhead::Plugins() {
    KnownPlugins known = KnownOf(SusieCollection());
    if (plugins_ == nullptr || *plugins_ != known) {
        if (plugins_ != nullptr) threads_->Board().Forget();
        plugins_ = std::make_shared<const KnownPlugins>(std::move(known));
    }
    return plugins_;
}

void PicturesAhead::Plan(std::vector<AheadEntry> next, AheadEntry shown, PreparePicture prepare) {
    if (threads_ == nullptr) return;
    if (Values().general.readAhead == 0) return Forget();
    if (SavesBattery()) next.clear();
    threads_->SetPlan({.next = std::move(next),
                       .shown = std::move(shown),
                       .plugins = Plugins(),
                       .listing = ChosenListingRules(),
                       .prepare = std::move(prepare),
                       .budget = AheadBudget(Values().general.readAheadMemory)});
}

std::optional<AheadPicture> PicturesAhead::Take(const AheadEntry& entry) {
    return threads_ != nullptr ? threads_->Await(entry) : std::nullopt;
}

bool PicturesAhead::Has(const AheadEntry& entry) {
    const std::optional<FileStamp> stamp =
        threads_ != nullptr ? ExactStampOf(entry.path) : std::nullopt;
    return stamp && threads_->Board().Find(entry, *stamp);
}

void PicturesAhead::Keep(AheadPicture picture) {
    if (threads_ != nullptr && Values().general.readAhead != 0) {
        threads_->Board().Put(std::move(picture));
    }
}

void PicturesAhead::Rest() {
    thumbs_.Rest();
    if (threads_ == nullptr) return;
    AheadPlan nothing;
    nothing.budget = AheadBudget(Values().general.readAheadMemory);
    threads_->Board().SetPlan(std::move(nothing));
    threads_->WaitForRest();
}

void PicturesAhead::Forget() {
    thumbs_.Forget();
    if (threads_ != nullptr) threads_->Board().Forget();
    plugins_.reset();
}

PicturesAhead& Ahead() {
    static PicturesAhead ahead;
    return ahead;
}

}  // namespace tessary
