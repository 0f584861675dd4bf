// How the main window's parts share its client area.
#include <gtest/gtest.h>

#include "ui/main/client_areas.h"

namespace tessary::test {
namespace {

LONG AreaOf(const RECT& place) {
    return (place.right - place.left) * (place.bottom - place.top);
}

TEST(ClientAreasTest, PartsLeaveNoGapAndDoNotOverlap) {
    for (int side = 0; side <= static_cast<int>(DockSide::kBottom); ++side) {
        for (const auto& [client, barWants] : {std::pair{SIZE{900, 600}, 260},
                                               {SIZE{320, 120}, 260},
                                               {SIZE{200, 900}, 5000},
                                               {SIZE{0, 0}, 100},
                                               {SIZE{900, 15}, 100}}) {
            for (const bool covers : {false, true}) {
                const ClientAreas areas =
                    DivideClient({.client = client,
                                  .status = 20,
                                  .silence = 37,
                                  .side = static_cast<DockSide>(side),
                                  .bar = [wants = barWants](SIZE) { return wants; },
                                  .barCovers = covers,
                                  .info = 320,
                                  .leastView = 160});
                const RECT parts[] = {areas.silence, areas.info, areas.view, areas.bar};
                LONG sum = 0;
                for (size_t i = 0; i < std::size(parts) - (covers ? 1 : 0); ++i) {
                    EXPECT_GE(parts[i].left, 0);
                    EXPECT_LE(parts[i].bottom, std::max<LONG>(client.cy - 20, 0));
                    EXPECT_LE(parts[i].right, client.cx);
                    sum += AreaOf(parts[i]);
                    for (size_t k = 0; k < i; ++k) {
                        RECT both{};
                        EXPECT_FALSE(IntersectRect(&both, &parts[i], &parts[k])) << side;
                    }
                }
                EXPECT_EQ(sum, client.cx * std::max<LONG>(client.cy - 20, 0)) << side;
            }
        }
    }
    const ClientAreas wide = DivideClient({.client = {900, 600},
                                           .side = DockSide::kRight,
                                           .bar = [](SIZE) { return 800; },
                                           .leastView = 160});
    EXPECT_EQ(wide.view.right, 160);  // the picture keeps so much, or else half
}

TEST(ClientAreasTest, TheNearestEdgeDocks) {
    const RECT client{100, 200, 500, 400};
    for (const auto& [x, y, side] : {std::tuple{105, 300, DockSide::kLeft},
                                     {95, 300, DockSide::kLeft},
                                     {490, 300, DockSide::kRight},
                                     {300, 190, DockSide::kTop},
                                     {300, 395, DockSide::kBottom},
                                     {115, 204, DockSide::kTop},
                                     {300, 300, DockSide::kFloating},
                                     {50, 300, DockSide::kFloating},
                                     {300, 450, DockSide::kFloating}}) {
        EXPECT_EQ(SideAt(client, {x, y}, 20), side) << x << " " << y;
    }
}

}  // namespace
}  // namespace tessary::test
