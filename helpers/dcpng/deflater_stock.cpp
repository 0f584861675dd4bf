#include "helpers/dcpng/deflater_stock.h"

#include <algorithm>
#include <array>
#include <mutex>

namespace tessary::dcpng {
namespace {

struct Stock {
    std::mutex mutex;
    std::array<std::unique_ptr<StripDeflater>, 2> kept;
};

Stock& TheStock() {
    static Stock stock;
    return stock;
}

}  // namespace

DeflaterStock::Lent DeflaterStock::Take(int level) {
    Stock& stock = TheStock();
    const std::scoped_lock lock(stock.mutex);
    const auto found = std::ranges::find_if(
        stock.kept, [&](const auto& deflater) { return deflater && deflater->Level() == level; });
    return Lent(found != stock.kept.end() ? found->release()
                                          : std::make_unique<StripDeflater>(level).release());
}

void DeflaterStock::Return::operator()(StripDeflater* deflater) const noexcept {
    std::unique_ptr<StripDeflater> returned(deflater);
    Stock& stock = TheStock();
    const std::scoped_lock lock(stock.mutex);
    // One of another level makes room: the next picture is most likely saved like this one.
    const auto place = std::ranges::find_if(
        stock.kept, [&](const auto& kept) { return !kept || kept->Level() != returned->Level(); });
    if (place != stock.kept.end()) place->swap(returned);
}

}  // namespace tessary::dcpng
